#include "NqExpressionTesting.h"

#include <nqControlCore/expression/NqBaseSoftConstraintHandler.h>
#include <nqControlCore/expression/NqExpressionDiagonalMatrix.h>
#include <nqControlCore/expression/NqExpressionGeneralColumn.h>
#include <nqControlCore/expression/NqExpressionMinus.h>
#include <nqControlCore/expression/NqExpressionNegative.h>

namespace {

using namespace nqExpression;
using Constant = NqExpressionScalarConstant;

NqExpressionMinus difference(const NqExpressionElement& left, double right) {
    NqExpressionMinus minus;
    minus.setLeft(left);
    minus.setRight(Constant::objectWithValue(right));
    return minus;
}

TEST(NqExpressionTree, BelongsAsAWholeToItsContainer) {
    const NqExpressionContainer other;
    const NqExpressionMinus inner = difference(Constant::objectWithValue(7.0), 4.0);
    NqExpressionNegative tree(&other);
    tree.setChild(inner);
    EXPECT_EQ(dynamic_cast<const NqExpressionMinus&>(*tree.child()).left()->container(), &other);
    EXPECT_EQ(NqExpressionNegative(tree).container(), nullptr);

    NqExpressionContainer expression;
    const auto expectOwn = [](const NqExpressionContainer& container) {
        const auto& top = dynamic_cast<const NqExpressionNegative&>(*container.topElement());
        const auto& minus = dynamic_cast<const NqExpressionMinus&>(*top.child());
        for (const NqExpressionElement* each :
             std::initializer_list<const NqExpressionElement*>{&top, &minus, minus.left(), minus.right()}) {
            EXPECT_EQ(each->container(), &container);
        }
        EXPECT_EQ(textOf(container.value()), "-3;");
    };
    expression.setTopElement(tree);
    expectOwn(expression);
    expression.setContainer(&other);
    EXPECT_EQ(expression.topElement()->container(), &other);
    expectOwn(NqExpressionContainer(expression));
    expectOwn(expression = NqExpressionContainer(expression));
    *dynamic_cast<NqExpressionNegative*>(expression.topElement()) = tree;
    expectOwn(expression);
    expression.setAndDeleteTopElementPointer(expression.topElement());
    expectOwn(expression);
    expression.setAndDeleteTopElementPointer(new NqExpressionNegative(tree));
    expectOwn(expression);
    expression.setAndDeleteTopElementPointer(nullptr);
    EXPECT_EQ(expression, other);
}

TEST(NqExpressionTree, MayBeReplacedByAPartOfItself) {
    const NqExpressionMinus inner = difference(Constant::objectWithValue(7.0), 4.0);
    NqExpressionMinus minus = difference(inner, 1.0);
    EXPECT_EQ(textOf(minus.value()), "2;");
    minus = *dynamic_cast<const NqExpressionMinus*>(minus.left());
    EXPECT_EQ(minus, inner);
    minus.setRight(minus);
    EXPECT_EQ(textOf(minus.value()), "4;");
    EXPECT_NE(minus, inner);
    EXPECT_NE(difference(Constant(), 1.0), difference(Constant(), 2.0));
    NqExpressionContainer expression;
    expression.setTopElement(minus);
    expression.setTopElement(*dynamic_cast<NqExpressionMinus*>(expression.topElement())->right());
    EXPECT_TRUE(expression.topElement()->equality(&inner));
}

class Handler : public NqXmlConcrete<Handler, NqBaseSoftConstraintHandler> {
public:
    static const NqToken& classToken() { return NqControlCore::NqGainToken; }
};

class Handlers : public NqXmlConcrete<Handlers, NqBaseExpressionTreeContainer<NqBaseSoftConstraintHandler>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqManipulatorConstraintsToken; }
    void registerComponentCreators() override {
        registerComponentCreator(Handler::classToken(), Handler::creator);
    }
};

TEST(NqExpressionLeaf, KeepsAValueOfTheRightShape) {
    NqExpressionGeneralColumn column, other;
    const auto expectValue = [](const NqExpressionElement& leaf, const char* value) {
        EXPECT_EQ(textOf(leaf.value()), value);
    };
    column.assign(2, 3.0);
    expectValue(column, "3;3;");
    EXPECT_TRUE(column.setValue(1, 4.0) && !column.setValue(2, 4.0));
    expectValue(column, "3;3;");
    expectValue(NqExpressionGeneralColumn(column), "3;4;");
    column.setColumn({5.0, 6.0, 7.0});
    expectValue(column, "5;6;7;");
    other.assign(3, 1.0);
    expectValue(column = other, "1;1;1;");

    NqExpressionDiagonalMatrix diagonal;
    diagonal.assign(2, 3, 3.0);
    expectValue(diagonal, "3 0 0;0 3 0;");
    diagonal.setRowSize(1);
    expectValue(diagonal, "3 0 0;");
    NqPrintCapture print;
    column.assign(4294967295U, 2.0);
    diagonal.assign(4294967295U, 4294967295U, 2.0);
    EXPECT_TRUE(column == other && diagonal.rowSize() == 1 && print.lines().size() == 2) << "too much";

    NqExpressionMinus minus;
    minus.setRight(other);
    expectValue(minus, "-1;-1;-1;");
}

TEST(NqBaseExpressionTreeContainer, HoldsOtherTreesToo) {
    Handlers handlers;
    handlers.setTopElement(Handler());
    EXPECT_EQ(handlers.topElement()->container(), &handlers);
    EXPECT_EQ(nqThroughXml(handlers), handlers);
    EXPECT_TRUE(nqThroughXml(handlers).topElement());
    EXPECT_EQ(nqVisited(handlers), 3U);
}

} // namespace
