#pragma once

#include <nqControlCore/expression/NqExpressionBudget.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>
#include <nqControlCore/foundation/xml/NqBaseExpressionTreeElement.h>

class NqExpressionContainer;

/// A node of an expression. Its value is a matrix, made from those of its children: a number is a 1 by 1
/// matrix, a truth value a matrix of 0.0 and 1.0.
///
/// A copy has copies of all children, stands in no container and has no value yet; what is assigned to stays
/// in its container.
class NqExpressionElement : public NqBaseExpressionTreeElement {
public:
    NqExpressionElement() = default;
    explicit NqExpressionElement(const NqExpressionContainer* container);
    NqExpressionElement(const NqExpressionElement& other);
    NqExpressionElement& operator=(const NqExpressionElement& other);

    /// Evaluates the node and all below it. The matrix stays the node's, and is written anew by the next
    /// call; once its shape is settled nothing is allocated. Operands that don't fit, and a matrix of more
    /// than NqExpressionBudget::kMostElements, give the empty matrix and a line at print type 4.
    virtual const NqReArray& value() const = 0;

protected:
    /// Has `work` write the value, which still is that of the call before. Where it returns false, or the
    /// expression has no memory left, the value is the empty matrix.
    template <typename Work>
    const NqReArray& evaluate(Work work) const {
        NqReArray& value = *m_Value;
        NqExpressionBudget* budget = NqExpressionBudget::current();
        if ((budget && !budget->isLeft()) || !work(value)) {
            value.setToZeros(0, 0);
        }
        if (budget) {
            budget->take(value);
        }
        return value;
    }

    /// Whether a matrix may have that shape; prints a line, with the name of the element, if not.
    static bool admits(std::uint64_t rows, std::uint64_t columns, const NqToken& token);

    /// value = -operand.
    static void negate(const NqReArray& operand, NqReArray& value);

private:
    mutable NqDroppedOnCopy<NqReArray> m_Value;
};
