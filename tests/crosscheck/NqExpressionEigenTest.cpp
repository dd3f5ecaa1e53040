#include "expression/NqExpressionTesting.h"
#include "support/NqPrintCapture.h"

#include <nqControlCore/expression/NqExpressionBaseBinary.h>
#include <nqControlCore/expression/NqExpressionBaseUnary.h>

#include <gtest/gtest.h>

#include <Eigen/Core>

#include <bit>
#include <random>

// Expressions drawn at random, each node evaluated by Eigen from what its children give.

namespace {

using Eigen::Index;
using Matrix = Eigen::MatrixXd;

struct Node {
    std::string name;
    std::string content = {}; ///< of a leaf, with its matrix
    Matrix matrix = {};
    std::vector<Node> children = {};

    std::string text() const {
        std::string all = content;
        for (const Node& child : children) {
            all += child.text();
        }
        return nqExpression::element(name, all);
    }
};

/// Draws trees, the shapes of which fit more often than not.
class Generator {
public:
    explicit Generator(std::uint64_t seed) : m_Random(seed) {}

    Node tree(unsigned depth, Index rows, Index columns) {
        if (oneOf(12)) {
            (oneOf(2) ? rows : columns) = size();
        }
        if (depth == 0 || oneOf(10)) {
            return leaf(rows, columns);
        }
        const auto pick = [&](const std::vector<std::string>& names) { return names[draw(names.size())]; };
        const auto child = [&](Index r, Index c) { return tree(depth - 1, r, c); };
        Node node;
        switch (draw(5)) {
        case 0:
            node.name = pick({"elementInverse", "negative", "sine", "cosine", "elementLog"});
            node.children = {child(rows, columns)};
            break;
        case 1:
            node.name = pick({"plus", "minus"});
            node.children = {child(rows, columns), child(rows, columns)};
            break;
        case 2:
            node.name = pick({"elementPow", "elementRoot", "elementLogN"});
            node.children = {child(rows, columns), child(1, 1)};
            break;
        case 3:
            node.name =
                pick({"and", "or", "lessThan", "greaterThan", "lessThanOrEqualTo", "greaterThanOrEqualTo"});
            node.children = {child(rows, size()), child(size(), columns)};
            break;
        default:
            const Index inner = size();
            if (oneOf(2)) {
                node = {"transpose", {}, {}, {child(columns, rows)}};
            } else {
                node = {"times", {}, {}, {child(rows, inner), child(inner, columns)}};
            }
        }
        while (!node.children.empty() && oneOf(20)) {
            node.children.pop_back();
        }
        return node;
    }

    Index size() { return oneOf(20) ? 0 : 1 + static_cast<Index>(draw(3)); }

private:
    std::uint64_t draw(std::uint64_t below) { return m_Random() % below; }
    bool oneOf(std::uint64_t many) { return draw(many) == 0; }
    double value() { return oneOf(6) ? 0.0 : std::uniform_real_distribution<double>(-3.0, 3.0)(m_Random); }

    Node leaf(Index rows, Index columns) {
        const auto field = [](const char* name, const auto& number) {
            return nqExpression::element(name,
                                         NqXmlBasicType<std::decay_t<decltype(number)>>(number).toText());
        };
        const auto count = [&](const char* name, Index number) {
            return field(name, static_cast<unsigned>(number));
        };
        const std::string sizes = count("rowSize", rows) + count("columnSize", columns);
        const double entry = value();
        Matrix matrix = Matrix::Zero(rows, columns);
        if (rows == 1 && columns == 1 && !oneOf(4)) {
            matrix(0, 0) = entry;
            return {"scalarConstant", NqXmlBasicType<double>(entry).toText(), matrix};
        }
        if (rows == columns && oneOf(3)) {
            return {"identityMatrix", count("size", rows), Matrix::Identity(rows, rows)};
        }
        const auto row = static_cast<Index>(draw(4)), column = static_cast<Index>(draw(4));
        const std::string single = field("elementValue", entry);
        if (columns == 1 && oneOf(2)) {
            if (row < rows) {
                matrix(row, 0) = entry;
            }
            return {"singleElementColumn", single + count("size", rows) + count("position", row), matrix};
        }
        if (oneOf(4)) {
            if (row < rows && column < columns) {
                matrix(row, column) = entry;
            }
            return {"singleElementMatrix",
                    single + sizes + count("rowPosition", row) + count("columnPosition", column), matrix};
        }
        NqXmlRealVector entries(columns == 1 ? static_cast<std::size_t>(rows) : draw(5));
        for (Index i = 0; i < static_cast<Index>(entries.size()); ++i) {
            entries[static_cast<std::size_t>(i)] = value();
            if (i < rows && (columns == 1 || i < columns)) {
                matrix(i, columns == 1 ? 0 : i) = entries[static_cast<std::size_t>(i)];
            }
        }
        return columns == 1 ? Node{"generalColumn", nqExpression::element("column", entries.toText()), matrix}
                            : Node{"diagonalMatrix",
                                   sizes + nqExpression::element("diagonal", entries.toText()), matrix};
    }

