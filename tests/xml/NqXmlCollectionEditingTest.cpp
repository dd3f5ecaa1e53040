#include "NqXmlTestClasses.h"
#include "support/NqPrintCapture.h"

#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Numbers = std::vector<double>;

/// The same view on both vectors: elements that bear a number.
struct PlainVector {
    using Type = NqTestReals;
    using Element = NqXmlBasicType<double>;
    static double number(const NqXmlBasicType<double>& element) { return element; }
    static constexpr const char* name = "NqXmlVectorType";
};
struct VariableVector {
    using Type = NqTestShapeVector;
    using Element = NqTestSquare;
    static double number(const NqTestShape& element) {
        return dynamic_cast<const NqTestSquare&>(element).m_Side;
    }
    static constexpr const char* name = "NqXmlVariableVectorType";
};

template <typename Kind>
class NqXmlBothVectors : public testing::Test {
protected:
    using Element = typename Kind::Element;

    NqXmlBothVectors() {
        for (const double number : {0.0, 1.0, 2.0, 3.0, 4.0}) {
            m_Vector.pushBack(Element(number));
        }
    }
    Numbers numbers() const {
        Numbers result;
        for (const auto& element : m_Vector) {
            result.push_back(Kind::number(element));
        }
        return result;
    }

    NqPrintCapture m_Print;
    typename Kind::Type m_Vector;
};

using Kinds = testing::Types<PlainVector, VariableVector>;
TYPED_TEST_SUITE(NqXmlBothVectors, Kinds);

TYPED_TEST(NqXmlBothVectors, EraseOneElement) {
    EXPECT_FALSE(this->m_Vector.erase(5));
    const std::string message =
        std::string(TypeParam::name) + "<ElementType>::erase(): index (5) exceeds vector size (5).\n";
    EXPECT_TRUE(this->m_Print.contains(message)) << this->m_Print.text();
    EXPECT_EQ(this->m_Print.lines().at(0).first, 4U);
    EXPECT_TRUE(this->m_Print.contains("::erase(unsigned int)"));
    EXPECT_TRUE(this->m_Vector.erase(4));
    EXPECT_TRUE(this->m_Vector.erase(1));
    EXPECT_EQ(this->numbers(), (Numbers{0.0, 2.0, 3.0}));
}

TEST(NqXmlVectorType, GrowsAndShrinks) {
    NqTestReals reals{1.0, 2.0};
    reals.resizeToAtLeast(1);
    EXPECT_EQ(reals.size(), 2U);
    reals.resizeToAtLeast(4);
    EXPECT_EQ(reals, (NqTestReals{1.0, 2.0, 0.0, 0.0}));
    reals.resize(1);
    reals.append(reals);
    EXPECT_EQ(reals, (NqTestReals{1.0, 1.0}));
    reals.assign(3, reals[0]);
    EXPECT_EQ(reals, NqTestReals(3, 1.0));
}

TEST(NqXmlSetType, TellsWhatIsNew) {
    NqTestSet set;
    EXPECT_TRUE(set.add("b") && set.add("a") && set.find("b"));
    EXPECT_FALSE(set.add("b") || set.find("c") || set.erase("c"));
    EXPECT_TRUE(set.erase("b"));
    EXPECT_FALSE(set.find("b"));
    EXPECT_EQ(set.size(), 1U);
}

TYPED_TEST(NqXmlBothVectors, EraseRanges) {
    constexpr bool isPlain = std::is_same_v<TypeParam, PlainVector>;
    const auto expectRefused = [&](unsigned first, unsigned last, const char* plain) {
        this->m_Print.clear();
        EXPECT_FALSE(this->m_Vector.erase(first, last));
        const std::string variable =
            "NqXmlVariableVectorType<ElementType>::erase: bad first/last indices: " + std::to_string(first) +
            "/" + std::to_string(last) + "\n";
        EXPECT_TRUE(this->m_Print.contains(isPlain ? plain : variable)) << this->m_Print.text();
    };
    expectRefused(0, 6, "index (6) exceeds vector size ( 5).\n");
    expectRefused(3, 2, "first (3) is bigger than last (2).\n");
    EXPECT_EQ(this->m_Vector.erase(2, 2), isPlain);
    EXPECT_EQ(this->numbers().size(), 5U);
    EXPECT_TRUE(this->m_Vector.erase(1, 3));
    EXPECT_EQ(this->numbers(), (Numbers{0.0, 3.0, 4.0}));
    EXPECT_TRUE(this->m_Vector.erase(0, 3));
    EXPECT_TRUE(this->m_Vector.empty());
}

