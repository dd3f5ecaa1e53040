#pragma once

#include <nqControlCore/endeffector/NqEditableValueTable.h>
#include <nqControlCore/endeffector/NqEndEffectorRelativeLinkData.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>
#include <nqControlCore/foundation/math/NqGeneralMotion.h>
#include <nqControlCore/foundation/math/NqUncopied.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

#include <string>
#include <vector>

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
    virtual const NqLabelVector& editingLabels() const { return m_EditingLabels; }
    virtual const NqLabelVector& tooltipLabels() const { return m_TooltipLabels; }

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
    virtual const NqXmlBasicType<std::string>& endEffectorTooltip() const { return m_EndEffectorTooltip; }

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

    // What the concrete classes are built from.

    /// Texts of the messages about labels that a class prints from a row operation.
    struct LabelMessages {
        const char* badLabel;
        const char* badRelativeLabel;
    };

    /// The external offset that is to be applied, or null.
    const NqCoordinateSystemTransformation* externalOffset() const {
        return m_UseExternalOffset ? m_ExternalOffsetPointer : nullptr;
    }

    /// The link of that label. Null, after printing the message with the label in it, where there is none.
    static const NqManipulatorLink* linkOrMessage(const NqIndividualManipulator& manipulator,
                                                  const std::string& label, const char* message);

    /// The link that the end-effector sits on; null without a message.
    const NqManipulatorLink* ownLink(const NqIndividualManipulator& manipulator) const {
        return manipulator.linkByLabel(linkIdentifier());
    }

    /// Columns of the Jacobian.
    static unsigned jacobianWidth(const NqIndividualManipulator& manipulator, bool fixedBase) {
        return manipulator.numberOfJoints() + (fixedBase ? 0 : m_theBaseDof);
    }

    /// Whether the base columns are to be filled: the base moves, and the rows are not relative to another
    /// link of the same manipulator.
    static bool hasBaseColumns(const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase) {
        return !fixedBase &&
               relativeLink.relativeMode() != NqEndEffectorRelativeLinkData::relativeModeInternal;
    }

    /// The link that rows are relative to in internal mode; null in the others, and, with the message, for an
    /// unknown label.
    static const NqManipulatorLink* internalRelativeLink(const NqIndividualManipulator& manipulator,
                                                         const NqEndEffectorRelativeLinkData& relativeLink,
                                                         const char* badRelativeLabel) {
        return relativeLink.relativeMode() == NqEndEffectorRelativeLinkData::relativeModeInternal
                   ? linkOrMessage(manipulator, relativeLink.relativeLinkID(), badRelativeLabel)
                   : nullptr;
    }

    /// Writes the columns of all joints, for rows that are a linear function of the motion of a frame with
    /// its origin at `origin` (system frame), carried by `link`, less that of the relative link. `rowsOf`
    /// maps such a motion to an array of row entries. The rows must be right-sized.
    template <typename RowsOf>
    static void insertJointColumns(const NqIndividualManipulator& manipulator, unsigned row,
                                   const NqEndEffectorRelativeLinkData& relativeLink,
                                   const NqManipulatorLink& link, const NqVector& origin,
                                   const char* badRelativeLabel, NqManipulatorActivePositionState& state,
                                   NqReArray& jacobian, RowsOf rowsOf);

    /// The same, and the columns of a free base.
    template <typename RowsOf>
    static void insertMotionRows(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 const NqManipulatorLink& link, const NqVector& origin,
                                 const char* badRelativeLabel, NqManipulatorActivePositionState& state,
                                 NqReArray& jacobian, RowsOf rowsOf);

    /// Bits of the base columns for rows that are components of a linear (0 to 2) or angular (3 to 5)
    /// velocity: bit c of entry r is base column c.
    static constexpr unsigned m_theBaseBits[6] = {0b110001, 0b101010, 0b011100, 0b001000, 0b010000, 0b100000};

    /// Right-sizes the rows. Their bits are clear, except where rows were missing: those that were there keep
    /// theirs, and are widened.
    void clearBits(const NqIndividualManipulator& manipulator, unsigned row, bool fixedBase,
                   SparsityDescription& sparsity) const;

    /// Sets the bits of the joints that move a link, in all rows; none for a null link.
    void insertChainBits(const NqManipulatorLink* link, unsigned row, SparsityDescription& sparsity) const;

    /// Right-sizes the rows and sets the bits of the joints that move the link or the relative link, and
    /// those of a free base, row by row from `baseBits`: the bits that belong to insertMotionRows().
    void insertMotionBits(const NqIndividualManipulator& manipulator, unsigned row,
                          const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                          const LabelMessages& messages, const unsigned* baseBits,
                          SparsityDescription& sparsity) const;

    /// Writes error weights in the shape that the array has: one for the first three rows, and one for the
    /// others. Rows that are too short are lengthened.
    void insertErrorWeights(unsigned row, NqReArray& weights, double firstWeight, double otherWeight) const;

    /// Velocity in the system frame of a point fixed in a link, given in its primary frame: m.linear +
    /// m.angular x r.
    static NqGeneralMotion offsetVelocity(const NqManipulatorLink& link, const NqVector& offset,
                                          NqManipulatorActiveState& state);

    /// Classical acceleration in the system frame of a frame fixed in a link, given in its primary frame.
    static NqGeneralMotion offsetAcceleration(const NqManipulatorLink& link,
                                              const NqCoordinateSystemTransformation& offset,
                                              NqManipulatorActiveState& state);

    /// Least time for a distance at a limit of speed.
    static double timeForDistance(double distance, double speedLimit);

    /// Takes count, labels and tooltips of the editable values from their table, and the class's own tooltip.
    /// To be called by concrete constructors.
    template <typename Class>
    void describe(const NqEditableValueTable<Class>& table, const char* endEffectorTooltip);

    /// Prints the values of `self`, which is this object, into the cache, and returns it.
    template <typename Class>
    const NqLabelVector& printedValues(const NqEditableValueTable<Class>& table, const Class& self) const;

    /// Parses the values into `self`, which is this object. The list must be as long as the table, or longer.
    template <typename Class>
    static void parseValues(const NqEditableValueTable<Class>& table, const NqLabelVector& values,
                            Class& self);

    unsigned numEditableValues() const { return m_NumEditableValues; }

    /// What insertPart() does with entries behind those that it writes.
    enum class Tail { Cut, Kept };

    /// Writes a vector from `start` on into `values`, which is resized to end there or, with Tail::Kept, only
    /// lengthened.
    static void insertPart(const NqVector& part, NqXmlRealVector& values, unsigned start,
                           Tail tail = Tail::Cut);

    /// The present placement; the identity where the type leaves it. It holds until the next such call.
    const NqEndEffectorPlacement& presentPlacement(const NqIndividualManipulator& manipulator,
                                                   NqManipulatorActiveState& state) const {
        m_ScratchPlacement->setCoordSysXForm(NqCoordinateSystemTransformation());
        calculatePlacement(manipulator, state, *m_ScratchPlacement);
        return *m_ScratchPlacement;
    }

    /// The first entries of a list, at most 3 of them from `start` on; missing ones are zero.
    static NqVector entries(const NqXmlRealVector& values, unsigned start = 0);

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
    NqLabelVector m_EditingLabels;
    NqLabelVector m_TooltipLabels;
    NqXmlBasicType<unsigned int> m_NumEditableValues = 0u;
    mutable double m_SoftConstraintMultiplier = 1.0;
    NqXmlBasicType<std::string> m_EndEffectorTooltip;
    const NqCoordinateSystemTransformation* m_ExternalOffsetPointer = nullptr;

    // Workspace: never copied.
    mutable NqUncopied<NqLabelVector> m_EditableValues;
    mutable NqUncopied<NqEndEffectorPlacement> m_ScratchPlacement;
};

