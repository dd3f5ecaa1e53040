#pragma once

#include <nqControlLoop/NqBoundActiveSet.h>

#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

/// The solver under bounds on the rates: finds rates x in the bounds and a factor s such that
///     J x = s v,    s in [0, 1] as large as the bounds allow
/// and, among these x, the one of the least cost x^T W x / 2 + g^T x.
///
/// A rate that would leave its bounds is held there and what it doesn't do is left to the others, as in
/// Flacco, De Luca and Khatib, "Control of redundant robots under hard joint constraints: saturation in the
/// null space", IEEE Trans. Robotics 31(3), 2015; but the set of held rates is that of the optimum, found
/// from the factors of the one solve without bounds (see NqBoundActiveSet). Only where the bounds leave no x
/// with s = 1, s joins the unknowns, at a cost that outweighs all others.
class NqLimitedVelocityTool final : public NqCoreVelocityControlTool {
public:
    NqLimitedVelocityTool() { leavePrepAndCalc(); }

    enum class Outcome {
        Unlimited, ///< no bound is met
        Limited,   ///< some rates are held, s is what was asked for
        Slowed,    ///< s is less
        Blocked,   ///< the bounds leave no x with an s from 0 to 1
        Failed     ///< no finite rates even without bounds; nothing is known but the sizes
    };

    /// Sizes all workspace for n rates and m rows. Other sizes allocate when they are met.
    void prepare(unsigned n, unsigned m);

    /// Where elements of J can be other than zero, from the next solve on; it is faster where many can't.
    void setSparsity(const std::vector<std::vector<bool>>& sparsity);

    /// @param jacobian  J, m by n, of full rank
    /// @param metric, gradient, velocity  W, g, v as calcJointRates() takes them
    /// @param lower, upper  bounds of the rates, lower not above upper; may be infinite
    Outcome solve(const NqReArray& jacobian, const NqReArray& metric, const std::vector<double>& gradient,
                  const std::vector<double>& velocity, const std::vector<double>& lower,
                  const std::vector<double>& upper);

    /// Once more with the factors of the last solve, s at most so much.
    Outcome solveAgain(double greatestScale, const std::vector<double>& lower,
                       const std::vector<double>& upper);

    /// x; after Blocked what came nearest.
    const std::vector<double>& rates() const { return m_Limited; }
    /// s.
    double scale() const { return m_Scale; }
    /// Rates that are held at a bound, and the one that couldn't be where s had to shrink.
    const std::vector<NqBoundActiveSet::Hold>& holds() const { return m_Bounds.holds(); }
    /// Rates without bounds, and for v = 0.
    const std::vector<double>& unlimitedRates() const { return m_Rates; }
    const std::vector<double>& nullSpaceRates() const { return m_NullSpaceRates; }
    /// The part of the rates that makes v, and what it would be for another velocity.
    const std::vector<double>& path() const { return m_Path; }
    void findPath(const std::vector<double>& velocity, std::vector<double>& path);
    double determinant() const { return m_Determinant; }
    /// Steps of the active set in the last solve, and whether a search took too many: the outcome is Blocked
    /// then. A solve makes at most three searches.
    unsigned steps() const { return m_Steps; }
    bool isCapped() const { return m_IsCapped; }

    /// The least of the pivots of the rows, a measure of how near they are to depending on each other: 0
    /// where they do.
    double leastPivot() const;

private:
    void size(unsigned n);
    const std::vector<double>& columnOf(unsigned k);

    class Response;
    class ScaledResponse;

    NqJacobianState m_Sparsity;
    NqBoundActiveSet m_Bounds;
    std::vector<std::vector<double>> m_Columns; ///< of the response, those that were asked for
    std::vector<bool> m_HasColumn;
    std::vector<double> m_Rates;
    std::vector<double> m_NullSpaceRates;
    std::vector<double> m_Path; ///< the part of the rates that makes v
    std::vector<double> m_Limited;
    std::vector<double> m_Freedom;
    std::vector<double> m_RightHandSide;
    double m_Determinant = 0.0;
    double m_PathCost = 0.0; ///< what a unit of s weighs in the metric
    double m_Scale = 1.0;
    unsigned m_Rows = 0;
    unsigned m_Steps = 0;
    bool m_IsCapped = false;
};
