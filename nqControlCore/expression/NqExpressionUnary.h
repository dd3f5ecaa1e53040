#pragma once

#include <nqControlCore/expression/NqExpressionBaseUnary.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// The shape of an element with one child. Without the child the value stays as it was, at first the empty
/// matrix. Derived gives its name and its operation:
///
///     static const NqToken& classToken();
///     static void operate(const NqReArray& operand, NqReArray& value);
template <typename Derived>
class NqExpressionUnary : public NqXmlPersistent<Derived, NqExpressionBaseUnary> {
    using Frame = NqXmlPersistent<Derived, NqExpressionBaseUnary>;

public:
    using Frame::Frame;

    const NqReArray& value() const override {
        const NqExpressionElement* child = this->childAt(0);
        const NqReArray* operand = child ? &child->value() : nullptr;
        return this->evaluate([operand](NqReArray& value) {
            if (operand) {
                Derived::operate(*operand, value);
            }
            return true;
        });
    }
};
