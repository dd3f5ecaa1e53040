#pragma once

#include <nqControlLoop/NqTargetForm.h>

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/endeffector/NqJointList.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What targets an end-effector takes, and what follows from its type: what is left to a target, in which
/// parts its motion is limited, what of it can be drawn and written down. All that is known of types stands
/// in NqTargetType; nobody else asks for them.
class NqTargetKind {
public:
    /// Rows of an end-effector that are limited together.
    struct Part {
        bool isAngular = false; ///< a rotation
        bool isLargest = false; ///< numbers of which the largest counts, rather than a vector's length
        std::string unit;       ///< "m" or "rad"; empty for a mixture
        unsigned row = 0;       ///< the first, counted within the end-effector
        unsigned rows = 0;
        double speedLimit = 0.0;
        double accelerationLimit = 0.0;
        double approach = 0.0; ///< deceleration by which the filter shapes the way to a stop

        /// The size of these rows of a vector.
        double size(const double* values) const;
    };

    /// A point, fixed in a link, that an end-effector ties. An empty label: the system.
    struct Tie {
        std::string link;
        NqCoordinateSystemTransformation offset;
    };

    NqTargetKind() = default;
    NqTargetKind(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator);

    /// Gives the end-effector's motion filter a filtering mode, and in three-halves mode the exponent that
    /// the mode is named for unless the filter has one.
    static void setProfile(NqEndEffector& endEffector, unsigned int filteringMode);

    const NqTargetForm& form() const { return *m_Form; }
    bool hasPlace() const { return m_Form->hasPlace(); }
    bool hasOrientation() const { return m_Form->hasOrientation(); }
    /// Whether all of the target's place is to be met.
    bool isWholePlace() const { return hasPlace() && m_Type.measure == NqTargetType::ByPlacement; }
    const std::vector<Part>& parts() const { return m_Parts; }
    const std::vector<Tie>& ties() const { return m_Ties; }

    /// How many numbers a target of values has.
    std::size_t values() const { return m_Values; }
    /// The number that a target may be at least, and at most.
    double leastNumber() const { return m_Type.least; }
    double greatestNumber() const { return m_Type.greatest; }

    /// A placement, or a target, in the frame of the relative link and back in the system frame. Numbers are
    /// the same in both.
    void toRelative(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator,
                    const NqEndEffectorPlacement& placement, NqManipulatorActiveState& state,
                    NqEndEffectorPlacement& relative) const;
    void toSystem(const NqEndEffector& endEffector, const NqIndividualManipulator& manipulator,
                  const NqEndEffectorPlacement& relative, NqManipulatorActiveState& state,
                  NqEndEffectorPlacement& placement) const;

    /// What is left from the present to the desired placement, an entry for each part.
    void measure(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                 const NqEndEffectorPlacement& present, const NqEndEffectorPlacement& target,
                 double* errors) const;

    /// Names and values of the numbers that the frame of a placement consists of.
    std::vector<std::string_view> columns() const;
    std::vector<double> numbers(const NqCoordinateSystemTransformation& placement) const;

private:
    double partDistance(const Part& part, const NqEndEffectorPlacement& present,
                        const NqEndEffectorPlacement& target) const;

    const NqTargetForm* m_Form = &NqTargetForm::of(NqTargetForm::Nothing);
    NqTargetType m_Type{};
    std::size_t m_Values = 0;
    NqJointList m_Listed; ///< joints that the values are of, where the end-effector lists them
    std::vector<Part> m_Parts;
    std::vector<Tie> m_Ties;
    /// The end-effector with its motion filter switched off, where what is left is measured by it.
    std::shared_ptr<NqEndEffector> m_Unfiltered;
    mutable NqXmlRealVector m_Still;
    mutable NqXmlRealVector m_Way;
};
