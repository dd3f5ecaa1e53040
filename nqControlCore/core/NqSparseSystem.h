#pragma once

#include <nqControlCore/foundation/matrix/NqRowMask.h>

#include <array>
#include <vector>

class NqReArray;

/// The system of a control step where most elements of J are zero, as on a robot with several limbs: its
/// factoring without the products that have a zero in them.
///
/// What can differ from zero is known by a bit for each element, so that up to 64 columns are handled. Rows
/// stay in the caller's column order until all are done; interchanges are only recorded. As each element gets
/// the terms that differ from zero in the order of the dense way, pivots and values are the same to the last
/// bit, perhaps but for the sign of zeros. Where that can't be promised (an infinity or NaN anywhere, a row
/// of zeros, a pivot without a finite reciprocal), the dense way has to be taken.
class NqSparseSystem {
public:
    /// Factors J, the first m rows of a square matrix, finds its null space, weights that and factors the
    /// rows below J: what NqCoreVelocityControlTool::prep() does, on arrays that have their sizes. A metric
    /// that is null weights nothing. False where that isn't possible, or J has too few zeros; J is then as it
    /// was.
    bool factor(NqReArray& matrix, std::vector<unsigned int>& indices, unsigned m, const NqReArray* metric,
                NqReArray& nullSpace, NqReArray& weightedNullSpace);

    /// Solves with these factors for two right-hand sides side by side. False where the result has an
    /// infinity or a NaN, which zeros would have spread.
    bool substitute(const NqReArray& factors, std::array<double, 2>* x) const;

private:
    using Mask = NqRowMask::Mask;
    template <typename T>
    using ForEachRow = std::array<T, NqRowMask::Places>;

    bool findZeros(const NqReArray& matrix);
    bool fillsFew() const;
    bool factorRows(unsigned begin, unsigned end);
    bool eliminate(unsigned row);
    bool settle(unsigned row);
    bool findBasis(NqReArray& nullSpace);
    bool findWeights(const NqReArray* metric);
    void weightBasis(const NqReArray& nullSpace, NqReArray& weightedNullSpace);
    Mask stepsOf(Mask columns) const;
    void permuteRows();
    void restoreJacobian();

    unsigned m_N = 0;
    unsigned m_M = 0;
    ForEachRow<double*> m_Rows;        ///< of A; what is settled when a row is done has left it
    ForEachRow<Mask> m_Filled;         ///< columns of a row that aren't zero; in the end places
    ForEachRow<Mask> m_Groups;         ///< where groups of such columns begin
    ForEachRow<Mask> m_BasisFilled;    ///< columns of N that aren't zero, for each joint
    ForEachRow<Mask> m_BasisGroups;    ///< where groups of such columns begin
    ForEachRow<Mask> m_Eliminated;     ///< steps of which a row has a multiplier
    ForEachRow<double> m_Pivot;        ///< the diagonal of U
    ForEachRow<double> m_Reciprocal;   ///< 1.0 / pivot
    ForEachRow<unsigned> m_Order;      ///< the column at each place, after the interchanges so far
    ForEachRow<unsigned> m_Place;      ///< the place of each column
    ForEachRow<unsigned> m_Indices;    ///< the interchanges
    Mask m_Settled = 0;                ///< columns of pivots; the place of each is its step
    std::vector<double> m_Multipliers; ///< row behind row, by rising steps
    double* m_NextMultiplier = nullptr;
    ForEachRow<const double*> m_Weights; ///< of each joint: one, or those of a row of the metric
    ForEachRow<Mask> m_WeightsFilled;    ///< of a full metric
    bool m_IsDiagonal = true;
    std::vector<double> m_Jacobian; ///< J, row behind row
    ForEachRow<Mask> m_Reached{};   ///< where it wasn't zero when that was judged:
    bool m_IsWorthIt = false;       ///< whether that are few enough elements
};
