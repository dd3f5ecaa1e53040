#pragma once

#include "NqDriveTarget.h"

#include <nqControlCore/endeffector/NqEndEffector.h>

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the placement of an end-effector consists of, and what follows from that: which targets suit it, what
/// is left to one, in which parts its motion is limited, what of it can be drawn and written down. This is
/// the one place of the program that asks for the types of end-effectors.
class NqDriveTargetKind {
public:
    /// Rows of an end-effector that are limited together.
    struct Part {
        bool isAngular = false; ///< a rotation in three rows
        std::string unit;       ///< "m" or "rad"; empty for a mixture
        unsigned row = 0;       ///< the first, counted within the end-effector
        unsigned rows = 0;
        double speedLimit = 0.0;
        double accelerationLimit = 0.0;
        double approach = 0.0; ///< deceleration by which the filter shapes the way to a stop
    };

    /// The kind of an end-effector; none for a type that no target can be written for.
    static std::optional<NqDriveTargetKind> of(const NqEndEffector& endEffector,
                                               const NqIndividualManipulator& manipulator);

    /// Gives the end-effector's motion filter a filtering mode, and in three-halves mode the exponent that
    /// the mode is named for unless the filter has one.
    static void setProfile(NqEndEffector& endEffector, unsigned int filteringMode);

    const std::vector<Part>& parts() const { return m_Parts; }

    /// How its targets are written: "X,Y,Z".
    const char* form() const;

    /// Empty if the target suits this kind, else what is wrong with it.
    std::string objection(const NqDriveTarget& target) const;

    /// The placement that a target means; what it leaves out is as it is at the start. Offsets and rotations
    /// of a relative target are along and about the axes of the frame that the placement is in.
    NqEndEffectorPlacement placement(const NqDriveTarget& target, bool isRelative,
                                     const NqEndEffectorPlacement& start) const;

    /// Empty unless a target's number is one that the constraint can't have.
    std::string rangeObjection(const NqEndEffectorPlacement& target) const;

    /// A placement, or a target, in the frame of the relative link and back in the system frame. Numbers are
    /// the same in both.
    NqEndEffectorPlacement presentInRelative(const NqEndEffector& endEffector,
                                             const NqIndividualManipulator& manipulator,
                                             NqManipulatorActiveState& state) const;
    void toSystem(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator,
                  const NqEndEffectorPlacement& target, NqManipulatorActiveState& state,
                  NqEndEffectorPlacement& systemTarget) const;

    /// How much of a part is left between two placements, in its unit.
    double distance(const Part& part, const NqEndEffectorPlacement& present,
                    const NqEndEffectorPlacement& target) const;

    /// Whether the placement is a place in space: a path, and a target that can be out of reach.
    bool hasPlace() const { return m_HasPlace; }
    bool hasOrientation() const { return m_HasOrientation; }

    /// What the constraint ties, each in the frame of a link; only an orientation counts of some.
    struct Tie {
        std::string link;
        NqCoordinateSystemTransformation offset;
    };
    const std::vector<Tie>& ties() const { return m_Ties; }

    /// A placement as the user would write it.
    std::string text(const NqEndEffectorPlacement& placement) const;

    /// Names and values of the numbers that a placement consists of.
    std::vector<std::string_view> columns() const;
    std::vector<double> numbers(const NqCoordinateSystemTransformation& placement) const;

private:
    bool isNumber() const { return !m_HasPlace && !m_HasOrientation; }

    bool m_HasPlace = false;
    bool m_HasOrientation = false;
    double m_LeastNumber = -std::numeric_limits<double>::infinity();
    double m_GreatestNumber = std::numeric_limits<double>::infinity();
    std::vector<Part> m_Parts;
    std::vector<Tie> m_Ties;
};
