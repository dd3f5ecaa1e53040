#pragma once

#include <nqControlCore/endeffector/NqEndEffectorDescription.h>
#include <nqControlCore/endeffector/NqEndEffectorRelativeLinkData.h>
#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>
#include <nqControlCore/foundation/math/NqUncopied.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

#include <string>
#include <vector>

class NqGeneralMotion;
class NqIndividualManipulator;
class NqManipulatorActivePositionState;
class NqManipulatorActiveState;
class NqManipulatorLink;
class NqReArray;
struct NqRowRequest;

/// One constraint on the motion of a manipulator: a point, a frame, an orientation, a number that is to
/// follow a target.
///
/// An end-effector holds no manipulator: the manipulator and its active state come with every call, and links
/// are found by their label. doc() rows of the stacked Jacobian belong to it; every row operation takes the
/// first of them and touches no others. Placements, velocities and accelerations are in the system frame
/// unless an operation says "relative". Columns are joint indices; where the base moves freely, six follow:
/// translation x, y, z of the base, then rotation x, y, z about its origin.
///
/// A label that the manipulator lacks is never fatal: the class's message goes out at print type 4, and the
/// output stays as far as it had got.
///
/// Const operations write working fields, so an object belongs to one thread at a time.
class NqEndEffector : public NqXmlPersistentBase<NqEndEffector, NqXmlCompoundType> {
public:
    /// Which elements of the Jacobian can be non-zero: bits of its shape.
    using SparsityDescription = std::vector<std::vector<bool>>;

    /// Columns of a freely moving base.
    static constexpr unsigned m_theBaseDof = 6;

    /// Label of the link that the end-effector sits on.
    virtual const std::string& linkIdentifier() const { return m_LinkIdentifier; }
    virtual void setLinkIdentifier(const std::string& label) { m_LinkIdentifier = label; }

    /// Replaces the label of the link that the end-effector sits on, or of the links that a class looks up
    /// instead. Whether it had it.
    virtual bool changeLinkLabel(const std::string& oldLabel, const std::string& newLabel);

    virtual const NqEndEffectorRelativeLinkData& relativeLinkData() const { return m_RelativeLinkData; }
    virtual void setRelativeLinkData(const NqEndEffectorRelativeLinkData& data) { m_RelativeLinkData = data; }

    /// Whether the constraint must hold (hard), or is met as well as can be (soft).
    virtual const bool& isHardConstraint() const { return m_IsHardConstraint.value(); }
    virtual void setIsHardConstraint(const bool& isHard) { m_IsHardConstraint = isHard; }

    virtual const bool& isEditable() const { return m_IsEditable.value(); }
    virtual void setIsEditable(const bool& isEditable) { m_IsEditable = isEditable; }

    /// Gives the rows from `row` to `row + doc() - 1` the width `columns`, all zero. Rows that are there are
    /// reused, and others keep their content and width.
    virtual void rightSizeJacobian(unsigned row, unsigned columns, NqReArray& jacobian) const;

    /// The same for bits; where rows are missing, only the new ones are sized.
    virtual void rightSizeSparsityDescriptionMatrix(unsigned row, unsigned columns,
                                                    SparsityDescription& sparsity) const;

    /// Degrees of constraint: the number of rows.
    virtual unsigned doc() const = 0;

