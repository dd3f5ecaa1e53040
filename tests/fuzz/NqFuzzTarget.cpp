#include "NqFuzzTarget.h"

#include <nqControlCore/foundation/text/NqPrint.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>

#include <libxml/xmlschemas.h>
#include <unistd.h>

namespace {

std::string theRun;
unsigned theLines = 0;    ///< printed by this run
unsigned theFailures = 0; ///< those that report a failure

/// Processor time, s.
double now() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

using Schema = std::unique_ptr<xmlSchema, decltype(&xmlSchemaFree)>;

void keepSilent(void*, const char*, ...) {}

/// That of the object's class, made once.
xmlSchema* schemaOf(const NqXmlObject& object) {
    static std::map<std::string, Schema> theSchemas;
    const std::string name(typeid(object).name());
    const auto found = theSchemas.find(name);
    if (found != theSchemas.end()) {
        return found->second.get();
    }
    const auto file = std::filesystem::temp_directory_path() / ("nqFuzz" + std::to_string(getpid()) + ".xsd");
    nqHolds(object.createSchema(file.string(), object.token()), "a schema can be written");
    xmlSchemaParserCtxt* parser = xmlSchemaNewParserCtxt(file.c_str());
    Schema schema(xmlSchemaParse(parser), xmlSchemaFree);
    xmlSchemaFreeParserCtxt(parser);
    std::filesystem::remove(file);
    nqHolds(schema != nullptr, "a schema is one");
    return theSchemas.emplace(name, std::move(schema)).first->second.get();
}

bool isValid(const NqXmlObject& object, std::string_view text) {
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                      XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET),
        xmlFreeDoc);
    if (!document || document->intSubset) {
        return false;
    }
    const std::unique_ptr<xmlSchemaValidCtxt, decltype(&xmlSchemaFreeValidCtxt)> context(
        xmlSchemaNewValidCtxt(schemaOf(object)), xmlSchemaFreeValidCtxt);
    xmlSchemaSetValidErrors(context.get(), keepSilent, nullptr, nullptr);
    return xmlSchemaValidateDoc(context.get(), document.get()) == 0;
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
    const double start = now();
    run(input);
    nqHolds(now() - start < 10.0 + 1.0e-3 * static_cast<double>(bytes.size()),
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

std::string nqWrittenAndReadBack(const NqXmlObject& object) {
    std::string written;
    nqHolds(NqXmlDocument::writeString(written, object), "what was read can be written");
    nqHolds(isValid(object, written), "what is written is valid");
    const std::unique_ptr<NqXmlObject> back(object.newObject());
    const unsigned before = theLines;
    nqHolds(NqXmlDocument::readString(written, *back) && theLines == before,
            "what was written reads back without a line");
    std::string again;
    nqHolds(NqXmlDocument::writeString(again, *back) && again == written, "it reads back to the same text");
    nqHolds(back->equality(&object) || written.find("NaN") != std::string::npos, "it reads back equal");
    const std::unique_ptr<NqXmlObject> copy(object.clone());
    nqHolds(NqXmlDocument::writeString(again, *copy) && again == written, "a copy is written alike");
    return written;
}

bool nqReadAndCheck(std::string_view document, NqXmlObject& object, bool isSchemaWhole) {
    const unsigned before = theFailures;
    const bool isRead = NqXmlDocument::readString(document, object);
    const bool isSilent = theFailures == before;
    nqHolds(isRead || !isSilent, "a document that isn't read is reported");
    nqHolds((isRead && isSilent) || !isSchemaWhole || !isValid(object, document),
            "a valid document is read without complaint");
    nqWrittenAndReadBack(object);
    return isRead;
}

bool nqAreFinite(const std::vector<double>& values) {
    return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

bool nqIsFinite(const NqReArray& matrix) {
    bool isFinite = true;
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        isFinite = isFinite && nqAreFinite(matrix[i]);
    }
    return isFinite;
}

bool nqAreSame(const std::vector<double>& a, const std::vector<double>& b) {
    return std::ranges::equal(a, b, [](double x, double y) {
        return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y) ||
               (std::isnan(x) && std::isnan(y));
    });
}
