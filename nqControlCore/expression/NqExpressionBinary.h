#pragma once

#include <nqControlCore/expression/NqExpressionBaseBinary.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// The shape of an element with two children. Derived gives its name and its operation,
///
///     static const NqToken& classToken();
///     static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value);
///
/// which writes the value, or is false where that is the empty matrix. An operand is null where the child is
/// missing; so is the right one where its value has no entries.
template <typename Derived>
class NqExpressionBinary : public NqXmlPersistent<Derived, NqExpressionBaseBinary> {
    using Frame = NqXmlPersistent<Derived, NqExpressionBaseBinary>;

public:
    using Frame::Frame;

    const NqReArray& value() const override {
        const NqReArray* left = valueOf(this->childAt(0));
        const NqReArray* right = valueOf(this->childAt(1));
        if (right && right->columns() == 0) {
            right = nullptr;
        }
        return this->evaluate([&](NqReArray& value) { return Derived::operate(left, right, value); });
    }

private:
    static const NqReArray* valueOf(const NqExpressionElement* child) {
        return child ? &child->value() : nullptr;
    }
};