TYPED_TEST(NqXmlBothVectors, RotateLeft) {
    EXPECT_TRUE(this->m_Vector.leftRotate(2));
    EXPECT_TRUE(this->m_Vector.leftRotate(0));
    EXPECT_FALSE(this->m_Vector.leftRotate(5));
    EXPECT_EQ(this->numbers(), (Numbers{2.0, 3.0, 4.0, 0.0, 1.0}));
    this->m_Vector.clear();
    EXPECT_FALSE(this->m_Vector.leftRotate(0));
}

TYPED_TEST(NqXmlBothVectors, AreWrittenInParts) {
    std::ostringstream stream;
    NqXmlWriter* writer = nullptr;
    ASSERT_TRUE(this->m_Vector.writeHeaderToStream(stream, writer));
    ASSERT_TRUE(this->m_Vector.writeBodyToStream(writer));
    if constexpr (std::is_same_v<TypeParam, VariableVector>) {
        ASSERT_TRUE(this->m_Vector.appendElementToStream(writer, NqTestCircle()));
        EXPECT_FALSE(this->m_Vector.appendElementToStream(nullptr, NqTestCircle()));
        this->m_Vector.pushBack(NqTestCircle());
    }
    ASSERT_TRUE(this->m_Vector.writeFooterToStream(writer));
    EXPECT_EQ(writer, nullptr);
    typename TypeParam::Type read;
    EXPECT_TRUE(NqXmlDocument::readString(stream.str(), read)) << stream.str();
    EXPECT_EQ(read, this->m_Vector);

    EXPECT_FALSE(this->m_Vector.writeBodyToStream(nullptr));
    EXPECT_FALSE(this->m_Vector.writeFooterToStream(writer));
    stream.setstate(std::ios::failbit);
    EXPECT_FALSE(this->m_Vector.writeHeaderToStream(stream, writer));
    EXPECT_EQ(writer, nullptr);
}

TEST(NqXmlVariableVectorType, ChecksIndices) {
    NqPrintCapture print;
    NqTestShapeVector shapes;
    shapes.pushBack(NqTestSquare(2.0));
    EXPECT_EQ(shapes[1], nullptr);
    EXPECT_TRUE(print.contains("index (1) exceeds vector size (1).\n"));
    EXPECT_TRUE(print.contains("::operator[](unsigned int)"));
    EXPECT_FALSE(shapes.exchange(1, NqTestCircle()));
    EXPECT_TRUE(print.contains("::exchange(unsigned int, const T"));
    EXPECT_TRUE(shapes.exchange(0, NqTestCircle()));
    EXPECT_EQ(shapes[0]->area(), 3.0);
}

TEST(NqXmlMapType, FindsByKeyAndPosition) {
    NqTestMap map;
    map.add(30, 3.0);
    map.add(10, 1.0);
    map.add(30, 5.0);
    EXPECT_EQ(map.size(), 2U);
    NqXmlBasicType<double> value(-1.0);
    NqXmlBasicType<unsigned short> key(std::uint16_t{99});
    unsigned index = 77;
    EXPECT_FALSE(map.lookup(20, value) || map.indexKey(2, key) || map.keyIndex(20, index) || map.erase(20));
    EXPECT_TRUE(value == -1.0 && key == 99 && index == 77);
    EXPECT_TRUE(map.lookup(30, value) && map.indexKey(1, key) && map.keyIndex(10, index));
    EXPECT_TRUE(value == 5.0 && key == 30 && index == 0);
    EXPECT_TRUE(map.erase(10));
    EXPECT_FALSE(map.keyIndex(10, index));
}

TEST(NqXmlVariableMapType, OwnsClones) {
    NqTestShapeMap shapes;
    NqTestSquare square(2.0);
    shapes.add("a", square);
    square.m_Side = 5.0;
    NqTestShapeMap copy = shapes;
    shapes.add("a", square);
    EXPECT_EQ(copy.lookup("a")->area(), 4.0);
    EXPECT_EQ(shapes.lookup("a")->area(), 25.0);
    copy = shapes;
    EXPECT_EQ(copy, shapes);
    EXPECT_TRUE(copy.erase("a"));
    EXPECT_FALSE(copy.erase("a"));
    EXPECT_EQ(copy.lookup("a"), nullptr);
}

} // namespace
