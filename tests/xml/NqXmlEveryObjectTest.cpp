#include "NqXmlTestClasses.h"

#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>

namespace {

struct ObjectCase {
    const char* name;
    std::shared_ptr<NqXmlObject> object;
    unsigned visited; ///< objects that a visitor sees
};

const auto kMap =
    nqHolding<NqTestMap>(std::tuple(std::uint16_t{70}, -0.0), std::tuple(std::uint16_t{3}, 0.1));
const auto kSet = nqHolding<NqTestSet>(std::tuple("b"), std::tuple("a"));
const auto kShapeMap =
    nqHolding<NqTestShapeMap>(std::tuple("<second>", NqTestCircle()), std::tuple("first", NqTestSquare()));

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

class NqXmlEveryObject : public testing::TestWithParam<ObjectCase> {};

const ObjectCase kCases[] = {
    {"EmptyTexts", made(NqTestTexts()), 1},
    {"Texts", made(NqTestTexts{"a", " b ", ""}), 4},
    {"RealVectors", made(NqXmlVectorType<NqXmlRealVector>{NqXmlRealVector{1.0, -2.5}, {}}), 3},
    {"Transformations", made(samplePoses()), 1},
    {"Maps", made(NqXmlVectorType<NqTestMap>{kMap}), 6},
    {"Compounds", made(NqXmlVectorType<NqTestSquare>{NqTestSquare(2.0)}), 7},
    {"Holder", made(NqTestHolder()), 16},
    {"Set", made(kSet), 3},
    {"Shapes", made(sampleShapes()), 10},
    {"ShapeMap", made(kShapeMap), 12},
    {"AccelerationFilter", made(sampleFilter()), 6}};

INSTANTIATE_TEST_SUITE_P(Forms, NqXmlEveryObject, testing::ValuesIn(kCases), nqCaseName);

TEST_P(NqXmlEveryObject, HasItsFormAndReadsBack) {
    const auto& [name, object, visited] = GetParam();
    NqPrintCapture print;
    const std::string document = nqWritten(*object);
    EXPECT_EQ(document, nqContentOf(nqGoldenFile("/forms/") + name + ".xml"));
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
    const NqSchemaValidator schema(*GetParam().object);
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
    const NqTestTexts second{std::string(20000, '2')}; // not to be read at once
    NqTestTexts texts;
    ASSERT_TRUE(NqXmlDocument::writeFile(fileName, NqTestTexts{"first"}));
    ASSERT_TRUE(NqXmlDocument::writeFile(fileName, second));
    EXPECT_FALSE(NqXmlDocument::writeFile(fileName, NqTestTexts{"bell \a"}));
    EXPECT_TRUE(NqXmlDocument::readFile(fileName, texts) && texts == second);
    EXPECT_FALSE(NqXmlDocument::writeFile("/no/such/folder/file.xml", texts));
    EXPECT_TRUE(print.contains("cannot write /no/such/folder/file.xml"));
    EXPECT_FALSE(NqXmlDocument::writeFile(folder, texts) || std::filesystem::exists(folder + ".new"));
    EXPECT_EQ(nqContentOf(fileName + ".new"), "a user's") << "scratch files are the writer's own";
}

} // namespace