    std::mt19937_64 m_Random;
};

struct Result {
    Matrix value;
    Matrix tolerance; ///< empty where the operation is exact
};

Result rounded(const Matrix& value) {
    return {value, 1e-15 * value.cwiseAbs()};
}

Result unary(const std::string& name, const Matrix& c) {
    return name == "transpose"        ? Result{c.transpose(), {}}
           : name == "negative"       ? Result{-c, {}}
           : name == "elementInverse" ? Result{c.cwiseInverse(), {}}
           : name == "sine"           ? rounded(c.array().sin())
           : name == "cosine"         ? rounded(c.array().cos())
                                      : rounded(c.array().log());
}

Result binary(const std::string& name, const Matrix& l, const Matrix* r) {
    const auto test = [&](auto holds) -> Result {
        if (!r) {
            return {};
        }
        const Index rows = std::min(l.rows(), r->rows()), columns = std::min(l.cols(), r->cols());
        return {l.topLeftCorner(rows, columns)
                    .binaryExpr(r->topLeftCorner(rows, columns),
                                [&](double a, double b) { return holds(a, b) ? 1.0 : 0.0; }),
                {}};
    };
    if (name == "plus" || name == "minus") {
        if (!r) {
            return {l, {}};
        }
        const bool fits = l.rows() == r->rows() && l.cols() == r->cols();
        return fits ? Result{name == "plus" ? Matrix(l + *r) : Matrix(l - *r), {}} : Result{};
    }
    if (name == "times") {
        return r && l.cols() == r->rows() ? Result{l * *r, 1e-15 * (l.cwiseAbs() * r->cwiseAbs())} : Result{};
    }
    if (name == "elementPow") {
        return r ? rounded(l.array().pow((*r)(0, 0))) : Result{l, {}};
    }
    if (name == "elementRoot") {
        return !r                ? rounded(l.array().pow(0.5))
               : (*r)(0, 0) == 0 ? Result{l, {}}
                                 : rounded(l.array().pow(1.0 / (*r)(0, 0)));
    }
    if (name == "elementLogN") {
        return rounded(r ? Matrix(l.array().log() / std::log((*r)(0, 0))) : Matrix(l.array().log()));
    }
    return name == "and"                 ? test([](double a, double b) { return a != 0.0 && b != 0.0; })
           : name == "or"                ? test([](double a, double b) { return a != 0.0 || b != 0.0; })
           : name == "lessThan"          ? test(std::less<>())
           : name == "greaterThan"       ? test(std::greater<>())
           : name == "lessThanOrEqualTo" ? test(std::less_equal<>())
                                         : test(std::greater_equal<>());
}

Matrix matrixOf(const NqReArray& array) {
    Matrix matrix(array.rows(), array.columns());
    for (Index i = 0; i < matrix.rows(); ++i) {
        for (Index j = 0; j < matrix.cols(); ++j) {
            matrix(i, j) = array[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
        }
    }
    return matrix;
}

bool agree(const Matrix& value, const Result& expected) {
    if (value.rows() != expected.value.rows() ||
        (value.rows() > 0 && value.cols() != expected.value.cols())) {
        return false;
    }
    for (Index i = 0; i < value.rows(); ++i) {
        for (Index j = 0; j < value.cols(); ++j) {
            const double a = value(i, j), b = expected.value(i, j);
            const bool same = std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
                              (std::isnan(a) && std::isnan(b));
            if (!same && (expected.tolerance.size() == 0 || !(std::abs(a - b) <= expected.tolerance(i, j)))) {
                return false;
            }
        }
    }
    return true;
}

/// Compares the values of a node and of all below it. Returns that of the node.
Matrix compare(const Node& node, const NqExpressionElement& element,
               std::map<std::string, unsigned>& compared) {
    std::vector<const NqExpressionElement*> elements;
    if (const auto* parent = dynamic_cast<const NqExpressionBaseUnary*>(&element)) {
        elements = {parent->child()};
    } else if (const auto* both = dynamic_cast<const NqExpressionBaseBinary*>(&element)) {
        elements = {both->left(), both->right()};
    }
    std::vector<Matrix> operands;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        EXPECT_EQ(elements[i] != nullptr, i < node.children.size());
        if (elements[i] && i < node.children.size()) {
            operands.push_back(compare(node.children[i], *elements[i], compared));
        }
    }
    const bool hasRight = operands.size() == 2 && operands[1].size() != 0;
    const Result expected = elements.empty()   ? Result{node.matrix, {}}
                            : operands.empty() ? Result{}
                            : elements.size() == 1U
                                ? unary(node.name, operands[0])
                                : binary(node.name, operands[0], hasRight ? &operands[1] : nullptr);
    const Matrix value = matrixOf(element.value());
    EXPECT_TRUE(agree(value, expected)) << node.text() << "\n" << value << "\nexpected\n" << expected.value;
    compared[node.name] += value.size() != 0;
    return value;
}

TEST(NqExpressionEigen, EveryNodeOfRandomTreesAgrees) {
    constexpr unsigned kTrees = 3000;
    std::map<std::string, unsigned> compared;
    for (unsigned seed = 0; seed < kTrees && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        NqPrintCapture print; // of operands that don't fit
        Generator generator(seed);
        const Index rows = generator.size();
        const Node tree = generator.tree(1 + seed % 8, rows, generator.size());
        NqExpressionContainer expression;
        ASSERT_TRUE(NqXmlDocument::readString(nqExpression::document(tree.text()), expression));
        const std::string value = nqExpression::textOf(expression.value());
        compare(tree, *expression.topElement(), compared);
        const NqExpressionContainer read = nqThroughXml(expression);
        EXPECT_EQ(read, expression);
        EXPECT_EQ(nqExpression::textOf(read.value()), value);
    }
    EXPECT_EQ(compared.size(), 24U);
    for (const auto& [name, count] : compared) {
        EXPECT_GT(count, 100U) << name;
    }
}

} // namespace
