#pragma once

#include <nqControlCore/foundation/matrix/NqRowMask.h>

#include <array>
#include <vector>

class NqReArray;

/// The system of a control step where most elements of J are zero, as on a robot with several limbs: its
/// factoring without the products that have a zero in them.
///
/// What can differ from zero is known by a bit for each element, so that up to 64 columns are handled. What
/// is to be done follows from it and from the order of the pivots, and is kept as a plan: it holds from step
/// to step up to the first row that has another pivot, and from there on is made anew. Rows stay in the
/// caller's column order, and interchanges are only recorded; whole arrays are written when they are asked
/// for. As each element gets the terms that differ from zero in the order of the dense way, pivots and values
/// are the same to the last bit, perhaps but for the sign of zeros. Where that can't be promised (an infinity
/// or NaN anywhere, a row of zeros, a pivot without a finite reciprocal), the dense way has to be taken.
class NqSparseSystem {
public:
    NqSparseSystem() = default;
    NqSparseSystem(const NqSparseSystem&) = delete; // it points into itself
    NqSparseSystem& operator=(const NqSparseSystem&) = delete;
    ~NqSparseSystem() = default;

    /// Finds the null space of J, weights that, and factors the square matrix of J and the rows that follow
    /// from it: what NqCoreVelocityControlTool::prep() does.
    ///
    /// @param jacobian  J in its first m rows, of n columns
    /// @param sparsity  what can differ from zero in J, a mask for each row. Where there are no such masks,
    ///                  or J has something else, its own zeros count.
    /// @param metric    null weights nothing
    /// @param indices   of n entries; given the interchanges
    /// False where that isn't possible, or J has too few zeros.
    bool factor(const NqReArray& jacobian, unsigned m, unsigned n,
                const std::vector<NqRowMask::Mask>& sparsity, const NqReArray* metric,
                std::vector<unsigned int>& indices);

    // Of the last factoring, if that was possible:

    /// Solves for two right-hand sides side by side, which are used up. False, the solutions untouched, where
    /// one has an infinity or a NaN, which zeros would have spread.
    bool solve(std::array<double, 2>* rightHandSides, double* first, double* second) const;

    /// N^T g for a vector g over the joints. False, the result untouched, where g isn't finite.
    bool project(const std::vector<double>& vector, double* result);

    double determinant() const;
    double pivot(unsigned i) const { return m_Pivot[i]; }

    /// The arrays, whole.
    void giveFactors(NqReArray& matrix) const;
    void giveNullSpace(NqReArray& nullSpace) const;
    void giveWeightedNullSpace(NqReArray& weightedNullSpace) const;

private:
    using Mask = NqRowMask::Mask;
    template <typename T>
    using ForEachRow = std::array<T, NqRowMask::Places>;

    static inline Mask groupsOf(Mask columns);
    static inline void addMultiple(double* to, double factor, const double* from, Mask groups);
    static inline void clear(double* to, Mask groups);

    void makeRoom();
    bool findZeros(const NqReArray& jacobian, const std::vector<Mask>& sparsity);
    inline bool areKnownFew(const std::vector<Mask>& sparsity);
    bool fillFew(const ForEachRow<Mask>& elements) const;
    bool findWeights(const NqReArray* metric);
    bool factorRows(unsigned begin, unsigned end, const NqReArray& jacobian);
    inline bool planElimination(unsigned row);
    inline void take(unsigned row, const NqReArray& jacobian);
    inline bool eliminate(unsigned row, Mask steps);
    inline bool eliminatePair(unsigned row, Mask steps);
    inline bool settle(unsigned row);
    inline bool isLargestStill(unsigned row) const;
    inline unsigned findLargest(unsigned row) const;
    bool findBasis();
    inline void planBasis();
    void weightBasis();
    void planWeightedBasis();
    inline Mask stepsOf(Mask columns) const;
    void planFactors();
    double* basisOf(unsigned joint) { return m_Basis.data() + joint * m_Stride; }
    const double* basisOf(unsigned joint) const { return m_Basis.data() + joint * m_Stride; }
    double* weightedOf(unsigned joint) { return m_Weighted.data() + joint * m_Stride; }
    inline double weightedAt(unsigned joint, unsigned column) const;

    unsigned m_N = 0;
    unsigned m_M = 0;
    std::vector<double> m_Elements; ///< of the rows of A, each from its first group to its last
    double* m_Begin = nullptr;      ///< where room for them begins
    unsigned m_Stride = 0;          ///< of what follows, in whole groups
    std::vector<double> m_Basis;    ///< N, row behind row
    std::vector<double> m_Weighted; ///< W N, where W isn't diagonal
    std::vector<double> m_Sum;      ///< of rows of N

    // The plan, in the caller's columns.
    bool m_IsPlanned = false; ///< whether what follows goes as in the step before

    // By findZeros(), those of (W N)^T by planWeightedBasis().
    ForEachRow<Mask> m_Known{};   ///< what the constraints say of J
    bool m_AreKnownFew = false;   ///< whether these are few enough elements
    ForEachRow<Mask> m_Reached{}; ///< what can differ from zero in J and (W N)^T
    bool m_IsWorthIt = false;     ///< whether these are few enough elements of J

    // By planElimination() for each row.
    ForEachRow<Mask> m_Eliminated; ///< the steps that eliminate it, so that L isn't zero there
    ForEachRow<Mask> m_Candidates; ///< what they leave of it, of which the pivot is taken
    ForEachRow<Mask> m_Groups;     ///< where the groups begin that it reaches at all
    ForEachRow<double*> m_Rows;    ///< its elements; useless in columns that were settled before
    ForEachRow<double*> m_Ends;    ///< of the room that it has

    // By settle() for each row.
    ForEachRow<unsigned> m_Columns;  ///< the column of its pivot
    ForEachRow<Mask> m_Filled;       ///< the candidates but for the pivot
    ForEachRow<Mask> m_FilledGroups; ///< where the groups begin that these are in

    // By planBasis(), findWeights() and planWeightedBasis().
    ForEachRow<Mask> m_BasisSteps;     ///< the rows of N, by their steps, that one of U11 needs
    ForEachRow<Mask> m_BasisFilled;    ///< columns of N, for each joint
    ForEachRow<Mask> m_BasisGroups;    ///< where the groups begin that these are in
    bool m_IsDiagonal = true;          ///< whether the metric has one weight for each joint
    ForEachRow<Mask> m_WeightsFilled;  ///< of a full metric
    ForEachRow<Mask> m_WeightedFilled; ///< columns of W N, for each joint

    // By planFactors().
    ForEachRow<Mask> m_Upper;    ///< U, by its places
    ForEachRow<Mask> m_Together; ///< the steps of a row that the next one goes through at once

    // The step at hand.
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
