#include "expression/NqExpressionTesting.h"

#include <nqControlCore/expression/NqExpressionBaseBinary.h>
#include <nqControlCore/expression/NqExpressionBaseUnary.h>

#include <Eigen/Core>

#include <bit>

// Expressions drawn at random, each node evaluated by Eigen from what its children give.

namespace {

using Eigen::Index;
using Matrix = Eigen::MatrixXd;

struct Result {
    Matrix value;
    Matrix tolerance = {}; ///< empty where the operation is exact
};

using Operation = std::function<Result(const Matrix& left, const Matrix* right)>;

Result rounded(const auto& value) {
    return {value, 1e-15 * Matrix(value).cwiseAbs()};
}

Operation comparison(auto test) {
    return [test](const Matrix& l, const Matrix* r) -> Result {
        const Index rows = r ? std::min(l.rows(), r->rows()) : 0,
                    columns = r ? std::min(l.cols(), r->cols()) : 0;
        return {Matrix::NullaryExpr(rows, columns,
                                    [&](Index i, Index j) { return test(l(i, j), (*r)(i, j)) ? 1.0 : 0.0; })};
    };
}

bool fits(const Matrix& l, const Matrix& r) {
    return l.rows() == r.rows() && l.cols() == r.cols();
}

double first(const Matrix* r, double otherwise) {
    return r ? (*r)(0, 0) : otherwise;
}

const std::map<std::string, Operation> kUnary = {
    {"transpose", [](const Matrix& c, const Matrix*) { return Result{c.transpose()}; }},
    {"negative", [](const Matrix& c, const Matrix*) { return Result{-c}; }},
    {"elementInverse", [](const Matrix& c, const Matrix*) { return Result{c.cwiseInverse()}; }},
    {"sine", [](const Matrix& c, const Matrix*) { return rounded(c.array().sin()); }},
    {"cosine", [](const Matrix& c, const Matrix*) { return rounded(c.array().cos()); }},
    {"elementLog", [](const Matrix& c, const Matrix*) { return rounded(c.array().log()); }}};

const std::map<std::string, Operation> kBinary = {
    {"plus",
     [](const Matrix& l, const Matrix* r) {
         return !r ? Result{l} : fits(l, *r) ? Result{l + *r} : Result{};
     }},
    {"minus",
     [](const Matrix& l, const Matrix* r) {
         return !r ? Result{l} : fits(l, *r) ? Result{l - *r} : Result{};
     }},
    {"times",
     [](const Matrix& l, const Matrix* r) {
         return r && l.cols() == r->rows() ? Result{l * *r, 1e-15 * (l.cwiseAbs() * r->cwiseAbs())}
                                           : Result{};
     }},
    {"elementPow",
     [](const Matrix& l, const Matrix* r) { return r ? rounded(l.array().pow((*r)(0, 0))) : Result{l}; }},
    {"elementRoot",
     [](const Matrix& l, const Matrix* r) {
         return first(r, 2.0) == 0.0 ? Result{l} : rounded(l.array().pow(1.0 / first(r, 2.0)));
     }},
    {"elementLogN",
     [](const Matrix& l, const Matrix* r) {
         return rounded(l.array().log() / (r ? std::log((*r)(0, 0)) : 1.0));
     }},
    {"and", comparison([](double a, double b) { return a != 0.0 && b != 0.0; })},
    {"or", comparison([](double a, double b) { return a != 0.0 || b != 0.0; })},
    {"lessThan", comparison(std::less<>())},
    {"greaterThan", comparison(std::greater<>())},
    {"lessThanOrEqualTo", comparison(std::less_equal<>())},
    {"greaterThanOrEqualTo", comparison(std::greater_equal<>())}};

struct Node {
    std::string name;
    std::string content = {}; ///< of a leaf
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

    Index size() { return oneOf(20) ? 0 : 1 + draw(3); }

    Node tree(unsigned depth, Index rows, Index columns) {
        if (oneOf(12)) {
            (oneOf(2) ? rows : columns) = size();
        }
        if (depth == 0 || oneOf(10)) {
            return leaf(rows, columns);
        }
        const bool isUnary = oneOf(3);
        const auto& operations = isUnary ? kUnary : kBinary;
        Node node{std::next(operations.begin(), draw(operations.size()))->first};
        const Index inner = node.name == "times" ? size() : columns;
        const bool turns = node.name == "transpose", takesNumber = node.name.starts_with("element");
        node.children.push_back(tree(depth - 1, turns ? columns : rows, turns ? rows : inner));
        if (!isUnary && !oneOf(20)) {
            node.children.push_back(tree(depth - 1,
                                         takesNumber            ? 1
                                         : node.name == "times" ? inner
                                                                : rows,
                                         takesNumber ? 1 : columns));
        }
        if (oneOf(40)) {
            node.children.clear();
        }
        return node;
    }

private:
    Index draw(std::uint64_t below) { return static_cast<Index>(m_Random() % below); }
    bool oneOf(std::uint64_t many) { return draw(many) == 0; }

