#include "NqExpressionTesting.h"
#include "support/NqPrintCapture.h"

#include <nqControlCore/expression/NqBaseSoftConstraintHandler.h>
#include <nqControlCore/expression/NqExpressionDiagonalMatrix.h>
#include <nqControlCore/expression/NqExpressionGeneralColumn.h>
#include <nqControlCore/expression/NqExpressionIdentityMatrix.h>
#include <nqControlCore/expression/NqExpressionMinus.h>
#include <nqControlCore/expression/NqExpressionNegative.h>
#include <nqControlCore/expression/NqExpressionScalarConstant.h>
#include <nqControlCore/expression/NqExpressionSingleElementColumn.h>
#include <nqControlCore/expression/NqExpressionSingleElementMatrix.h>
#include <nqControlCore/xml/NqXmlVariableVectorType.h>

#include <gtest/gtest.h>

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
    const auto* child = dynamic_cast<const NqExpressionMinus*>(tree.child());
    ASSERT_TRUE(child);
    EXPECT_EQ(child->left()->container(), &other);
    EXPECT_EQ(NqExpressionNegative(tree).container(), nullptr);

    NqExpressionContainer expression;
    const auto expectOwn = [](const NqExpressionContainer& container) {
        const auto* top = dynamic_cast<const NqExpressionNegative*>(container.topElement());
        ASSERT_TRUE(top);
        EXPECT_EQ(top->container(), &container);
        const auto* minus = dynamic_cast<const NqExpressionMinus*>(top->child());
        ASSERT_TRUE(minus);
        EXPECT_EQ(minus->container(), &container);
        EXPECT_EQ(minus->left()->container(), &container);
        EXPECT_EQ(minus->right()->container(), &container);
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
    expression.setAndDeleteTopElementPointer(static_cast<NqExpressionElement*>(tree.clone()));
    expression.setAndDeleteTopElementPointer(expression.topElement());
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

TEST(NqExpressionLeaf, KeepsAValueOfTheRightShape) {
    NqExpressionGeneralColumn column;
    column.assign(2, 3.0);
    EXPECT_EQ(textOf(column.value()), "3;3;");
    EXPECT_TRUE(column.setValue(1, 4.0));
    EXPECT_FALSE(column.setValue(2, 4.0));
    EXPECT_EQ(textOf(column.value()), "3;3;");
    EXPECT_EQ(textOf(NqExpressionGeneralColumn(column).value()), "3;4;");
    column.setColumn({5.0, 6.0, 7.0});
    EXPECT_EQ(textOf(column.value()), "5;6;7;");
    NqExpressionGeneralColumn other;
    other.assign(3, 1.0);
    column = other;
    EXPECT_EQ(textOf(column.value()), "1;1;1;");

    NqExpressionDiagonalMatrix diagonal;
    diagonal.assign(1, 2, 3.0);
    EXPECT_EQ(textOf(diagonal.value()), "3 0;");
    diagonal.setDiagonal({4.0, 5.0});
    EXPECT_EQ(textOf(diagonal.value()), "3 0;");
    diagonal.setRowSize(2);
    EXPECT_EQ(textOf(diagonal.value()), "4 0;0 5;");

    NqExpressionSingleElementMatrix matrix;
    EXPECT_EQ(textOf(matrix.value()), "0;");
    matrix.setElementValue(6.0);
    EXPECT_EQ(textOf(matrix.value()), "0;");
    matrix.setColumnSize(2);
    matrix.setColumnPosition(1);
    EXPECT_EQ(textOf(matrix.value()), "0 6;");

    NqExpressionSingleElementColumn single; // which is written in every call
    single.setSize(2);
    EXPECT_EQ(textOf(single.value()), "0;0;");
    single.setElementValue(8.0);
    single.setPosition(1);
    EXPECT_EQ(textOf(single.value()), "0;8;");
}

TEST(NqExpressionLeaf, RefusesToAssignTooMuch) {
    NqPrintCapture print;
    NqExpressionGeneralColumn column;
    column.assign(4294967295U, 2.0);
    NqExpressionDiagonalMatrix diagonal;
    diagonal.assign(4294967295U, 4294967295U, 2.0);
    EXPECT_EQ(column, NqExpressionGeneralColumn());
    EXPECT_EQ(diagonal, NqExpressionDiagonalMatrix());
    EXPECT_EQ(print.lines().size(), 2U);
}

/// Knows an element of expressions that their container doesn't.
class Outer : public NqXmlConcrete<Outer, NqXmlVariableVectorType<NqXmlObject>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqEndEffectorVectorToken; }
    void registerComponentCreators() override {
        registerComponentCreator(NqExpressionContainer::classToken(), NqExpressionContainer::creator);
        registerComponentCreator("unit", NqExpressionIdentityMatrix::creator);
    }
};

struct ReadCase {
    std::string tree;
    bool result;
    std::string value; ///< of what could be read
    std::string message;
};

