#include "NqXmlTestClasses.h"
#include "support/NqPrintCapture.h"

#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <gtest/gtest.h>

namespace {

/// One document, what a collection makes of it, and what is said about it.
struct ReadingCase {
    const char* name;
    std::shared_ptr<NqXmlObject> expected;
    const char* content; ///< of the root element, after its name
    bool result;
    unsigned printType; ///< of the first message; 0 for none
    const char* message;
};

std::shared_ptr<NqXmlObject> shapes(std::initializer_list<double> sides) {
    const auto vector = std::make_shared<NqTestShapeVector>();
    for (const double side : sides) {
        vector->pushBack(NqTestSquare(side));
    }
    return vector;
}

std::shared_ptr<NqXmlObject> shapeMap(std::initializer_list<const char*> keys) {
    const auto map = std::make_shared<NqTestShapeMap>();
    for (const char* key : keys) {
        map->add(key, NqTestSquare(2.0));
    }
    return map;
}

NqTestMap map(std::initializer_list<unsigned short> keys) {
    NqTestMap result;
    for (const unsigned short key : keys) {
        result.add(key, 0.5);
    }
    return result;
}

class NqXmlCollectionReading : public testing::TestWithParam<ReadingCase> {};

const auto a = made(NqTestTexts{"a"});
constexpr const char* kArrayCount = "NqXmlVectorType Error: array size not equal to attribute value -- ";
constexpr const char* kMapForm =
    "NqXmlMapType Error: file not valid.\n\tKey map format not correct.\n\tFile: "
    "in.xml\n\tLine: 1\tExpected ";
#define NQ_PAIR(key, value) "<element><key>" key "</key><value>" value "</value></element>"
#define NQ_SQUARE(key) "<element><key>" key "</key><square><size>2</size></square></element>"

INSTANTIATE_TEST_SUITE_P(
    Vectors, NqXmlCollectionReading,
    testing::Values(
        ReadingCase{"NoCount", a, "><group><value>a</value></group>", true, 3, "-- 0, actual -- 1"},
        ReadingCase{"HighCount", a, " count='4294967295'><group><value>a</value></group>", true, 3,
                    kArrayCount},
        ReadingCase{"NegativeCount", a, " count='-3'><group><value>a</value></group>", true, 3,
                    "-- -3, actual -- 1Filename: in.xml, Line count: 1\n"},
        ReadingCase{"CountWithTail", a, " count='1 or so'><group><value>a</value></group>", true, 0, ""},
        ReadingCase{"NoElements", made(NqTestTexts()), " count='3'>", true, 3, "-- 3, actual -- 0"},
        ReadingCase{"SeveralGroups", made(NqTestTexts{"a", "b"}),
                    " count='2'><group><value>a</value></group><group><value>b</value></group>", true, 0, ""},
        ReadingCase{"ValuesInElements", a, " count='1'><element>a</element>", true, 0, ""},
        ReadingCase{"ElementInValue", made(NqTestTexts{"", "b"}),
                    " count='2'><group><value>a<i>x</i></value><value>b</value></group>", false, 4,
                    "element \"i\" stands where a value is expected"},
        ReadingCase{"BadNumberKeepsItsPlace", made(NqTestReals{1.0, 0.0, 3.0}),
                    " count='3'><group><value>1</value><value>?</value><value>3</value></group>", false, 4,
                    "\"?\" is no value of element \"value\""},
        ReadingCase{"BadElementKeepsWhatItHas", made(NqXmlVectorType<NqTestSquare>{NqTestSquare(3.0)}),
                    " count='1'><element><size>3</size><filteringMode>x</filteringMode></element>", false, 4,
                    "\"x\" is no value of element \"filteringMode\""},
        ReadingCase{"Set", made(NqTestSet()), " count='2'>", true, 3,
                    "NqXmlSetType Error: set size not equal to attribute value -- 2, actual -- 0"}),
    [](const auto& which) { return which.param.name; });

INSTANTIATE_TEST_SUITE_P(
    VariableVectors, NqXmlCollectionReading,
    testing::Values(
        ReadingCase{
            "Count", shapes({2.0}), " count='2'><square><size>2</size></square>", true, 3,
            "NqXmlVariableVectorType Error: array size not equal to attribute value -- 2, actual -- 1"},
        ReadingCase{"Unregistered", shapes({2.0, 4.0}),
                    " count='2'><square><size>2</size></square><star><size>9</size></star>"
                    "<square><size>4</size></square>",
                    false, 4,
                    "NqXmlVariableVectorType::readValueFromToken() error:\n\t\"star\" tag not registered.\n"
                    "Filename: in.xml, Line count: 1\n"},
        ReadingCase{"RegisteredForAnotherClass", shapes({}), "><count/>", false, 4,
                    "\"count\" tag not registered.\n"},
        ReadingCase{"OfAnotherNamespace", shapes({}), "><square xmlns='urn:other'/>", false, 4,
                    "\"square\" tag not registered.\n"},
        ReadingCase{"BadField", shapes({1.0}), " count='1'><square><size>wide</size></square>", false, 4,
                    "\"wide\" is no value of element \"size\""}),
    [](const auto& which) { return which.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Maps, NqXmlCollectionReading,
    testing::Values(
        ReadingCase{"LaterStays", made(map({1})), ">" NQ_PAIR("1", "9") NQ_PAIR("1", "0.5"), true, 0, ""},
        ReadingCase{"NoElement", made(map({1})), "><entry/>" NQ_PAIR("1", "0.5"), false, 4, kMapForm},
        ReadingCase{"NoKey", made(map({1})), "><element><value>1</value></element>" NQ_PAIR("1", "0.5"),
                    false, 4, "\tExpected key but received value."},
        ReadingCase{"NoValue", made(map({1})), "><element><key>2</key></element>" NQ_PAIR("1", "0.5"), false,
                    4, "\tExpected value but received nothing."},
        ReadingCase{"EmptyEntry", made(map({1})), "><element/>" NQ_PAIR("1", "0.5"), false, 4,
                    "\tExpected key but received nothing."},
        ReadingCase{"BadKey", made(map({1})), ">" NQ_PAIR("65536", "1") NQ_PAIR("1", "0.5"), false, 4,
                    "\"65536\" is no value of element \"key\""},
        ReadingCase{"BadValue", made(map({1})), ">" NQ_PAIR("0", "x") NQ_PAIR("1", "0.5"), false, 4,
                    "\"x\" is no value of element \"value\""},
        ReadingCase{"VariableRepeats", shapeMap({"k"}),
                    ">" NQ_SQUARE("k") "<element><key>k</key><circle/></element>", false, 4,
                    "NqXmlVariableMapType::read() error:\n\t\"k\" key in XML map more than once.\n"
                    "Filename: in.xml, Line count: 1\n"},
        ReadingCase{"VariableUnregistered", shapeMap({"k"}),
                    "><element><key>s</key><star/></element>" NQ_SQUARE("k"), false, 4,
                    "NqXmlVariableMapType::read() error:\n\t\"star\" tag not registered.\n"},
        ReadingCase{
            "VariableForm", shapeMap({"k"}), "><square/>" NQ_SQUARE("k"), false, 4,
            "NqXmlVariableMapType Error: file not valid.\n\tKey map format not correct.\n\tFile: in.xml"
            "\n\tLine: 1\tExpected element but received square.\n"}),
    [](const auto& which) { return which.param.name; });

TEST_P(NqXmlCollectionReading, GivesResultAndMessage) {
    NqPrintCapture print;
    const std::unique_ptr<NqXmlObject> read(GetParam().expected->newObject());
    const std::string name(read->token().localName());
    EXPECT_EQ(NqXmlDocument::readString("<" + name + GetParam().content + "</" + name + ">", *read, "in.xml"),
              GetParam().result);
    EXPECT_TRUE(read->equality(GetParam().expected.get()));
    ASSERT_EQ(print.lines().empty(), GetParam().printType == 0) << print.text();
    if (!print.lines().empty()) {
        EXPECT_EQ(print.lines()[0].first, GetParam().printType) << print.text();
        EXPECT_NE(print.lines()[0].second.find(GetParam().message), std::string::npos) << print.text();
    }
}

TEST(NqXmlCollectionReading, AnElementWithoutContentIsEmpty) {
    NqPrintCapture print;
    NqTestTexts texts{"old"};
    NqTestShapeVector vector;
    EXPECT_TRUE(NqXmlDocument::readString("<vectorType count='3'/>", texts));
    EXPECT_TRUE(NqXmlDocument::readString("<endEffectorVector count='3'/>", vector));
    EXPECT_TRUE(texts.empty() && vector.empty() && print.lines().empty());
}

TEST(NqXmlVariableVectorType, KeepsTheLibrariesItDoesNotLoad) {
    NqPrintCapture print;
    NqTestShapeVector vector;
    const char* document = "<endEffectorVector count='1'><addLibraries><library>one</library><book/>"
                           "<library>two</library></addLibraries><circle/></endEffectorVector>";
    ASSERT_TRUE(NqXmlDocument::readString(document, vector));
    EXPECT_EQ(vector.addLibraries(), (NqTestTexts{"one", "two"}));
    EXPECT_EQ(vector.size(), 1U);
    EXPECT_TRUE(print.contains("library \"two\" is not loaded"));
    EXPECT_TRUE(print.contains("element \"book\" is not known here"));
    EXPECT_EQ(print.lines().at(1).first, 4U);

    NqTestShapeVector copy;
    copy = vector;
    EXPECT_EQ(copy.addLibraries(), vector.addLibraries());
    EXPECT_EQ(copy, vector);
    copy.setAddLibraries({"one"});
    EXPECT_FALSE(copy == vector);
}

TEST(NqXmlVariableVectorType, SpeaksOfEachLibraryOnce) {
    const auto messagesOn = [](unsigned libraries) {
        NqPrintCapture print;
        NqTestShapeVector vector;
        std::string document = "<endEffectorVector count='0'>";
        for (unsigned i = 0; i < libraries; ++i) {
            document += "<addLibraries><library>l</library></addLibraries>";
        }
        EXPECT_TRUE(NqXmlDocument::readString(document + "</endEffectorVector>", vector));
        EXPECT_EQ(vector.addLibraries().size(), libraries);
        return print.lines().size();
    };
    EXPECT_EQ(messagesOn(3), 3U);
    EXPECT_EQ(messagesOn(3000), 201U); // the last of them tells that others are left out
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

/// A container around others, that knows a class which those within don't.
class NqOuterVector : public NqXmlConcrete<NqOuterVector, NqXmlVariableVectorType<NqXmlObject>> {
public:
    static const NqToken& classToken() { return NqXml::NqVarVectorTypeToken; }
    void registerComponentCreators() override {
        registerComponentCreator("star", NqTestCircle::creator);
        registerComponentCreator("endEffectorVector", NqTestShapeVector::creator);
        registerComponentCreator("endEffectorMap", NqTestShapeMap::creator);
    }
};

TEST(NqXmlVariableVectorType, AsksTheContainerAroundIt) {
    NqOuterVector outer;
    ASSERT_TRUE(NqXmlDocument::readString(
        "<varVectorType count='3'><endEffectorVector count='1'><star/></endEffectorVector>"
        "<endEffectorMap><element><key>k</key><star/></element></endEffectorMap><star/></varVectorType>",
        outer));
    ASSERT_EQ(outer.size(), 3U);
    EXPECT_EQ(dynamic_cast<NqTestShapeVector&>(*outer[0]).size(), 1U);
    EXPECT_TRUE(dynamic_cast<NqTestShapeMap&>(*outer[1]).lookup("k"));

    NqPrintCapture print;
    NqTestShapeVector alone;
    EXPECT_FALSE(NqXmlDocument::readString("<endEffectorVector><star/></endEffectorVector>", alone));
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