    /// Right-sizes the rows and writes them: the velocity of the end-effector per unit rate of each joint
    /// and, unless `fixedBase`, of the base. In internal relative mode of `relativeLink` (the argument, not
    /// the member) the motion of the relative link is taken away, and the base columns stay zero.
    virtual void insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                         const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                         NqManipulatorActiveState& state, NqReArray& jacobian) const = 0;

    /// Right-sizes the rows and sets the bits of all elements that insertJacobianComponent can make non-zero.
    virtual void insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                         const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                         SparsityDescription& sparsity) const = 0;

    /// Writes the error weights of the rows: on the diagonal of an array whose first row has more than one
    /// entry, or else in the first column. An array with too few rows is resized.
    virtual void insertErrorWeightComponent(unsigned row, NqReArray& weights) const = 0;

    /// The present placement in the system frame. Sets only what the type uses.
    virtual void calculatePlacement(const NqIndividualManipulator& manipulator,
                                    NqManipulatorActiveState& state,
                                    NqEndEffectorPlacement& placement) const = 0;

    /// The present placement in the relative link's frame.
    virtual void calculatePlacementInRelative(const NqIndividualManipulator& manipulator,
                                              NqManipulatorActiveState& state,
                                              NqEndEffectorPlacement& placement) const;

    /// Resizes `velocity` to `start + doc()` and writes the velocity from `start`.
    virtual void calculateVelocity(const NqIndividualManipulator& manipulator,
                                   NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                   unsigned start) const = 0;

    /// As calculateVelocity, for the acceleration.
    virtual void calculateAcceleration(const NqIndividualManipulator& manipulator,
                                       NqManipulatorActiveState& state, NqXmlRealVector& acceleration,
                                       unsigned start) const = 0;

    /// Limits a velocity by the motion filter, its change taken against the previous one over the time step.
    virtual void filterEndEffectorVelocity(const NqXmlRealVector& desiredVelocity,
                                           const NqXmlRealVector& previousVelocity, double timeStep,
                                           NqXmlRealVector& filtered) const = 0;

    /// The velocity by which the motion filter takes the present placement towards the desired one (both in
    /// the system frame), with the desired velocity as feed-forward, limited as above.
    virtual void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                           const NqEndEffectorPlacement& desiredPlacement,
                                           const NqXmlRealVector& desiredVelocity,
                                           const NqXmlRealVector& previousVelocity, double timeStep,
                                           NqManipulatorActiveState& state,
                                           NqXmlRealVector& filtered) const = 0;

    /// Least time, in s, of the move at the motion filter's limit of speed.
    virtual double minimumTime(const NqEndEffectorPlacement& from,
                               const NqEndEffectorPlacement& to) const = 0;

    /// How far two placements lie apart, in this type's own terms; not negative.
    virtual double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const = 0;

    /// The editable values: a fixed list of labels, tooltips and texts for an editing interface.
    virtual const NqLabelVector& editingLabels() const { return m_Description->labels; }
    virtual const NqLabelVector& tooltipLabels() const { return m_Description->tooltips; }

    /// Prints the fields into the cache of values, and returns it.
    virtual const NqLabelVector& editableValues() const = 0;

    /// Applies the cache to the fields.
    virtual void setEditableValues();

    /// Parses all values into the fields. A list of the wrong length is ignored.
    virtual void setEditableValues(const NqLabelVector& values) = 0;

    /// Changes one value in the cache, which is filled first if it is empty. An index past its end changes
    /// nothing.
    virtual void setEditableValue(const unsigned& index, const std::string& value);

    /// Limits of speed and of acceleration of the motion filter.
    virtual double motionThreshold() const = 0;
    virtual void setMotionThreshold(double threshold) = 0;
    virtual double accelerationThreshold() const = 0;
    virtual void setAccelerationThreshold(double threshold) = 0;

    /// Express a placement in the frame of the relative link, and back; a copy of `in` where the relative
    /// mode is none. False, with a message and `out` untouched, where the manipulator lacks the relative
    /// link.
    virtual bool convertPlacementFromSystemToRelative(const NqIndividualManipulator& manipulator,
                                                      const NqEndEffectorPlacement& in,
                                                      NqManipulatorActivePositionState& state,
                                                      NqEndEffectorPlacement& out) const;
    virtual bool convertPlacementFromRelativeToSystem(const NqIndividualManipulator& manipulator,
                                                      const NqEndEffectorPlacement& in,
                                                      NqManipulatorActivePositionState& state,
                                                      NqEndEffectorPlacement& out) const;

    /// Multiplier on the error of a soft constraint; a run-time setting, neither persisted nor compared.
    virtual double softConstraintMultiplier() const { return m_SoftConstraintMultiplier; }
    virtual void setSoftConstraintMultiplier(double multiplier) const {
        m_SoftConstraintMultiplier = multiplier;
    }

    /// The way from the present to the desired placement as doc() numbers, or back, where a class says so.
    /// Here: zeros.
    virtual void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                           const NqEndEffectorPlacement& desiredPlacement,
                                           NqManipulatorActiveState& state, NqXmlRealVector& error) const;

    /// Factor on the motion filter's limits. Here: 1, and not to be set.
    virtual double speedFactor() const;
    virtual void setSpeedFactor(double factor);

    /// Whether the motion filter filters. Here: true, and not to be set.
    virtual bool filteringActive() const;
    virtual void setFilteringActive(bool active);

    /// One line that says what this class of end-effector is.
    virtual const NqXmlBasicType<std::string>& endEffectorTooltip() const { return m_Description->tooltip; }

    /// The external offset: a transformation that the owner lends, added to the end-effector's own offset
    /// from its link while useExternalOffset() is true. The owner keeps it alive; the index only tells the
    /// owner which to lend.
    virtual bool useExternalOffset() const { return m_UseExternalOffset; }
    virtual void setUseExternalOffset(bool use) { m_UseExternalOffset = use; }
    virtual unsigned externalOffsetIndex() const { return m_ExternalOffsetIndex; }
    virtual void setExternalOffsetIndex(unsigned index) { m_ExternalOffsetIndex = index; }
    virtual void setExternalOffsetPointer(const NqCoordinateSystemTransformation* offset) {
        m_ExternalOffsetPointer = offset;
    }

    /// Whether the owner may turn this hard constraint into a soft one.
    virtual bool canBecomeSoft() const { return m_CanBecomeSoft; }
    virtual void setCanBecomeSoft(bool canBecomeSoft) { m_CanBecomeSoft = canBecomeSoft; }

