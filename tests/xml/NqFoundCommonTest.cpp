#include "matrix/NqArrayTesting.h"

#include <nqControlCore/xml/NqFoundCommonCollections.h>

namespace {

using namespace NqFoundCommon;
using Texts = NqXmlVectorType<NqXmlBasicType<std::string>>;

TEST(NqFoundCommon, NumbersComeBack) {
    const NqXmlRealVector numbers{0.1, -0.0, 5e-324, 1e300, INFINITY};
    EXPECT_EQ(realVector2CSVString(numbers), "0.1,-0,5e-324,1e+300,INF");
    for (const auto& written : {numbers, NqXmlRealVector(), NqXmlRealVector{2.0}}) {
        NqXmlRealVector read{9.0};
        ASSERT_TRUE(csvString2RealVector(realVector2CSVString(written), read));
        EXPECT_EQ(read, written);
    }
    NqXmlRealVector read;
    ASSERT_TRUE(csvString2RealVector(" 1 ,\t2\n", read));
    EXPECT_EQ(read, (NqXmlRealVector{1.0, 2.0}));
    for (const char* text : {"1,", ",1", "1,,2", "1;2", "1 2", "one"}) {
        EXPECT_FALSE(csvString2RealVector(text, read)) << text;
        EXPECT_EQ(read.size(), 2U);
    }
}

TEST(NqFoundCommon, TextsComeBack) {
    for (const auto& [texts, csv] :
         {std::pair{Texts{"a", "b c"}, "a,b c"}, std::pair{Texts{}, ""}, std::pair{Texts{""}, "\"\""},
          std::pair{Texts{" x", "y,z", "say \"hi\"", "", "1\n2"},
                    "\" x\",\"y,z\",\"say \"\"hi\"\"\",\"\",\"1\n2\""},
          std::pair{Texts{"\"", "\"\"", ","}, "\"\"\"\",\"\"\"\"\"\",\",\""}}) {
        EXPECT_EQ(stringVector2CSVString(texts), csv);
        Texts read{"old"};
        ASSERT_TRUE(csvString2StringVector(csv, read)) << csv;
        EXPECT_EQ(read, texts) << csv;
    }
    Texts read;
    ASSERT_TRUE(csvString2StringVector(" a , \"b\" ,,it's a \"c\"", read));
    EXPECT_EQ(read, (Texts{"a", "b", "", "it's a \"c\""}));
    for (const char* text : {"a,\"b", "\"a\"b,c", "\"\"\""}) {
        EXPECT_FALSE(csvString2StringVector(text, read)) << text;
        EXPECT_EQ(read.size(), 4U);
    }
}

TEST(NqFoundCommon, VectorsBecomeRows) {
    NqReArray array;
    NqXmlVectorType<NqXmlRealVector> rows{NqXmlRealVector{1.0, 2.0, 3.0}, NqXmlRealVector{4.0, 5.0, 6.0}};
    const NqReArray expected = nqArray({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
    EXPECT_TRUE(toReArray(rows, array) && array == expected);
    NqPrintCapture print;
    rows[1].resize(2);
    EXPECT_TRUE(!toReArray(rows, array) && array == expected);
    EXPECT_TRUE(print.contains("rows of 3 and of 2 entries"));
}

} // namespace
