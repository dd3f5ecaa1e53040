#include <nqControlCore/foundation/xml/NqXmlNumberList.h>

#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqXmlSchema.h>

#include <algorithm>

std::string nqToText(const double* numbers, std::size_t count, unsigned columns) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        if (i != 0) {
            text += columns != 0 && i % columns == 0 ? '\n' : ' ';
        }
        text += NqDOUBLE2STRING(numbers[i]);
    }
    return text;
}

bool nqAppendNumbers(std::string_view text, std::vector<double>& numbers) {
    constexpr std::string_view kWhiteSpace = " \t\r\n";
    for (std::size_t start = text.find_first_not_of(kWhiteSpace); start != std::string_view::npos;) {
        const std::size_t end = text.find_first_of(kWhiteSpace, start);
        double number = 0.0;
        if (!nqParseReal(text.substr(start, end - start), number)) {
            return false;
        }
        numbers.push_back(number);
        start = end == std::string_view::npos ? end : text.find_first_not_of(kWhiteSpace, end);
    }
    return true;
}

bool nqTakeNumbers(std::string_view text, double* numbers, std::size_t count) {
    std::vector<double> read;
    if (!nqAppendNumbers(text, read) || read.size() != count) {
        return false;
    }
    std::ranges::copy(read, numbers);
    return true;
}

bool nqWriteNumbersSchema(NqXmlSchema& schema, std::size_t count) {
    return schema.writeListType(typeid(double), count);
}
