#include "NqXmlTestClasses.h"
#include "support/NqPrintCapture.h"
#include "support/NqSchemaValidator.h"
#include "support/NqXmlRoundTrip.h"

#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>
#include <nqControlCore/foundation/xml/NqXmlObjectVisitor.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

struct ObjectCase {
    const char* name;
    std::shared_ptr<NqXmlObject> object;
    std::string text; ///< of the document, without declaration and line breaks
};

NqTestMap sampleMap() {
    NqTestMap map;
    map.add(70, -0.0);
    map.add(3, 0.1);
    return map;
}

NqTestSet sampleSet() {
    NqTestSet set;
    set.add("b");
    set.add("a");
    return set;
}

NqTestShapeVector sampleShapes() {
    NqTestShapeVector shapes;
    NqTestSquare square(2.5);
    square.m_Name = "big & \"wide\"\n";
    shapes.pushBack(square);
    shapes.pushBack(NqTestCircle());
    shapes.setAddLibraries({"extra"});
    return shapes;
}

NqTestShapeMap sampleShapeMap() {
    NqTestShapeMap shapes;
    shapes.add("<second>", NqTestCircle());
    shapes.add("first", NqTestSquare());
    return shapes;
}

NqCoordinateSystemTransformation samplePose() {
    NqOrientation orientation;
    orientation.setFromQuaternion(0.5, -0.5, 0.1, 0.7);
    return {NqVector(0.1, 1e-300, -3.0), orientation};
}

#define NQ_CT "xmlns=\"http://nq.example/namespace/ct#\""

NqGeneralMotionAccFilter sampleFilter() {
    NqGeneralMotionAccFilter filter;
    filter.setOffset({0.1, 0.2, 0.3});
    filter.setAngularWeight(0.25);
    filter.setThreshold(0.1 + 0.2);
    filter.setLinearGain(30.0);
    filter.setAngularGain(40.0);
    return filter;
}

class NqXmlEveryObject : public testing::TestWithParam<ObjectCase> {};

INSTANTIATE_TEST_SUITE_P(
    Forms, NqXmlEveryObject,
    testing::Values(
        ObjectCase{"EmptyTexts", made(NqTestTexts()), "<vectorType count=\"0\"/>"},
        ObjectCase{"Texts", made(NqTestTexts{"a", " b ", ""}),
                   "<vectorType count=\"3\"><group><value>a</value><value> b </value><value></value></group>"
                   "</vectorType>"},
        ObjectCase{
            "RealVectors", made(NqXmlVectorType<NqXmlRealVector>{NqXmlRealVector{1.0, -2.5}, {}}),
            "<vectorType count=\"2\"><group><value>1 -2.5</value><value></value></group></vectorType>"},
        ObjectCase{"Transformations", made(NqXmlVectorType<NqCoordinateSystemTransformation>{samplePose()}),
                   "<vectorType count=\"1\"><group><value>0.1 1e-300 -3 0.5 -0.5 0.1 "
                   "0.7</value></group></vectorType>"},
        ObjectCase{"Maps", made(NqXmlVectorType<NqTestMap>{sampleMap()}),
                   "<vectorType count=\"1\"><element>"
                   "<element><key>3</key><value>0.1</value></element>"
                   "<element><key>70</key><value>-0</value></element></element></vectorType>"},
        ObjectCase{"Compounds", made(NqXmlVectorType<NqTestSquare>{NqTestSquare(2.0)}),
                   "<vectorType count=\"1\"><element type=\"shape\"><size " NQ_CT
                   ">2</size><filteringMode " NQ_CT ">trapezoidal</filteringMode></element></vectorType>"},
        ObjectCase{"Holder", made(NqTestHolder()),
                   "<motionFilterSet " NQ_CT
                   "><motionFilterSets count=\"1\"><element type=\"shape\"><size>1</size>"
                   "<filteringMode>trapezoidal</filteringMode></element></motionFilterSets>"
                   "<endEffectorVector count=\"0\"/></motionFilterSet>"},
        ObjectCase{"Set", made(sampleSet()),
                   "<setType count=\"2\"><group><value>a</value><value>b</value></group></setType>"},
        ObjectCase{"Shapes", made(sampleShapes()),
                   "<endEffectorVector " NQ_CT
                   " count=\"2\"><addLibraries><library>extra</library></addLibraries>"
                   "<square type=\"big &amp; &quot;wide&quot;&#10;\"><size>2.5</size>"
                   "<filteringMode>trapezoidal</filteringMode></square><circle "
                   "type=\"shape\"/></endEffectorVector>"},
        ObjectCase{"ShapeMap", made(sampleShapeMap()),
                   "<endEffectorMap " NQ_CT
                   "><element><key>&lt;second&gt;</key><circle type=\"shape\"/></element>"
                   "<element><key>first</key><square type=\"shape\"><size>1</size>"
                   "<filteringMode>trapezoidal</filteringMode></square></element></endEffectorMap>"},
        ObjectCase{"AccelerationFilter", made(sampleFilter()),
                   "<generalMotionAccelerationFilter " NQ_CT
                   "><offset>0.1 0.2 0.3</offset><angularWeight>0.25</angularWeight><threshold>"
                   "0.30000000000000004</threshold><linearGain>30</linearGain><angularGain>40</angularGain>"
                   "</generalMotionAccelerationFilter>"}),
    [](const auto& which) { return which.param.name; });