template <typename RowsOf>
void NqEndEffector::insertJointColumns(const NqIndividualManipulator& manipulator, unsigned row,
                                       const NqEndEffectorRelativeLinkData& relativeLink,
                                       const NqManipulatorLink& link, const NqVector& origin,
                                       const char* badRelativeLabel, NqManipulatorActivePositionState& state,
                                       NqReArray& jacobian, RowsOf rowsOf) {
    link.forEachUnitRateMotion(origin, state, [&](unsigned column, const NqGeneralMotion& motion) {
        const auto entries = rowsOf(motion);
        for (unsigned i = 0; i < entries.size(); ++i) {
            jacobian[row + i][column] = entries[i];
        }
    });
    // Both motions are taken at the same point, so that a joint which carries both links cancels exactly.
    if (const auto* reference = internalRelativeLink(manipulator, relativeLink, badRelativeLabel)) {
        reference->forEachUnitRateMotion(origin, state, [&](unsigned column, const NqGeneralMotion& motion) {
            const auto entries = rowsOf(motion);
            for (unsigned i = 0; i < entries.size(); ++i) {
                jacobian[row + i][column] -= entries[i];
            }
        });
    }
}

template <typename RowsOf>
void NqEndEffector::insertMotionRows(const NqIndividualManipulator& manipulator, unsigned row,
                                     const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                     const NqManipulatorLink& link, const NqVector& origin,
                                     const char* badRelativeLabel, NqManipulatorActivePositionState& state,
                                     NqReArray& jacobian, RowsOf rowsOf) {
    insertJointColumns(manipulator, row, relativeLink, link, origin, badRelativeLabel, state, jacobian,
                       rowsOf);
    if (!hasBaseColumns(relativeLink, fixedBase)) {
        return;
    }
    const NqVector arm = origin - manipulator.baseFrameInSystem(state).translation();
    for (unsigned axis = 0; axis < 3; ++axis) {
        NqVector unit;
        unit[axis] = 1.0;
        const auto translation = rowsOf(NqGeneralMotion(unit, NqVector()));
        const auto rotation = rowsOf(NqGeneralMotion(unit.cross(arm), unit));
        const unsigned column = manipulator.numberOfJoints() + axis;
        for (unsigned i = 0; i < translation.size(); ++i) {
            jacobian[row + i][column] = translation[i];
            jacobian[row + i][column + 3] = rotation[i];
        }
    }
}

template <typename Class>
void NqEndEffector::describe(const NqEditableValueTable<Class>& table, const char* endEffectorTooltip) {
    m_NumEditableValues = table.size();
    m_EditingLabels.resize(table.size());
    m_TooltipLabels.resize(table.size());
    for (unsigned i = 0; i < table.size(); ++i) {
        m_EditingLabels[i] = table[i].label;
        m_TooltipLabels[i] = table[i].tooltip;
    }
    m_EndEffectorTooltip = endEffectorTooltip;
}

template <typename Class>
const NqLabelVector& NqEndEffector::printedValues(const NqEditableValueTable<Class>& table,
                                                  const Class& self) const {
    m_EditableValues->resize(table.size());
    for (unsigned i = 0; i < table.size(); ++i) {
        (*m_EditableValues)[i] = table[i].print(self);
    }
    return *m_EditableValues;
}

template <typename Class>
void NqEndEffector::parseValues(const NqEditableValueTable<Class>& table, const NqLabelVector& values,
                                Class& self) {
    for (unsigned i = 0; i < table.size(); ++i) {
        table[i].parse(self, values, i);
    }
}
