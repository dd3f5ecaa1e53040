#pragma once

#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>

#include <optional>
#include <string>
#include <vector>

class NqTargetKind;

/// Where an end-effector is to go: a place, an orientation, both, a number or a list of joint positions, with
/// a velocity of the target itself where it moves.
///
/// What a target leaves out stays as it was. Places and orientations are in the frame of the end-effector's
/// relative link where it has one, unless the target says inSystem().
class NqControlTarget {
public:
    static NqControlTarget place(const NqVector& place);
    static NqControlTarget orientation(const NqOrientation& orientation);
    static NqControlTarget frame(const NqCoordinateSystemTransformation& frame);
    /// A distance in m, an angle in rad, a joint position or a sum of them.
    static NqControlTarget number(double number);
    /// Positions of the joints that the end-effector lists, in its order, or of all joints of the
    /// manipulator.
    static NqControlTarget values(const std::vector<double>& values);

    NqControlTarget& inSystem() {
        m_IsInSystem = true;
        return *this;
    }
    /// Feed-forward: how the target moves, an entry for each row of the end-effector, in the terms of its
    /// rows.
    NqControlTarget& withVelocity(const std::vector<double>& velocity) {
        m_Velocity = velocity;
        return *this;
    }

    bool isInSystem() const { return m_IsInSystem; }
    const std::vector<double>& velocity() const { return m_Velocity; }

    /// Empty if the target suits an end-effector of that kind with so many rows, else what is wrong with it:
    /// "needs X,Y,Z".
    std::string objection(const NqTargetKind& kind, std::size_t rows) const;

    /// Puts what the target gives into a placement.
    void apply(NqEndEffectorPlacement& placement) const;

private:
    std::optional<NqVector> m_Place;
    std::optional<NqOrientation> m_Orientation;
    std::optional<double> m_Number;
    std::vector<double> m_Values;
    std::vector<double> m_Velocity;
    bool m_IsInSystem = false;
};