TEST_P(NqXmlEveryObject, HasItsFormAndReadsBack) {
    NqPrintCapture print;
    const std::string document = nqWritten(*GetParam().object);
    std::string lines = document.substr(document.find('\n'));
    for (std::size_t at = 0; (at = lines.find('\n', at)) != std::string::npos;) {
        lines.erase(at, lines.find_first_not_of(" \n", at) - at);
    }
    EXPECT_EQ(lines, GetParam().text);

    const std::unique_ptr<NqXmlObject> read(GetParam().object->newObject());
    ASSERT_TRUE(NqXmlDocument::readString(document, *read));
    EXPECT_TRUE(read->equality(GetParam().object.get()));
    EXPECT_EQ(nqWritten(*read), document);
    ASSERT_TRUE(NqXmlDocument::readString(document, *read)); // what was there goes
    EXPECT_TRUE(read->equality(GetParam().object.get()));

    const std::unique_ptr<NqXmlObject> copy(GetParam().object->clone());
    EXPECT_TRUE(copy->equality(GetParam().object.get()));
    EXPECT_EQ(nqWritten(*copy), document);
    const std::string name = GetParam().name;
    EXPECT_EQ(copy->equalsDefault(), name == "EmptyTexts" || name == "Holder");
}

TEST_P(NqXmlEveryObject, ReadsAsFarAsADocumentGoes) {
    NqPrintCapture print;
    const std::string document = nqWritten(*GetParam().object);
    const std::size_t end = document.find_last_of('>') + 1;
    for (std::size_t length = 0; length < end; ++length) {
        print.clear();
        const std::unique_ptr<NqXmlObject> read(GetParam().object->newObject());
        EXPECT_FALSE(NqXmlDocument::readString(document.substr(0, length), *read, "cut.xml")) << length;
        EXPECT_TRUE(print.contains("-- file: cut.xml, line: ")) << length;
    }
}

TEST_P(NqXmlEveryObject, MatchesItsSchema) {
    const NqSchemaValidator schema(*GetParam().object, GetParam().name);
    ASSERT_TRUE(schema.isGood());
    const std::string document = nqWritten(*GetParam().object);
    EXPECT_TRUE(schema.accepts(document));
    std::string other = document;
    other.insert(other.rfind("</") == std::string::npos ? other.rfind("/>") : other.rfind("</"),
                 other.rfind("</") == std::string::npos ? " more=\"1\"" : "<more/>");
    EXPECT_FALSE(schema.accepts(other)) << other;
}

TEST(NqXmlDocument, FilesAreReplacedWhole) {
    NqPrintCapture print;
    const std::string fileName = testing::TempDir() + "nqDocument.xml";
    NqTestTexts texts;
    ASSERT_TRUE(NqXmlDocument::writeFile(fileName, NqTestTexts{"kept"}));
    EXPECT_FALSE(NqXmlDocument::writeFile(fileName, NqTestTexts{"bell \a"}));
    ASSERT_TRUE(NqXmlDocument::readFile(fileName, texts));
    EXPECT_EQ(texts, (NqTestTexts{"kept"}));
    EXPECT_FALSE(NqXmlDocument::writeFile("/no/such/folder/file.xml", texts));
    EXPECT_TRUE(print.contains("cannot write /no/such/folder/file.xml"));
    std::filesystem::remove(fileName);
}

TEST(NqXmlDocument, ScratchFilesAreItsOwn) {
    const std::string fileName = testing::TempDir() + "nqScratch.xml";
    std::ofstream(fileName + ".new") << "a user's";
    ASSERT_TRUE(NqXmlDocument::writeFile(fileName, NqTestTexts{"first"}));
    ASSERT_TRUE(NqXmlDocument::writeFile(fileName, NqTestTexts{"second"}));
    NqTestTexts texts;
    EXPECT_TRUE(NqXmlDocument::readFile(fileName, texts) && texts[0] == "second");
    std::string kept;
    std::getline(std::ifstream(fileName + ".new"), kept);
    EXPECT_EQ(kept, "a user's");

    NqPrintCapture print;
    const std::string folder = testing::TempDir() + "nqFolder.xml";
    std::filesystem::create_directory(folder);
    EXPECT_FALSE(NqXmlDocument::writeFile(folder, texts));
    EXPECT_FALSE(std::filesystem::exists(folder + ".new"));
}

/// Counts the objects and containers that it is shown.
class NqCountingVisitor : public NqXmlObjectVisitor {
public:
    using NqXmlObjectVisitor::visit;
    void visit(const NqXmlObject*) override { ++m_Objects; }
    void visit(const NqXmlBaseVariableCompoundType*) override { ++m_Containers; }
    unsigned m_Objects = 0, m_Containers = 0;
};

TEST(NqXmlObjectVisitor, SeesEveryObject) {
    const auto seen = [](const NqXmlObject& object) {
        NqCountingVisitor visitor;
        object.accept(&visitor);
        return std::pair(visitor.m_Objects, visitor.m_Containers);
    };
    EXPECT_EQ(seen(NqTestSquare()), std::pair(6U, 0U)); // the legacy component too
    EXPECT_EQ(seen(NqTestHolder()), std::pair(1U + 7U + 1U, 1U));
    EXPECT_EQ(seen(sampleShapes()), std::pair(1U + 6U + 2U, 1U));
    EXPECT_EQ(seen(sampleShapeMap()), std::pair(1U + 2U + 2U + 6U, 1U));
    EXPECT_EQ(seen(sampleMap()), std::pair(5U, 0U));
    EXPECT_EQ(seen(sampleSet()), std::pair(3U, 0U));
    EXPECT_EQ(seen(NqXmlVectorType<NqCoordinateSystemTransformation>{samplePose()}), std::pair(1U, 0U));
}

} // namespace
