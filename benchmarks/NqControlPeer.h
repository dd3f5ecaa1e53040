#pragma once

#include <string>
#include <vector>

/// Somebody who makes control steps of a case: this library, or one of its peers.
class NqControlPeer {
public:
    /// Which of the rates that give the commanded velocity are found.
    enum class Answer {
        Descending, ///< those that descend the gradient: the only ones of their kind
        LeastNorm,  ///< the smallest ones, whatever the gradient
        Exact       ///< some
    };

    virtual ~NqControlPeer() = default;

    virtual const std::string& name() const = 0;
    virtual Answer answer() const = 0;

    /// The name under which kinematics() is measured on its own. Empty for those who compute Jacobians inside
    /// their solvers, or whose kinematics others have already.
    virtual std::string kinematicsName() const { return {}; }

    /// Sets positions and rates of the joints to those of a step of the case's motion, and finds frames,
    /// Jacobian and velocities of the constraints.
    virtual void kinematics(unsigned step) = 0;

    /// The whole control step: the above, and then the commanded velocity, the error, the joint rates, those
    /// of the null space, and the determinant.
    virtual void step(unsigned step) = 0;

    /// A step without filter and error, and hence for the command of the step before. False, and nothing
    /// done, where joint rates don't come from a solver of their own.
    virtual bool bareStep(unsigned) { return false; }

    // Results of the last step, for comparison.

    /// Joint rates by joint index.
    virtual std::vector<double> rates() const = 0;
    /// Joint rates of the null space; empty for a peer without them.
    virtual std::vector<double> nullSpaceRates() const = 0;
    /// Velocity of the constraints in this motion, row by row.
    virtual std::vector<double> velocity() const = 0;
    /// Commanded velocity, row by row.
    virtual std::vector<double> command() const = 0;
};
