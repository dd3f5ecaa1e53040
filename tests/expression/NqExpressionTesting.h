#pragma once

#include "support/NqTesting.h"

#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/expression/NqExpressionScalarConstant.h>

/// Documents of expressions, put together from elements.
namespace nqExpression {

inline std::string element(const std::string& name, const std::string& content = "") {
    return "<" + name + ">" + content + "</" + name + ">";
}

inline std::string document(const std::string& tree) {
    return "<expressionContainer>" + tree + "</expressionContainer>";
}

inline std::string number(const std::string& value) {
    return element("scalarConstant", value);
}

inline std::string column(const std::string& entries) {
    return element("generalColumn", element("column", entries));
}

/// The matrix l r^T.
inline std::string outer(const std::string& left, const std::string& right) {
    return element("times", column(left) + element("transpose", column(right)));
}

/// The text of a matrix: a semicolon behind each row.
inline std::string textOf(const NqReArray& matrix) {
    std::string text;
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        text += NqXmlRealVector(matrix[i]).toText() + ";";
    }
    return text;
}

struct TreeCase {
    std::string name, tree;
    std::string value;        ///< of what could be read
    std::string message = {}; ///< in the one line that reading or evaluation prints; none if empty
    bool result = true;       ///< of reading
};

/// Reads an expression in the place of another, evaluates it, copies it, and writes and reads it back.
inline NqExpressionContainer goThrough(const TreeCase& which) {
    SCOPED_TRACE(which.name);
    NqPrintCapture print;
    NqExpressionContainer expression;
    expression.setTopElement(NqExpressionScalarConstant::objectWithValue(17.0));
    EXPECT_EQ(NqXmlDocument::readString(document(which.tree), expression), which.result);
    const bool isOfReading = !print.lines().empty();
    EXPECT_EQ(textOf(expression.value()), which.value);
    EXPECT_EQ(print.lines().size(), which.message.empty() ? 0U : 1U) << print.text();
    EXPECT_TRUE(print.contains(which.message)) << print.text();
    EXPECT_TRUE(isOfReading || print.text().empty() || print.lines()[0].first == Nq::PrintFailure);
    EXPECT_EQ(textOf(expression.value()), which.value) << "a second time";
    const NqExpressionContainer read = nqThroughXml(expression);
    if (which.tree.find("NaN") == std::string::npos) { // which equals nothing
        EXPECT_EQ(read, NqExpressionContainer(expression));
    }
    EXPECT_EQ(nqWritten(read), nqWritten(expression));
    EXPECT_EQ(read == NqExpressionContainer(), !read.topElement());
    EXPECT_EQ(textOf(NqExpressionContainer(read).value()), which.value);
    return expression;
}

} // namespace nqExpression
