#pragma once

#include <nqControlCore/endeffector/NqVelocityEntries.h>

#include <array>
#include <initializer_list>

/// A component of the motion of a frame: linear velocity of its origin, then angular velocity. The values are
/// the indices of NqGeneralMotion.
enum class NqMotionComponent : unsigned { LinearX, LinearY, LinearZ, AngularX, AngularY, AngularZ };

/// The components of a motion that are rows of a constraint, in the order of the rows.
class NqMotionComponents {
public:
    constexpr NqMotionComponents(std::initializer_list<NqMotionComponent> components) {
        for (const NqMotionComponent component : components) {
            m_Components[m_Count++] = static_cast<unsigned>(component);
        }
    }

    constexpr unsigned size() const { return m_Count; }
    constexpr unsigned operator[](unsigned row) const { return m_Components[row]; }

private:
    std::array<unsigned, 6> m_Components{};
    unsigned m_Count = 0;
};

/// What a constraint whose rows are components of the motion of a frame chooses.
struct NqMotionPlan {
    using Tail = NqVelocityEntries::Tail;

    /// What rows and placement are.
    NqMotionComponents rows;
    enum class Placement { Frame, Point, Orientation } placement = Placement::Frame;

    /// The axes of the components: those of the system, the frame's own, or those that rowAxes() of the class
    /// gives.
    enum class Axes { System, Own, Turned } axes = Axes::System;

    /// Which columns relative links and a free base get.
    bool hasRelativeColumns = true;
    enum class BaseColumns {
        Motion,                ///< those of its motion
        RotationInTranslation, ///< those of its rotation, but where those of its translation belong
        None                   ///< none, though the bits say all
    } base = BaseColumns::Motion;

    /// Whether sparsity clears all bits of its rows first, or only as right-sizing does.
    bool clearsBits = false;

    /// Whether the velocity of a link that is not found is zero, or stays what it was.
    bool lostLinkRests = true;
    Tail velocityTail = Tail::Cut;
    Tail accelerationTail = Tail::Cut;

    // Messages, each with the label in it.
    const char* badLabel;                 ///< of the Jacobian
    const char* badRelativeLabel;         ///< of the Jacobian
    const char* badSparsityLabel;         ///< of the sparsity
    const char* badSparsityRelativeLabel; ///< of the sparsity
    const char* badPlacementLabel;        ///< of the placement

    /// Whether column c of a free base can move row i: in the axes of the system a translation moves its own
    /// direction and a rotation the two others, while turned axes mix directions.
    constexpr bool baseMoves(unsigned i, unsigned c) const {
        const unsigned component = rows[i];
        const bool isLinear = component < 3;
        const bool isTranslation = c < 3;
        switch (base) {
        case BaseColumns::None:
            return true;
        case BaseColumns::RotationInTranslation:
            return c + 3 == component;
        case BaseColumns::Motion:
            break;
        }
        if (!isLinear && isTranslation) {
            return false;
        }
        if (axes != Axes::System) {
            return true;
        }
        return isLinear == isTranslation ? c == component : c != component + 3;
    }
};
