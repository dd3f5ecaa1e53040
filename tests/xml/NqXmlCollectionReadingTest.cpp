#include "NqXmlTestClasses.h"
namespace {

/// One document, what a collection makes of it, and what is said about it.
struct ReadingCase {
    const char* name;
    std::shared_ptr<NqXmlObject> expected;
    std::string content;    ///< of the root element, after its name
    unsigned printType = 0; ///< of the first message, 4 where reading fails; 0 for none
    const char* message = "";
};

NqTestShapeVector shapes(std::initializer_list<double> sides) {
    NqTestShapeVector vector;
    for (const double side : sides) {
        vector.pushBack(NqTestSquare(side));
    }
    return vector;
}

class NqXmlCollectionReading : public testing::TestWithParam<ReadingCase> {};

const auto a = made(NqTestTexts{"a"}), kMap = made(nqHolding<NqTestMap>(std::tuple(std::uint16_t{1}, 0.5))),
           kShapeMap = made(nqHolding<NqTestShapeMap>(std::tuple("k", NqTestSquare(2.0))));
const std::string kA = "<group><value>a</value></group>";
const std::string kPair = "<element><key>1</key><value>0.5</value></element>";
const std::string kSquare = "<element><key>k</key><square><size>2</size></square></element>";

const ReadingCase kVectors[] = {
    {"NoCount", a, ">" + kA, 3, "-- 0, actual -- 1"},
    {"HighCount", a, " count='4294967295'>" + kA, 3,
     "NqXmlVectorType Error: array size not equal to attribute value -- "},
    {"NegativeCount", a, " count='-13'>" + kA, 3, "-- -13, actual -- 1Filename: in.xml, Line count: 1\n"},
    {"CountWithTail", a, " count='1 or so'>" + kA},
    {"NoContent", made(NqTestTexts()), " count='3'/>"},
    {"NoElements", made(NqTestTexts()), " count='3'>", 3, "-- 3, actual -- 0"},
    {"SeveralGroups", made(NqTestTexts{"a", "a"}), " count='2'>" + kA + kA},
    {"ValuesInElements", a, " count='1'><element>a</element>"},
    {"ElementInValue", made(NqTestTexts{"", "b"}),
     " count='2'><group><value>a<i>x</i></value><value>b</value></group>", 4,
     "element \"i\" stands where a value is expected"},
    {"BadNumberKeepsItsPlace", made(NqTestReals{1.0, 0.0, 3.0}),
     " count='3'><group><value>1</value><value>?</value><value>3</value></group>", 4,
     "\"?\" is no value of element \"value\""},
    {"BadElementKeepsWhatItHas", made(NqXmlVectorType<NqTestSquare>{NqTestSquare(3.0)}),
     " count='1'><element><size>3</size><filteringMode>x</filteringMode></element>", 4,
     "\"x\" is no value of element \"filteringMode\""},
    {"Set", made(NqTestSet()), " count='2'>", 3,
     "NqXmlSetType Error: set size not equal to attribute value -- 2, actual -- 0"},
    {"NoShapes", made(shapes({})), " count='3'/>"},
    {"Shapes", made(shapes({2.0})), " count='2'><square><size>2</size></square>", 3,
     "NqXmlVariableVectorType Error: array size not equal to attribute value -- 2, actual -- 1"},
    {"Unregistered", made(shapes({2.0, 4.0})),
     " count='2'><square><size>2</size></square><star><size>9</size></star>"
     "<square><size>4</size></square>",
     4,
     "NqXmlVariableVectorType::readValueFromToken() error:\n\t\"star\" tag not registered.\n"
     "Filename: in.xml, Line count: 1\n"},
    {"RegisteredForAnotherClass", made(shapes({})), "><count/>", 4, "\"count\" tag not registered.\n"},
    {"OfAnotherNamespace", made(shapes({})), "><square xmlns='urn:other'/>", 4,
     "\"square\" tag not registered.\n"},
    {"BadField", made(shapes({1.0})), " count='1'><square><size>wide</size></square>", 4,
     "\"wide\" is no value of element \"size\""}};

const ReadingCase kMaps[] = {
    {"LaterStays", kMap, "><element><key>1</key><value>9</value></element>" + kPair},
    {"NoElement", kMap, "><entry/>" + kPair, 4,
     "NqXmlMapType Error: file not valid.\n\tKey map format not correct.\n\tFile: "
     "in.xml\n\tLine: 1\tExpected "},
    {"NoKey", kMap, "><element><value>1</value></element>" + kPair, 4, "\tExpected key but received value."},
    {"NoValue", kMap, "><element><key>2</key></element>" + kPair, 4,
     "\tExpected value but received nothing."},
    {"EmptyEntry", kMap, "><element/>" + kPair, 4, "\tExpected key but received nothing."},
    {"BadKey", kMap, "><element><key>65536</key><value>1</value></element>" + kPair, 4,
     "\"65536\" is no value of element \"key\""},
    {"BadValue", kMap, "><element><key>0</key><value>x</value></element>" + kPair, 4,
     "\"x\" is no value of element \"value\""},
    {"VariableRepeats", kShapeMap, ">" + kSquare + "<element><key>k</key><circle/></element>", 4,
     "NqXmlVariableMapType::read() error:\n\t\"k\" key in XML map more than once.\n"
     "Filename: in.xml, Line count: 1\n"},
    {"VariableUnregistered", kShapeMap, "><element><key>s</key><star/></element>" + kSquare, 4,
     "NqXmlVariableMapType::read() error:\n\t\"star\" tag not registered.\n"},
    {"VariableForm", kShapeMap, "><square/>" + kSquare, 4,
     "NqXmlVariableMapType Error: file not valid.\n\tKey map format not correct.\n\tFile: in.xml"
     "\n\tLine: 1\tExpected element but received square.\n"}};

INSTANTIATE_TEST_SUITE_P(Vectors, NqXmlCollectionReading, testing::ValuesIn(kVectors), nqCaseName);
INSTANTIATE_TEST_SUITE_P(Maps, NqXmlCollectionReading, testing::ValuesIn(kMaps), nqCaseName);

TEST_P(NqXmlCollectionReading, GivesResultAndMessage) {
    const auto& [caseName, expected, content, printType, message] = GetParam();
    NqPrintCapture print;
    const std::unique_ptr<NqXmlObject> read(expected->clone()); // of which nothing stays
    const std::string name(read->token().localName());
    const std::string end =
        content.ends_with("/>") && content.find('<') == std::string::npos ? "" : "</" + name + ">";
    EXPECT_EQ(NqXmlDocument::readString("<" + name + content + end, *read, "in.xml"), printType != 4);
    EXPECT_TRUE(read->equality(expected.get()));
    EXPECT_EQ(print.lines().empty() ? 0 : print.lines()[0].first, printType) << print.text();
    EXPECT_TRUE(print.contains(message)) << print.text();
}

TEST(NqXmlVariableVectorType, KeepsTheLibrariesItDoesNotLoad) {
    NqPrintCapture print;
    NqTestShapeVector vector, copy;
    ASSERT_TRUE(
        NqXmlDocument::readString("<endEffectorVector count='1'><addLibraries><library>one</library><book/>"
                                  "<library>two</library></addLibraries><circle/></endEffectorVector>",
                                  vector));
    EXPECT_TRUE(vector.addLibraries() == (NqTestTexts{"one", "two"}) && vector.size() == 1);
    EXPECT_TRUE(print.contains("library \"two\" is not loaded"));
    EXPECT_TRUE(print.contains("element \"book\" is not known here"));
    EXPECT_EQ(print.lines().at(1).first, 4U);
    copy = vector;
    EXPECT_TRUE(copy.addLibraries() == vector.addLibraries() && copy == vector);
    copy.setAddLibraries({"one"});
    EXPECT_FALSE(copy == vector);
}

TEST(NqXmlVariableVectorType, SpeaksOfEachLibraryOnce) {
    for (const auto& [libraries, messages] :
         {std::pair(3U, 3U), std::pair(3000U, 201U)}) { // the last: of others
        NqPrintCapture print;
        NqTestShapeVector vector;
        EXPECT_TRUE(NqXmlDocument::readString(
            "<endEffectorVector count='0'>" +
                nqRepeated("<addLibraries><library>l</library></addLibraries>", libraries) +
                "</endEffectorVector>",
            vector));
        EXPECT_TRUE(vector.addLibraries().size() == libraries && print.lines().size() == messages);
    }
}

TEST(NqXmlReader, TellsTheLineOfEachTagAndText) {
    NqPrintCapture print;
    NqTestTexts texts;
    const std::string lines(70'000, '\n');
    EXPECT_TRUE(NqXmlDocument::readString("<vectorType count='9'\n>\n<group>\n<value>a\n</value>\n</group>\n"
                                          "<!--\n> <b> \n--></vectorType\n>",
                                          texts, "a.xml"));
    EXPECT_FALSE(NqXmlDocument::readString("<vectorType count='9'>" + lines +
                                               "<other a='\n>'/>\n<group>x\n\n<value>" + lines +
                                               "<c/></value></group>\n</vectorType>",
                                           texts, "b.xml"));
    std::string places;
    for (const auto& line : print.lines()) {
        places += line.second.substr(line.second.find_last_of(' '));
    }
    EXPECT_EQ(places, " 10\n 70002\n 70005\n 140005\n 140006\n") << print.text();
}

TEST(NqXmlVariableVectorType, KeepsCreatorsOfItsUser) {
    NqTestShapeVector shapes;
    shapes.registerComponentCreator(NqTestSquare::classToken(), NqTestCircle::creator); // before the class's
    const std::unique_ptr<NqXmlObject> square(shapes.newObjectFromToken("square"));
    EXPECT_TRUE(dynamic_cast<NqTestCircle*>(square.get()));
    shapes.registerComponentCreator("star", NqTestSquare::creator);
    NqTestShapeVector assigned;
    assigned = shapes;
    for (NqTestShapeVector copy : {shapes, assigned}) {
        EXPECT_TRUE(NqXmlDocument::readString(
            "<endEffectorVector count='2'><square/><star/></endEffectorVector>", copy));
        EXPECT_EQ(copy[0]->area(), 3.0);
        EXPECT_EQ(copy[1]->area(), 1.0);
    }
}

} // namespace
