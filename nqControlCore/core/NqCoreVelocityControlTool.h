#pragma once

#include <nqControlCore/core/NqSystemArrays.h>
#include <nqControlCore/foundation/math/NqUncopied.h>

#include <array>
#include <vector>

class NqJacobianState;
namespace NqRowOperations {
struct Panel;
}

/// Finds joint rates that meet a commanded end-effector velocity exactly and, in the space left free, descend
/// a gradient under a metric.
///
/// Of a Jacobian J (m rows, one for each constrained end-effector coordinate; n columns, one for each joint)
/// it takes the null-space basis N, n by (n - m), and solves one square system
///     A = [ J ; (W N)^T ],    A x = [ v ; -alpha N^T g ]
/// with the velocity v, the metric W and the gradient g in joint space. The null-space joint rates solve the
/// same system with v = 0. One factoring serves both solves and the determinant of A.
///
/// Nothing decides about rank: at a singularity the joint rates become huge or infinite, and the caller
/// judges by the determinant. Beware of a metric with fewer rows than joints: joints beyond it weigh nothing,
/// which can make A singular behind an ordinary determinant, as a zero pivot that is taken for 1.0e-300 and
/// the 1.0e+300 that it makes of the next one cancel. A call leaves nothing behind that a later call depends
/// on, but memory is kept: a control step of the same n and m as the one before allocates nothing. One tool
/// serves one thread at a time.
class NqCoreVelocityControlTool {
public:
    NqCoreVelocityControlTool() = default;
    NqCoreVelocityControlTool(const NqCoreVelocityControlTool&) = default;
    NqCoreVelocityControlTool& operator=(const NqCoreVelocityControlTool&) = default;

    /// A default-constructed tool.
    static NqCoreVelocityControlTool nullObject() { return {}; }

    virtual ~NqCoreVelocityControlTool() = default;

    // A step that passes over zeros writes the following arrays when they are asked for: ask again after each
    // step, as a reference from before may still show the one before.

    /// n by n; after a solve the factors of A with its columns interchanged: L, unit lower triangular,
    /// strictly below the diagonal, U on and above it.
    virtual const NqReArray& primaryMatrix() const;
    virtual void setPrimaryMatrix(const NqReArray& primaryMatrix);

    /// N; rows in the caller's joint order.
    virtual const NqReArray& nullSpace() const;
    /// W N, or N where the metric isn't used. calcJointRatesAB() leaves it alone.
    virtual const NqReArray& weightedNullSpace() const;

    /// Whether the metric weights the lower rows of A; true at first.
    virtual const bool& weightFlag() const;
    virtual void setWeightFlag(bool weightFlag);

    /// The column interchanges of the factors: entry i names the column that changed places with column i at
    /// step i.
    virtual const std::vector<unsigned int>& indices() const;
    virtual void setIndices(const std::vector<unsigned int>& indices);

    /// Solves for a Jacobian.
    ///
    /// @param jacobianState  says whether zeros of J are passed over in the whole solve, which pays off on
    ///                       several limbs; may be null. Values are the same to the bit for J of full row
    ///                       rank, but perhaps for the sign of zeros.
    /// @param jacobian       J, m rows of n entries, m not above n
    /// @param metric         W: n by n, or n by 1 for a diagonal one. Joints beyond a smaller metric weigh 0,
    ///                       see above. An empty one fails, silently, unless m is 0.
    /// @param gradient       g, at least n entries, in joint space
    /// @param alpha          scale of the gradient
    /// @param velocity       v, at least m entries
    /// @param n              number of joints
    /// @param jointRates           x, on success; given n entries where m is above n
    /// @param nullSpaceJointRates  x for v = 0, on success
    /// @param determinant          of A, on success
    /// Outputs longer than n keep their tails. False with a line at print type 4 where sizes don't fit, the
    /// outputs otherwise untouched.
    virtual bool calcJointRates(NqJacobianState* jacobianState, const NqReArray& jacobian,
                                const NqReArray& metric, const std::vector<double>& gradient,
                                const double& alpha, const std::vector<double>& velocity, unsigned int n,
                                std::vector<double>& jointRates, std::vector<double>& nullSpaceJointRates,
                                double& determinant);

    /// Solves [ J ; B ] x = [ v ; -alpha b ] for a Jacobian that is factored already.
    ///
    /// @param jacobianState  J with its factors, null space and pivots; not null
    /// @param bRows          B: at least n - m rows of at least n entries, in the caller's joint order
    /// @param nullGradient   b: at least n - m entries, in null-space coordinates
    /// Everything else is as in calcJointRates(), except that where m is above n joint rates are only
    /// lengthened, to n entries.
    virtual bool calcJointRatesAB(NqJacobianState* jacobianState, const NqReArray& bRows,
                                  const std::vector<double>& nullGradient, const double& alpha,
                                  const std::vector<double>& velocity, unsigned int n,
                                  std::vector<double>& jointRates, std::vector<double>& nullSpaceJointRates,
                                  double& determinant);

