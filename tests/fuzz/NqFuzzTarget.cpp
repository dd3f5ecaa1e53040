#include "NqFuzzTarget.h"

#include "support/NqSchemaValidator.h"

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <typeindex>
#include <unordered_map>

namespace {

std::string theRun;
unsigned theLines = 0;    ///< printed by this run
unsigned theFailures = 0; ///< those that report a failure

/// What the checks of a class of objects share.
struct Class {
    explicit Class(const NqXmlObject& object) : schema(object), newObject(object.newObject()) {}
    NqSchemaValidator schema;
    std::unique_ptr<NqXmlObject> newObject;
    std::string newText; ///< of the new object; none before it is checked
};

/// That of the object, made once.
Class& classOf(const NqXmlObject& object) {
    static std::unordered_map<std::type_index, Class> theClasses;
    const auto [known, isNew] = theClasses.try_emplace(typeid(object), object);
    if (isNew) {
        known->second.newText = nqWrittenAndReadBack(*known->second.newObject);
    }
    return known->second;
}

/// Whether there is an exponent without digits, which libxml2 takes for one, though XML Schema doesn't.
bool hasOpenExponent(std::string_view text) {
    constexpr std::string_view digits = "0123456789";
    for (std::size_t e = text.find_first_of("eE"); e != text.npos; e = text.find_first_of("eE", e + 1)) {
        const std::size_t sign = text.substr(e + 1).find_first_not_of("+-") == 0 ? 0 : 1;
        const std::string_view behind = text.substr(std::min(text.size(), e + 1 + sign));
        const bool isInNumber = e > 0 && digits.find(text[e - 1]) != digits.npos;
        if (isInNumber && (behind.empty() || digits.find(behind[0]) == digits.npos)) {
            return true;
        }
    }
    return false;
}

} // namespace

void NqFuzzTarget::operator()(std::string_view bytes, const std::string& where) const {
    theRun = std::string(name) + ", " + where;
    theLines = theFailures = 0;
    Nq::Print::instance().setSink([](unsigned type, const std::string&) {
        ++theLines;
        theFailures += type == Nq::PrintFailure ? 1 : 0;
    });
    NqFuzzInput input(bytes);
    const std::clock_t start = std::clock();
    run(input);
    nqHolds(static_cast<double>(std::clock() - start) <
                CLOCKS_PER_SEC * (10.0 + 1.0e-3 * static_cast<double>(bytes.size())),
            "it takes no longer than it may");
    Nq::Print::instance().setSink({});
}

std::span<const NqFuzzTarget> NqFuzzTarget::all() {
    static constexpr NqFuzzTarget theTargets[] = {{"persistent", nqFuzzPersistent},
                                                  {"expression", nqFuzzExpression},
                                                  {"settings", nqFuzzSettings},
                                                  {"urdf", nqFuzzUrdf},
                                                  {"editable", nqFuzzEditable},
                                                  {"filter", nqFuzzFilter},
                                                  {"solver", nqFuzzSolver},
                                                  {"bounded", nqFuzzBounded},
                                                  {"loop", nqFuzzLoop}};
    return theTargets;
}

void nqHolds(bool isTrue, const char* property) {
    if (!isTrue) {
        std::fprintf(stderr, "%s: it does not hold that %s\n", theRun.c_str(), property);
        std::abort();
    }
}

unsigned nqLinesPrinted() {
    return theLines;
}

std::string nqWrittenAndReadBack(const NqXmlObject& object, bool isAllWritten) {
    std::string written;
    nqHolds(NqXmlDocument::writeString(written, object), "what was read can be written");
    const Class& known = classOf(object);
    if (written == known.newText && object.equality(known.newObject.get())) {
        return written; // a refused document leaves a new object, which was checked once
    }
    nqHolds(known.schema.accepts(written), "what is written is valid");
    const std::unique_ptr<NqXmlObject> back(object.newObject());
    const unsigned before = theLines;
    nqHolds(NqXmlDocument::readString(written, *back) && theLines == before,
            "what was written reads back without a line");
    const bool isNumbers = written.find("NaN") == std::string::npos;
    nqHolds(back->equality(&object) || !isAllWritten || !isNumbers, "it reads back equal");
    const std::unique_ptr<NqXmlObject> copy(back->clone());
    nqHolds(copy->equality(back.get()) || !isNumbers, "a copy is equal");
    std::string again;
    nqHolds(NqXmlDocument::writeString(again, *copy) && again == written,
            "a copy of what was read back is written alike");
    return written;
}

std::string nqReadAndCheck(std::string_view document, NqXmlObject& object, bool isSchemaWhole) {
    const unsigned before = theFailures;
    const bool isRead = NqXmlDocument::readString(document, object);
    const bool isSilent = theFailures == before;
    nqHolds(isRead || !isSilent, "a document that isn't read is reported");
    nqHolds((isRead && isSilent) || !isSchemaWhole || hasOpenExponent(document) ||
                !classOf(object).schema.accepts(document),
            "a valid document is read without complaint");
    // What old files say for these is kept, but never written.
    const bool isAllWritten = std::ranges::none_of(
        std::array{"<threshold", "<angularWeight", "<gain", "<isRelativeLink"},
        [&](const char* element) { return document.find(element) != std::string_view::npos; });
    return nqWrittenAndReadBack(object, isAllWritten);
}
