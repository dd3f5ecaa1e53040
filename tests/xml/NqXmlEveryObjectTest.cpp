#include "NqXmlTestClasses.h"
#include "support/NqSchemaValidator.h"

#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>

#include <algorithm>
#include <fstream>

namespace {

struct ObjectCase {
    const char* name;
    std::shared_ptr<NqXmlObject> object;
    unsigned visited; ///< objects that a visitor sees
    std::string text; ///< of the document, without declaration and line breaks, with single quotes
};

/// A collection with an entry for each of the argument lists of its add().
template <typename Collection, typename... Entries>
Collection holding(const Entries&... entries) {
    Collection collection;
    (std::apply([&](const auto&... entry) { collection.add(entry...); }, entries), ...);
    return collection;
}

const auto kMap = holding<NqTestMap>(std::tuple(std::uint16_t{70}, -0.0), std::tuple(std::uint16_t{3}, 0.1));
const auto kSet = holding<NqTestSet>(std::tuple("b"), std::tuple("a"));
const auto kShapeMap =
    holding<NqTestShapeMap>(std::tuple("<second>", NqTestCircle()), std::tuple("first", NqTestSquare()));

NqTestShapeVector sampleShapes() {
    NqTestShapeVector shapes;
    NqTestSquare square(2.5);
    square.m_Name = "big & \"wide\"\n";
    shapes.pushBack(square);
    shapes.pushBack(NqTestCircle());
    shapes.setAddLibraries({"extra"});
    return shapes;
}

NqXmlVectorType<NqCoordinateSystemTransformation> samplePoses() {
    NqOrientation orientation;
    orientation.setFromQuaternion(0.5, -0.5, 0.1, 0.7);
    return {{NqVector(0.1, 1e-300, -3.0), orientation}};
}

NqGeneralMotionAccFilter sampleFilter() {
    NqGeneralMotionAccFilter filter;
    filter.setOffset({0.1, 0.2, 0.3});
    filter.setAngularWeight(0.25);
    filter.setThreshold(0.1 + 0.2);
    filter.setLinearGain(30.0);
    filter.setAngularGain(40.0);
    return filter;
}

#define NQ_CT "xmlns='http://nq.example/namespace/ct#'"
#define NQ_MODE "<filteringMode>trapezoidal</filteringMode>"

class NqXmlEveryObject : public testing::TestWithParam<ObjectCase> {};

INSTANTIATE_TEST_SUITE_P(
    Forms, NqXmlEveryObject,
    testing::Values(
        ObjectCase{"EmptyTexts", made(NqTestTexts()), 1, "<vectorType count='0'/>"},
        ObjectCase{"Texts", made(NqTestTexts{"a", " b ", ""}), 4,
                   "<vectorType count='3'><group><value>a</value><value> b </value><value></value></group>"
                   "</vectorType>"},
        ObjectCase{"RealVectors", made(NqXmlVectorType<NqXmlRealVector>{NqXmlRealVector{1.0, -2.5}, {}}), 3,
                   "<vectorType count='2'><group><value>1 -2.5</value><value></value></group></vectorType>"},
        ObjectCase{"Transformations", made(samplePoses()), 1,
                   "<vectorType count='1'><group><value>0.1 1e-300 -3 0.5 -0.5 0.1 0.7</value></group>"
                   "</vectorType>"},
        ObjectCase{"Maps", made(NqXmlVectorType<NqTestMap>{kMap}), 6,
                   "<vectorType count='1'><element><element><key>3</key><value>0.1</value></element>"
                   "<element><key>70</key><value>-0</value></element></element></vectorType>"},
        ObjectCase{"Compounds", made(NqXmlVectorType<NqTestSquare>{NqTestSquare(2.0)}), 7,
                   "<vectorType count='1'><element type='shape'><size " NQ_CT ">2</size><filteringMode " NQ_CT
                   ">trapezoidal</filteringMode></element></vectorType>"},
        ObjectCase{"Holder", made(NqTestHolder()), 16,
                   "<motionFilterSet " NQ_CT "><frame type='shape'><size>3</size>" NQ_MODE "</frame>"
                   "<motionFilterSets count='1'><element type='shape'><size>3</size>" NQ_MODE "</element>"
                   "</motionFilterSets><endEffectorVector count='0'/></motionFilterSet>"},
        ObjectCase{"Set", made(kSet), 3,
                   "<setType count='2'><group><value>a</value><value>b</value></group></setType>"},
        ObjectCase{"Shapes", made(sampleShapes()), 10,
                   "<endEffectorVector " NQ_CT
                   " count='2'><addLibraries><library>extra</library></addLibraries>"
                   "<square type='big &amp; &quot;wide&quot;&#10;'><size>2.5</size>" NQ_MODE "</square>"
                   "<circle type='shape'/></endEffectorVector>"},
        ObjectCase{
            "ShapeMap", made(kShapeMap), 12,
            "<endEffectorMap " NQ_CT "><element><key>&lt;second&gt;</key><circle type='shape'/></element>"
            "<element><key>first</key><square type='shape'><size>1</size>" NQ_MODE "</square></element>"
            "</endEffectorMap>"},
        ObjectCase{
            "AccelerationFilter", made(sampleFilter()), 6,
            "<generalMotionAccelerationFilter " NQ_CT "><offset>0.1 0.2 0.3</offset>"
            "<angularWeight>0.25</angularWeight><threshold>0.30000000000000004</threshold>"
            "<linearGain>30</linearGain><angularGain>40</angularGain></generalMotionAccelerationFilter>"}),
    [](const auto& which) { return which.param.name; });

TEST_P(NqXmlEveryObject, HasItsFormAndReadsBack) {
    const auto& [name, object, visited, text] = GetParam();
    NqPrintCapture print;
    const std::string document = nqWritten(*object);
    std::string lines = document.substr(document.find('\n'));
    for (std::size_t at = 0; (at = lines.find('\n', at)) != std::string::npos;) {
        lines.erase(at, lines.find_first_not_of(" \n", at) - at);
    }
    std::ranges::replace(lines, '"', '\'');
    EXPECT_EQ(lines, text);
    EXPECT_EQ(nqVisited(*object), visited);

    const std::unique_ptr<NqXmlObject> read(object->newObject()), copy(object->clone());
    for (int i = 0; i < 2; ++i) { // what was there goes
        ASSERT_TRUE(NqXmlDocument::readString(document, *read));
        EXPECT_TRUE(read->equality(object.get()) && copy->equality(object.get()));
        EXPECT_TRUE(nqWritten(*read) == document && nqWritten(*copy) == document);
    }
    EXPECT_EQ(copy->equalsDefault(), std::string(name) == "EmptyTexts" || std::string(name) == "Holder");
}

TEST_P(NqXmlEveryObject, MatchesItsSchema) {
    const NqSchemaValidator schema(*GetParam().object, GetParam().name);
    ASSERT_TRUE(schema.isGood());
    const std::string document = nqWritten(*GetParam().object);
    EXPECT_TRUE(schema.accepts(document));
    const std::size_t end = document.rfind("</");
    const bool isEmpty = end == std::string::npos;
    std::string other = document;
    other.insert(isEmpty ? other.rfind("/>") : end, isEmpty ? " more='1'" : "<more/>");
    EXPECT_FALSE(schema.accepts(other)) << other;
}

TEST(NqXmlDocument, FilesAreReplacedWhole) {
    NqPrintCapture print;
    const std::string fileName = testing::TempDir() + "nqDocument.xml";
    const std::string folder = testing::TempDir() + "nqFolder.xml";
    std::ofstream(fileName + ".new") << "a user's";
    std::filesystem::create_directory(folder);
    NqTestTexts texts;
    ASSERT_TRUE(NqXmlDocument::writeFile(fileName, NqTestTexts{"first"}));
    ASSERT_TRUE(NqXmlDocument::writeFile(fileName, NqTestTexts{"second"}));
    EXPECT_FALSE(NqXmlDocument::writeFile(fileName, NqTestTexts{"bell \a"}));
    EXPECT_TRUE(NqXmlDocument::readFile(fileName, texts) && texts == NqTestTexts{"second"});
    EXPECT_FALSE(NqXmlDocument::writeFile("/no/such/folder/file.xml", texts));
    EXPECT_TRUE(print.contains("cannot write /no/such/folder/file.xml"));
    EXPECT_FALSE(NqXmlDocument::writeFile(folder, texts) || std::filesystem::exists(folder + ".new"));
    std::string kept;
    std::getline(std::ifstream(fileName + ".new"), kept);
    EXPECT_EQ(kept, "a user's") << "scratch files are the writer's own";
}

} // namespace