    /// Brings the arrays and the indices to the sizes of the current problem. What has its size is left
    /// alone.
    virtual void resize();

protected:
    /// Extends a matrix whose first m rows are factored, with pivots in `indices`, by the rows of B, and
    /// factors it. Of equal pivots the last one is taken. True.
    virtual bool prep(NqReArray& primaryMatrix, std::vector<unsigned int>& indices, unsigned int m,
                      unsigned int n, const NqReArray& bRows);

    /// Factors J, which the first m rows of the n by n matrix hold, finds its null space, fills the lower
    /// rows with (W N)^T and factors them too. Of equal pivots the first one is taken; a row of zeros takes
    /// the pivot of the row before. False for an empty metric with m above 0. A line at print type 4 for
    /// every column of W N that is zero.
    virtual bool prep(NqJacobianState* jacobianState, NqReArray& primaryMatrix,
                      std::vector<unsigned int>& indices, unsigned int m, unsigned int weightFlag,
                      const NqReArray& metric, NqReArray& nullSpace, NqReArray& weightedNullSpace);

    /// Solves with the factors and interchanges that a prep left. `solution` is lengthened to n where needed.
    /// An exactly zero pivot leaves its unknown unscaled. False with two lines, nothing touched, when the
    /// right-hand side is shorter than the matrix.
    virtual bool calc(const NqReArray& factoredMatrix, const std::vector<unsigned int>& indices,
                      const std::vector<double>& rightHandSide, std::vector<double>& solution,
                      double& determinant);

    /// For a subclass that overrides neither prep() nor calc(): a step then may go past them, as that of a
    /// plain tool does, with both solves in one.
    void leavePrepAndCalc() { m_LeavesPrepAndCalc = true; }

    /// The i-th element of the diagonal of the primary matrix.
    double pivot(unsigned i) const { return m_Arrays.pivot(i); }

private:
    /// Which of equal pivots is taken.
    enum class Ties { FirstWins, LastWins };

    bool isPlain() const;
    bool factor(NqJacobianState* jacobianState, const NqReArray& jacobian, const NqReArray& metric);
    bool passOverZeros(NqJacobianState* jacobianState, const NqReArray& jacobian, unsigned m, unsigned n,
                       const NqReArray* metric, std::vector<unsigned int>& indices);
    void factorInGeneral(NqJacobianState* jacobianState, unsigned m, const NqReArray* metric,
                         NqReArray& matrix, std::vector<unsigned int>& indices, NqReArray& nullSpace,
                         NqReArray& weightedNullSpace);
    bool solveTwice(const std::vector<double>& velocity, std::vector<double>& jointRates,
                    std::vector<double>& nullSpaceJointRates, double& determinant);
    double solveBoth(double* jointRates, double* nullSpaceJointRates);
    void pairUp();
    template <typename Fill>
    void completeFactoring(NqReArray& matrix, std::vector<unsigned int>& indices, unsigned m, unsigned n,
                           Ties ties, const Fill& fill);
    template <typename Fill>
    void eliminate(NqReArray& matrix, unsigned m, unsigned n, Ties ties, const Fill& fill);
    template <typename Fill>
    void takeBack(NqReArray& matrix, const NqRowOperations::Panel& panel, unsigned c, const Fill& fill);
    void orderColumns(unsigned end);

    NqSystemArrays m_Arrays;
    bool m_WeightFlag = true;
    bool m_LeavesPrepAndCalc = false;
    std::vector<unsigned int> m_Indices;
    unsigned int m_N = 0;
    unsigned int m_M = 0;
    unsigned int m_NullDimension = 0;

    NqUncopied<bool> m_PassOverZeros; ///< in this step
    NqUncopied<std::vector<double>> m_StackedRightHandSide;
    NqUncopied<std::vector<double>> m_NullRightHandSide;    ///< the same with v = 0
    NqUncopied<std::vector<std::array<double, 2>>> m_Pairs; ///< these two side by side, then both solutions
    NqUncopied<std::vector<unsigned int>> m_FirstPivots;
    NqUncopied<std::vector<unsigned int>> m_SecondPivots;
    NqUncopied<std::vector<unsigned int>> m_ColumnOrder;
    NqUncopied<std::vector<double>> m_ColumnSums;
};
