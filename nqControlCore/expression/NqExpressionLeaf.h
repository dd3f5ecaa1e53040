#pragma once

#include <nqControlCore/expression/NqExpressionElement.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

#include <array>

/// The shape of an element without children, which makes a matrix of its own fields. Derived gives its name,
/// its list of components, and
///
///     std::array<std::uint64_t, 2> shape() const;    // rows, columns
///     void fill(NqReArray& value) const;             // into zeros of that shape
///
/// A value that has the shape stays as it is, so that a change of an entry shows only after one of the shape.
/// A class whose value is written in every call says so by its own kIsAlwaysFilled.
template <typename Derived>
class NqExpressionLeaf : public NqXmlPersistent<Derived, NqExpressionElement> {
    using Frame = NqXmlPersistent<Derived, NqExpressionElement>;

public:
    using Frame::Frame;

    static constexpr bool kIsAlwaysFilled = false;

    const NqReArray& value() const override {
        const auto& self = static_cast<const Derived&>(*this);
        return this->evaluate([&](NqReArray& value) {
            const auto [rows, columns] = self.shape();
            if (!Derived::kIsAlwaysFilled && value.rows() == rows && value.columns() == columns) {
                return true;
            }
            if (!this->admits(rows, columns, Derived::classToken())) {
                return false;
            }
            value.setToZeros(static_cast<unsigned>(rows), static_cast<unsigned>(columns));
            self.fill(value);
            return true;
        });
    }

protected:
    using Real = NqXmlBasicType<double>;
    using Count = NqXmlBasicType<unsigned int>;
};
