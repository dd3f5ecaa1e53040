#include <nqControlCore/xml/NqFoundCommonCollections.h>

#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

/// Takes the first field, and the comma behind it, off the text; false where the quotation is broken.
/// `isLast` says that no comma stood there.
bool takeField(std::string_view& text, std::string& field, bool& isLast) {
    field.clear();
    const std::size_t start = std::min(text.find_first_not_of(kWhiteSpace), text.size());
    std::size_t comma = text.find(',');
    if (start < text.size() && text[start] == '"') {
        std::size_t at = start + 1;
        for (;; at += 2) {
            const std::size_t mark = text.find('"', at);
            if (mark == std::string_view::npos) {
                return false;
            }
            field += text.substr(at, mark - at);
            at = mark;
            if (text.substr(at, 2) != "\"\"") {
                break;
            }
            field += '"';
        }
        comma = text.find(',', at);
        if (!nqTrimmed(text.substr(at + 1, comma - (at + 1))).empty()) {
            return false;
        }
    } else {
        field = nqTrimmed(text.substr(0, comma));
    }
    isLast = comma == std::string_view::npos;
    text.remove_prefix(isLast ? text.size() : comma + 1);
    return true;
}

std::string quoted(const std::string& field) {
    std::string text = "\"";
    for (const char character : field) {
        text += character;
        if (character == '"') {
            text += '"';
        }
    }
    return text += '"';
}

} // namespace

namespace NqFoundCommon {

bool csvString2StringVector(const NqXmlBasicType<std::string>& text,
                            NqXmlVectorType<NqXmlBasicType<std::string>>& vector) {
    NqXmlVectorType<NqXmlBasicType<std::string>> fields;
    std::string_view rest = text.value();
    bool isLast = nqTrimmed(rest).empty();
    while (!isLast) {
        std::string field;
        if (!takeField(rest, field, isLast)) {
            return false;
        }
        fields.pushBack(field);
    }
    vector = std::move(fields);
    return true;
}

std::string stringVector2CSVString(const NqXmlVectorType<NqXmlBasicType<std::string>>& vector) {
    std::string text;
    bool isFirst = true;
    for (const std::string& field : vector) {
        if (!isFirst) {
            text += ',';
        }
        isFirst = false;
        const bool isPlain = !field.empty() && field.find_first_of(",\"\r\n") == std::string::npos &&
                             nqTrimmed(field).size() == field.size();
        text += isPlain ? field : quoted(field);
    }
    return text;
}

bool toReArray(const NqXmlVectorType<NqXmlRealVector>& rows, NqReArray& array) {
    const std::size_t columns = rows.empty() ? 0 : rows[0].size();
    for (const NqXmlRealVector& row : rows) {
        if (row.size() != columns) {
            Nq::Print::instance().write(Nq::PrintFailure,
                                        "NqFoundCommon::toReArray(): rows of %d and of %d entries\n", columns,
                                        row.size());
            return false;
        }
    }
    array.setToZeros(rows.size(), static_cast<unsigned>(columns));
    for (unsigned i = 0; i < rows.size(); ++i) {
        array.assign(i, rows[i].values());
    }
    return true;
}

} // namespace NqFoundCommon
