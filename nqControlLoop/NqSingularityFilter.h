#pragma once

#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <vector>

/// Takes directions that the joints hardly make any more out of the rows of a Jacobian.
///
/// J = U S V^T. Of the directions u_i, the columns of U, those with a singular value s_i below a threshold
/// are lost: they leave the rows that are met exactly, which become u_k^T J x = u_k^T v for the others, and
/// enter the cost with
///     (u_i^T J x - u_i^T v)^2 / lambda_i^2,    lambda_i^2 = lambda^2 (1 - (s_i / threshold)^2)
/// so that alone they are damped: numerical filtering, Maciejewski and Klein, "Numerical filtering for the
/// operation of robotic manipulators through kinematically singular configurations", J. Robotic Systems 5(6),
/// 1988; the factor from Chiaverini, "Singularity-robust task-priority redundancy resolution", IEEE Trans.
/// Robotics and Automation 13(3), 1997. The damping sets in at nothing, so that the rates don't jump.
class NqSingularityFilter {
public:
    void prepare(unsigned rows, unsigned columns);

    /// Whether a singular value may be below the threshold: false is certain, and cheap.
    bool isNear(const NqReArray& jacobian, unsigned rows, double threshold);

    /// Finds the singular values and the lost directions. How many are lost.
    unsigned split(const NqReArray& jacobian, unsigned rows, double threshold);

    /// The rows that are left, with their velocity; the array keeps its memory for any number of rows.
    const NqReArray& keptRows() const { return m_Kept[m_KeptCount]; }
    const std::vector<double>& keptVelocity() const { return m_KeptVelocity; }
    void projectVelocity(const std::vector<double>& velocity);

    /// Adds the lost directions to a full metric and a gradient. What the gradient itself wants along them
    /// fades as the velocity asked for goes to zero, so that it keeps nothing from coming to rest on target.
    void addCost(const std::vector<double>& velocity, double damping, NqReArray& metric,
                 std::vector<double>& gradient) const;

    /// Singular values in rising order, and the direction of each (an entry a row).
    double singularValue(unsigned i) const { return m_Values[i]; }
    const std::vector<double>& direction(unsigned i) const { return m_Directions[i]; }
    unsigned lost() const { return m_Lost; }
    /// How many of the lost ones no joint moves.
    unsigned vanished() const;

    /// What a velocity has along a direction, u_i^T v, and what rates make there, u_i^T J x.
    double along(unsigned i, const std::vector<double>& velocity) const;
    double made(unsigned i, const std::vector<double>& rates) const;
    /// What damping leaves of a velocity along a lost direction, for joints that weigh alike and are free.
    double dampedShare(unsigned i, double damping) const;
    /// The kept rows and behind them those of the lost directions that haven't vanished, u_i^T J / s_i.
    const NqReArray& presentRows();

private:
    void diagonalise();
    double squareOfDamping(unsigned i, double damping) const;

    unsigned m_Rows = 0;
    unsigned m_Columns = 0;
    unsigned m_Lost = 0;
    unsigned m_KeptCount = 0;
    double m_Threshold = 0.0;
    std::vector<std::vector<double>> m_Square;     ///< J J^T, then its diagonal form
    std::vector<std::vector<double>> m_Directions; ///< eigenvectors, one a row
    std::vector<double> m_Values;
    std::vector<std::vector<double>> m_Turned; ///< U^T J
    std::vector<NqReArray> m_Kept;             ///< one for each number of rows
    std::vector<double> m_KeptVelocity;
};
