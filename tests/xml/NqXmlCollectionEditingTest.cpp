#include "NqXmlTestClasses.h"

namespace {

using Numbers = std::vector<double>;

double numberOf(const NqXmlBasicType<double>& element) {
    return element;
}
double numberOf(const NqTestShape& element) {
    return dynamic_cast<const NqTestSquare&>(element).m_Side;
}

/// The same view on both vectors: elements that bear a number.
template <typename Vector>
class NqXmlBothVectors : public testing::Test {
protected:
    static constexpr bool isPlain = std::is_same_v<Vector, NqTestReals>;

    NqXmlBothVectors() {
        for (const double number : {0.0, 1.0, 2.0, 3.0, 4.0}) {
            m_Vector.pushBack(std::conditional_t<isPlain, NqXmlBasicType<double>, NqTestSquare>(number));
        }
    }
    Numbers numbers() const {
        Numbers result;
        for (const auto& element : m_Vector) {
            result.push_back(numberOf(element));
        }
        return result;
    }

    NqPrintCapture m_Print;
    Vector m_Vector;
};

using Kinds = testing::Types<NqTestReals, NqTestShapeVector>;
TYPED_TEST_SUITE(NqXmlBothVectors, Kinds);

TYPED_TEST(NqXmlBothVectors, RefuseWhatIsOutside) {
    constexpr bool plain = TestFixture::isPlain;
    const std::string name = plain ? "NqXmlVectorType<ElementType>" : "NqXmlVariableVectorType<ElementType>";
    const std::string range = name + "::erase: bad first/last indices: ";
    const auto expectRefused = [&](bool result, const std::string& message) {
        EXPECT_TRUE(!result && this->m_Print.contains(message)) << this->m_Print.text();
        EXPECT_TRUE(this->m_Print.contains("::erase(unsigned int") && this->m_Print.lines()[0].first == 4);
    };
    TypeParam& vector = this->m_Vector;
    expectRefused(vector.erase(5), name + "::erase(): index (5) exceeds vector size (5).\n");
    expectRefused(vector.erase(0, 6), plain ? "index (6) exceeds vector size ( 5).\n" : range + "0/6\n");
    expectRefused(vector.erase(3, 2), plain ? "first (3) is bigger than last (2).\n" : range + "3/2\n");
    EXPECT_TRUE(vector.erase(2, 2) == plain && !vector.leftRotate(5));
    EXPECT_EQ(this->numbers(), (Numbers{0.0, 1.0, 2.0, 3.0, 4.0}));
}

TYPED_TEST(NqXmlBothVectors, RotateAndErase) {
    TypeParam& vector = this->m_Vector;
    EXPECT_TRUE(vector.leftRotate(2) && vector.leftRotate(0));
    EXPECT_EQ(this->numbers(), (Numbers{2.0, 3.0, 4.0, 0.0, 1.0}));
    EXPECT_TRUE(vector.erase(1) && vector.erase(1, 3));
    EXPECT_EQ(this->numbers(), (Numbers{2.0, 1.0}));
    EXPECT_TRUE(vector.erase(0, 2) && vector.empty());
    EXPECT_FALSE(vector.leftRotate(0));
}

TYPED_TEST(NqXmlBothVectors, AreWrittenInParts) {
    std::ostringstream stream;
    NqXmlWriter* writer = nullptr;
    ASSERT_TRUE(this->m_Vector.writeHeaderToStream(stream, writer));
    ASSERT_TRUE(this->m_Vector.writeBodyToStream(writer));
    if constexpr (!TestFixture::isPlain) {
        ASSERT_TRUE(this->m_Vector.appendElementToStream(writer, NqTestCircle()));
        EXPECT_FALSE(this->m_Vector.appendElementToStream(nullptr, NqTestCircle()));
        this->m_Vector.pushBack(NqTestCircle());
    }
    ASSERT_TRUE(this->m_Vector.writeFooterToStream(writer));
    EXPECT_EQ(writer, nullptr);
    TypeParam read;
    EXPECT_TRUE(NqXmlDocument::readString(stream.str(), read)) << stream.str();
    EXPECT_EQ(read, this->m_Vector);

    stream.setstate(std::ios::failbit);
    EXPECT_FALSE(this->m_Vector.writeBodyToStream(nullptr) || this->m_Vector.writeFooterToStream(writer) ||
                 this->m_Vector.writeHeaderToStream(stream, writer));
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
    EXPECT_TRUE(shapes.exchange(0, NqTestCircle()) && shapes[0]->area() == 3.0);
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
    EXPECT_TRUE(map.erase(10) && !map.keyIndex(10, index));
    auto shapes = nqHolding<NqTestShapeMap>(std::tuple(NqTestText("a"), NqTestCircle()));
    EXPECT_TRUE(!shapes.erase(NqTestText("b")) && shapes.erase(NqTestText("a")) && shapes.size() == 0);
}

} // namespace