protected:
    // One column of the Jacobian, for derived classes; the columns that are written here don't pass through
    // these.

    /// Velocity, in the system frame, of a point fixed in `pointLink`, given in its primary frame, for a unit
    /// rate of the joint of `jointLink`.
    virtual NqVector pointMotion(const NqManipulatorLink& jointLink, const NqManipulatorLink& pointLink,
                                 const NqVector& point, NqManipulatorActivePositionState& state) const;

    /// Velocity, in the system frame and at the frame's own origin, of a frame fixed in `frameLink`, given in
    /// its primary frame, for a unit rate of the joint of `jointLink`.
    virtual void getFrameMotion(const NqManipulatorLink& jointLink, const NqManipulatorLink& frameLink,
                                const NqCoordinateSystemTransformation& frame,
                                NqManipulatorActivePositionState& state, NqGeneralMotion& motion) const;

    /// The point, given in the link's primary frame, in the system frame.
    virtual NqVector pointPosition(const NqManipulatorLink& link, const NqVector& point,
                                   NqManipulatorActivePositionState& state) const;

public:
    /// For a caller that wants both: what filterEndEffectorVelocity() and calculateEndEffectorError() give. A
    /// class may compute once what these have in common.
    virtual void calculateFilteredVelocityAndError(const NqIndividualManipulator& manipulator,
                                                   const NqEndEffectorPlacement& desiredPlacement,
                                                   const NqXmlRealVector& desiredVelocity,
                                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                                   NqManipulatorActiveState& state, NqXmlRealVector& filtered,
                                                   NqXmlRealVector& error) const;

protected:
    // What the layers between this class and the concrete ones are built from.

    /// Takes over what a class tells about itself; to be called by its constructors with one object for all.
    void describe(const NqEndEffectorDescription& description) { m_Description = &description; }

    /// The link of that label, or null. One that was found before is only looked at again.
    const NqManipulatorLink* ownLink(const NqIndividualManipulator& manipulator) const;

    /// The same; where there is none, after printing the message with the label in it.
    const NqManipulatorLink* linkOrMessage(const NqIndividualManipulator& manipulator,
                                           const char* message) const;

    /// Where the printed editable values are kept.
    NqLabelVector& editableValueCache() const { return *m_EditableValues; }

    /// Right-sizes the rows of the bits. They are clear, except where rows were missing: those that were
    /// there keep theirs, and are widened.
    void rightSizeSparsity(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// The external offset that is to be applied, or null.
    const NqCoordinateSystemTransformation* externalOffset() const {
        return m_UseExternalOffset ? m_ExternalOffsetPointer : nullptr;
    }

    /// The present placement; the identity, without numbers, where the type leaves it. It holds until the
    /// next such call.
    const NqEndEffectorPlacement& presentPlacement(const NqIndividualManipulator& manipulator,
                                                   NqManipulatorActiveState& state) const {
        m_ScratchPlacement->setCoordSysXForm(NqCoordinateSystemTransformation());
        m_ScratchPlacement->dataVector().clear();
        calculatePlacement(manipulator, state, *m_ScratchPlacement);
        return *m_ScratchPlacement;
    }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        return nqComponentList(nqComponent(NqLinkIdentifierToken, &NqEndEffector::m_LinkIdentifier),
                               nqComponent(NqRelativeLinkDataToken, &NqEndEffector::m_RelativeLinkData),
                               nqComponent(NqIsHardConstraintToken, &NqEndEffector::m_IsHardConstraint),
                               nqComponent(NqIsEditableToken, &NqEndEffector::m_IsEditable),
                               nqComponent(NqUseExternalOffsetToken, &NqEndEffector::m_UseExternalOffset),
                               nqComponent(NqExternalOffsetIndexToken, &NqEndEffector::m_ExternalOffsetIndex),
                               nqComponent(NqCanBecomeSoftToken, &NqEndEffector::m_CanBecomeSoft));
    }

    bool convertPlacement(const NqIndividualManipulator& manipulator, const NqEndEffectorPlacement& in,
                          NqManipulatorActivePositionState& state, bool isToRelative, const char* message,
                          NqEndEffectorPlacement& out) const;

    // Configuration: persisted and compared.
    NqXmlBasicType<std::string> m_LinkIdentifier;
    NqEndEffectorRelativeLinkData m_RelativeLinkData;
    NqXmlBasicType<bool> m_IsHardConstraint = true;
    NqXmlBasicType<bool> m_IsEditable = true;
    NqXmlBasicType<bool> m_UseExternalOffset = false;
    NqXmlBasicType<unsigned int> m_ExternalOffsetIndex = 0u;
    NqXmlBasicType<bool> m_CanBecomeSoft = false;

    // Of the class or the run time: copied along only.
    const NqEndEffectorDescription* m_Description = &NqEndEffectorDescription::none();
    mutable double m_SoftConstraintMultiplier = 1.0;
    const NqCoordinateSystemTransformation* m_ExternalOffsetPointer = nullptr;

    // Workspace: never copied.
    mutable NqUncopied<NqLabelVector> m_EditableValues;
    mutable NqUncopied<NqEndEffectorPlacement> m_ScratchPlacement;
    mutable NqUncopied<unsigned> m_LinkNumber; ///< of the link that was found last, among all links
};
