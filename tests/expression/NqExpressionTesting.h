#pragma once

#include "support/NqXmlRoundTrip.h"

#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

#include <string>

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

} // namespace nqExpression
