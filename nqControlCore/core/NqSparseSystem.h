#pragma once

#include <nqControlCore/foundation/matrix/NqRowMask.h>

#include <array>
#include <vector>

class NqReArray;

/// The system of a control step where most elements of J are zero, as on a robot with several limbs: its
/// factoring without the products that have a zero in them.
///
/// What can differ from zero is known by a bit for each element, so that up to 64 columns are handled; what
/// is to be done follows from it, and is kept from step to step while zeros and pivots stay. Rows stay in the
/// caller's column order until all are done; interchanges are only recorded. As each element gets
/// the terms that differ from zero in the order of the dense way, pivots and values are the same to the last
/// bit, perhaps but for the sign of zeros. Where that can't be promised (an infinity or NaN anywhere, a row
/// of zeros, a pivot without a finite reciprocal), the dense way has to be taken.
class NqSparseSystem {
public:
    /// Factors J, the first m rows of a square matrix, finds its null space, weights that and factors the
    /// rows below J: what NqCoreVelocityControlTool::prep() does, on arrays that have their sizes. A metric
    /// that is null weights nothing. False where that isn't possible, or J has too few zeros; J is then as it
    /// was.
    bool factor(NqReArray& matrix, std::vector<unsigned int>& indices, unsigned m,
                const std::vector<NqRowMask::Mask>& sparsity, const NqReArray* metric, NqReArray& nullSpace,
                NqReArray& weightedNullSpace);

    /// Solves with these factors for two right-hand sides side by side. False where the result has an
    /// infinity or a NaN, which zeros would have spread.
    bool substitute(const NqReArray& factors, std::array<double, 2>* x) const;

private:
    using Mask = NqRowMask::Mask;
    template <typename T>
    using ForEachRow = std::array<T, NqRowMask::Places>;

    /// Columns of a row, those in whole groups by where such a group begins.
    struct Span {
        Mask groups;
        Mask rest;
    };
    static Mask groupsOf(Mask columns);
    static Span spanOf(Mask columns, unsigned n);
    static void addMultiple(double* to, double factor, const double* from, Mask groups);
    static void addMultiple(double* to, double factor, const double* from, const Span& span);

    void makeRoom();
    bool findZeros(const NqReArray& matrix, const std::vector<Mask>& sparsity);
    bool fillsFew() const;
    bool findWeights(const NqReArray* metric);
    bool factorRows(unsigned begin, unsigned end, const NqReArray& source);
    void take(unsigned row, const NqReArray& source);
    bool planElimination(unsigned row);
    void planPairs();
    bool eliminate(unsigned row, Mask steps);
    bool eliminatePair(unsigned row, Mask steps);
    bool settle(unsigned row);
    bool isLargestStill(unsigned row) const;
    unsigned findLargest(unsigned row) const;
    bool findBasis(NqReArray& nullSpace);
    void planBasis();
    void weightBasis(const NqReArray& nullSpace, NqReArray& weightedNullSpace);
    void planWeightedBasis();
    Mask stepsOf(Mask columns) const;
    void permuteRows(NqReArray& matrix);

    unsigned m_N = 0;
    unsigned m_M = 0;
    std::vector<double> m_Elements;
    double* m_Begin = nullptr;  ///< where room for rows begins
    ForEachRow<double*> m_Rows; ///< of A, but for columns that were settled before a row was done

    /// The plan: what can differ from zero, and so what is to be done, in the caller's columns. It stays
    /// while zeros and pivots do.
    ForEachRow<Mask> m_Reached{};      ///< of J and of (W N)^T
    bool m_IsWorthIt = false;          ///< whether these are few enough elements of J
    bool m_IsPlanned = false;          ///< whether what follows goes as in the step before
    ForEachRow<Mask> m_Eliminated;     ///< the steps that eliminate a row, so that L isn't zero there
    ForEachRow<Mask> m_Together;       ///< those that the next row goes through at once
    ForEachRow<Mask> m_Candidates;     ///< what they leave of it, of which the pivot is taken
    ForEachRow<Mask> m_Groups;         ///< where the groups begin that it reaches at all
    ForEachRow<double*> m_Ends;        ///< of the room that it has
    ForEachRow<unsigned> m_Columns;    ///< the column of that,
    ForEachRow<Mask> m_Filled;         ///< and what is left beside it,
    ForEachRow<Mask> m_PivotGroups;    ///< by where groups begin,
    ForEachRow<Mask> m_Upper;          ///< and as places of U
    ForEachRow<Mask> m_BasisSteps;     ///< the rows of N, by their steps, that one of U11 needs
    ForEachRow<Mask> m_BasisFilled;    ///< columns of N, for each joint
    ForEachRow<Span> m_BasisSpans;     ///< these as spans
    ForEachRow<Mask> m_WeightsFilled;  ///< of a full metric
    ForEachRow<Mask> m_WeightedFilled; ///< columns of W N, for each joint
    bool m_IsDiagonal = true;          ///< whether the metric has one weight for each joint

    ForEachRow<double> m_Diagonal;       ///< the weight of each joint,
    ForEachRow<const double*> m_Weights; ///< or its row of a full metric
    ForEachRow<double> m_Pivot;          ///< the diagonal of U
    ForEachRow<double> m_Reciprocal;     ///< 1.0 / pivot
    std::vector<double> m_Multipliers;   ///< row behind row, by rising steps
    double* m_NextMultiplier = nullptr;
    ForEachRow<unsigned> m_Order;   ///< the column at each place, after the interchanges so far
    ForEachRow<unsigned> m_Place;   ///< the place of each column
    ForEachRow<unsigned> m_Indices; ///< the interchanges
    Mask m_Settled = 0;             ///< columns of pivots; the place of each is its step
};
