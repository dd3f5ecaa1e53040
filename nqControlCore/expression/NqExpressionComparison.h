#pragma once

#include <nqControlCore/expression/NqExpressionBinary.h>

#include <algorithm>

/// The shape of a comparison: the common upper left corner of the two matrices, entry by entry, with 1.0
/// where the test holds and 0.0 elsewhere. With a child missing the value is the empty matrix. Derived gives
/// its name and
///
///     static bool test(double left, double right);
template <typename Derived>
class NqExpressionComparison : public NqExpressionBinary<Derived> {
public:
    using NqExpressionBinary<Derived>::NqExpressionBinary;

    static bool operate(const NqReArray* left, const NqReArray* right, NqReArray& value) {
        if (!left || !right) {
            return false;
        }
        value.setToZeros(std::min(left->rows(), right->rows()), std::min(left->columns(), right->columns()));
        for (std::size_t i = 0; i < value.size(); ++i) {
            std::ranges::transform((*left)[i], (*right)[i], value[i].begin(),
                                   [](double l, double r) { return Derived::test(l, r) ? 1.0 : 0.0; });
        }
        return true;
    }
};