TEST(NqExpressionReading, TakesWhatItKnowsAndTellsOfTheRest) {
    for (const ReadCase& which : std::initializer_list<ReadCase>{
             {element("minus", number("5") + number("9") + number("1")), true, "4;", ""},
             {element("negative", number("5") + number("9")), true, "-9;", ""},
             {number("5") + number("9"), true, "9;", ""},
             {element("addLibraries", element("library", "x")) + number("5"), true, "5;",
              "library \"x\" is not loaded"},
             {number("5") + element("stranger"), false, "5;", "\"stranger\" is not known here"},
             {element("minus", number("5") + element("stranger", number("3")) + number("1")), false, "4;",
              "\"stranger\" is not known here and is skipped -- file: (text), line: 1\n"},
             {element("plus", element("expressionContainer") + number("2")), false, "2;",
              "\"expressionContainer\" is not known here"},
             {element("plus", number("5") + number("x")), false, "5;",
              "\"x\" is no value of element \"scalarConstant\""},
             {element("identityMatrix", element("size", "4294967296")), false, "1;",
              "\"4294967296\" is no value"},
             {element("identityMatrix", number("3")), true, "1;", "\"scalarConstant\" is not known here"},
             {element("unit"), false, "", "\"unit\" is not known here"}}) {
        NqPrintCapture print;
        NqExpressionContainer expression;
        expression.setTopElement(Constant());
        EXPECT_EQ(NqXmlDocument::readString(document(which.tree), expression), which.result) << which.tree;
        EXPECT_EQ(textOf(expression.value()), which.value) << which.tree;
        EXPECT_EQ(print.lines().size(), which.message.empty() ? 0U : 1U) << print.text();
        EXPECT_TRUE(print.contains(which.message)) << print.text();
    }
}

TEST(NqExpressionReading, AsksTheObjectAroundItToo) {
    Outer outer;
    const std::string unit = document(element("unit", element("size", "2")));
    ASSERT_TRUE(
        NqXmlDocument::readString("<endEffectorVector count='1'>" + unit + "</endEffectorVector>", outer));
    const auto* expression = dynamic_cast<const NqExpressionContainer*>(outer[0]);
    ASSERT_TRUE(expression);
    EXPECT_EQ(textOf(expression->value()), "1 0;0 1;");
    EXPECT_EQ(expression->topElement()->container(), expression);
}

TEST(NqExpressionReading, NeedsAContainer) {
    NqPrintCapture print;
    NqExpressionNegative negative;
    negative.setChild(Constant());
    EXPECT_FALSE(NqXmlDocument::readString("<negative>\n<plus/></negative>", negative));
    EXPECT_EQ(negative.child(), nullptr);
    EXPECT_EQ(print.text(), "Bad token: plus on line 2\n");

    const NqExpressionContainer container;
    NqExpressionMinus minus(&container);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(NqXmlDocument::readString(element("minus", number("5") + number("3")), minus));
        EXPECT_EQ(textOf(minus.value()), "2;");
    }
}

TEST(NqExpressionReading, LeavesNoHalfOfAnExpression) {
    NqPrintCapture print;
    const std::string whole = nqWritten([] {
        NqExpressionContainer expression;
        expression.setTopElement(difference(Constant::objectWithValue(7.0), 4.0));
        return expression;
    }());
    for (std::size_t length = 0; length + 2 < whole.size(); ++length) {
        NqExpressionContainer expression;
        expression.setTopElement(Constant());
        EXPECT_FALSE(NqXmlDocument::readString(whole.substr(0, length), expression)) << length;
        const std::string value = textOf(expression.value());
        EXPECT_TRUE(value == "3;" || value.empty() || length < whole.find("<minus>"))
            << length << ": " << value;
    }
}

class Visitor : public NqXmlObjectVisitor {
public:
    using NqXmlObjectVisitor::visit;
    void visit(const NqXmlObject* object) override { text += std::string(object->token().localName()) + " "; }
    void visit(const NqXmlBaseVariableCompoundType*) override { text += "container "; }
    std::string text;
};

class Handler : public NqXmlPersistent<Handler, NqBaseSoftConstraintHandler> {
public:
    static const NqToken& classToken() { return NqControlCore::NqGainToken; }
    NqXmlBasicType<double> m_Weight{1.0};

private:
    friend struct ::NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(NqControlCore::NqAngularWeightToken, &Handler::m_Weight));
    }
};

class Handlers : public NqXmlConcrete<Handlers, NqBaseExpressionTreeContainer<NqBaseSoftConstraintHandler>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqManipulatorConstraintsToken; }
    void registerComponentCreators() override {
        registerComponentCreator(Handler::classToken(), Handler::creator);
    }
};

TEST(NqBaseExpressionTreeContainer, HoldsOtherTreesToo) {
    Handlers handlers;
    Handler handler;
    handler.m_Weight = 0.5;
    handlers.setTopElement(handler);
    EXPECT_EQ(handlers.topElement()->container(), &handlers);
    EXPECT_EQ(nqThroughXml(handlers), handlers);
    Visitor visitor;
    handlers.accept(&visitor);
    EXPECT_EQ(visitor.text, "manipulatorConstraints container gain value ");
}

} // namespace