    Node leaf(Index rows, Index columns) {
        using nqExpression::element;
        NqXmlRealVector entries(static_cast<std::size_t>(columns == 1 ? rows : draw(5)));
        for (double& entry : entries) {
            entry = oneOf(6) ? 0.0 : std::uniform_real_distribution<double>(-3.0, 3.0)(m_Random);
        }
        const auto count = [](const char* name, Index number) {
            return element(name, std::to_string(number));
        };
        const std::string sizes = count("rowSize", rows) + count("columnSize", columns);
        if (rows == columns && oneOf(3)) {
            return {"identityMatrix", count("size", rows)};
        }
        if (rows == 1 && columns == 1) {
            return {"scalarConstant", entries.toText()};
        }
        if (oneOf(3)) {
            return {"singleElementMatrix",
                    element("elementValue", "0.1") + sizes + count("rowPosition", draw(3))};
        }
        return columns == 1 ? Node{"generalColumn", element("column", entries.toText())}
                            : Node{"diagonalMatrix", sizes + element("diagonal", entries.toText())};
    }

    std::mt19937_64 m_Random;
};

Matrix matrixOf(const NqReArray& array) {
    return Matrix::NullaryExpr(array.rows(), array.columns(), [&](Index i, Index j) {
        return array[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
    });
}

bool agree(double value, double expected, double tolerance) {
    return std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(expected) ||
           (std::isnan(value) && std::isnan(expected)) || std::abs(value - expected) <= tolerance;
}

bool agree(const Matrix& value, const Result& expected) {
    bool good = value.rows() == expected.value.rows() && (value.rows() == 0 || fits(value, expected.value));
    for (Index k = 0; good && k < value.size(); ++k) {
        good =
            agree(value(k), expected.value(k), expected.tolerance.size() > 0 ? expected.tolerance(k) : -1.0);
    }
    return good;
}

/// Compares the values of a node and of all below it, and counts those with entries. Returns the node's.
Matrix compare(const Node& node, const NqExpressionElement& element,
               std::map<std::string, unsigned>& counts) {
    const auto* unary = dynamic_cast<const NqExpressionBaseUnary*>(&element);
    const auto* binary = dynamic_cast<const NqExpressionBaseBinary*>(&element);
    std::vector<Matrix> operands;
    for (const Node& child : node.children) {
        const auto* below = unary ? unary->child() : operands.empty() ? binary->left() : binary->right();
        operands.push_back(compare(child, *below, counts));
    }
    const Matrix value = matrixOf(element.value());
    if (unary || binary) {
        const Matrix* right = operands.size() == 2 && operands[1].size() != 0 ? &operands[1] : nullptr;
        const Operation& operation = (unary ? kUnary : kBinary).at(node.name);
        const Result expected = operands.empty() ? Result{} : operation(operands[0], right);
        EXPECT_TRUE(agree(value, expected)) << node.text() << "\n"
                                            << value << "\nexpected\n"
                                            << expected.value;
    }
    counts[node.name] += value.size() != 0;
    return value;
}

TEST(NqExpressionEigen, EveryNodeOfRandomTreesAgrees) {
    std::map<std::string, unsigned> counts;
    for (unsigned seed = 0; seed < 2000 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        NqPrintCapture print; // of operands that don't fit
        Generator generator(seed);
        const Index rows = generator.size();
        const Node tree = generator.tree(1 + seed % 8, rows, generator.size());
        NqExpressionContainer expression;
        ASSERT_TRUE(NqXmlDocument::readString(nqExpression::document(tree.text()), expression))
            << print.text();
        const std::string value = nqExpression::textOf(expression.value());
        compare(tree, *expression.topElement(), counts);
        const NqExpressionContainer read = nqThroughXml(expression);
        EXPECT_EQ(read, expression);
        EXPECT_EQ(nqExpression::textOf(read.value()), value);
    }
    EXPECT_EQ(counts.size(), 23U); // all but the column with a single element
    for (const auto& [name, count] : counts) {
        EXPECT_GT(count, 100U) << name;
    }
}

} // namespace
