#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqJointList.h>
#include <nqControlCore/endeffector/NqRowEndEffector.h>
#include <nqControlCore/endeffector/NqTargetedEndEffector.h>
#include <nqControlCore/endeffector/NqUnfilteredEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqGravitationalTorqueTool.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Balances the spring torques of joints that give way against gravity: one row for each listed joint.
///
///     residual  r_i = k_i (q_i - o_i) - t_i
///     row i     k_i in the column of the joint, less the derivatives of t_i by all joints
///     velocity  row i times the joint rates
///     command   -errorWeight r_i
///
/// with q_i the joint's position, k_i its spring constant, o_i its calibration offset and t_i the torque of
/// gravity (NqGravitationalTorqueTool). While the joint of the trigger link, where there is one, stands below
/// the i-th activation trigger value, t_i counts as 0. The residuals are the numbers of the placement. What a
/// user has to know:
///
/// - doc() is 0 until the object has been evaluated for the first time after its labels, spring constants or
///   trigger were set, read or assigned: only then it is known how many rows there are. It is the smaller of
///   the numbers of labels and spring constants.
/// - A label that is unknown or of a link without a joint is reported once; its row stays zero, and its
///   numbers in placements and velocities stay what they were.
/// - Calibration offsets and trigger values that are missing count as 0.
/// - errorWeight is the weight of the rows and the gain of the command, which has no limit, and which neither
///   the desired placement, velocities nor the time step change. calculateAcceleration() writes nothing and
///   calculateEndEffectorError() gives zeros.
/// - Columns of a free base are zero, though turning the base turns gravity too.
/// - A trigger that was found stays in force when the label of the trigger link is set to nothing.
/// - Relative links, external offsets and the link that the base class names play no part;
///   changeLinkLabel() changes that link's label alone.
class NqSagEndEffector
    : public NqConcreteEndEffector<
          NqSagEndEffector,
          NqTargetedEndEffector<NqSagEndEffector,
                                NqRowEndEffector<NqSagEndEffector, NqUnfilteredEndEffector>>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqSagEndEffectorToken; }
    static constexpr const char* theTooltip =
        "This end effector constrains the 3D location of the center of gravity.";
    static const NqEditableValueTable<NqSagEndEffector>& editableTable();

    /// Forgets the joints, and gives each spring constant a calibration offset.
    bool read(NqXmlReader& reader) override;

    unsigned doc() const override { return static_cast<unsigned>(m_LookedUp->joints.size()); }

    void insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 NqManipulatorActiveState& state, NqReArray& jacobian) const override;
    void insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 SparsityDescription& sparsity) const override;

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    /// All of them: gravity couples all joints.
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// Sets the numbers alone.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// Writes nothing.
    void calculateAcceleration(const NqIndividualManipulator&, NqManipulatorActiveState&, NqXmlRealVector&,
                               unsigned) const override {}

    void insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const;

    /// 1, and not to be set.
    double motionThreshold() const override { return 1.0; }
    /// 0 for any placements.
    double minimumTime(const NqEndEffectorPlacement&, const NqEndEffectorPlacement&) const override {
        return 0.0;
    }
    /// The length of the difference of the numbers, of which only as many count as both have.
    double difference(const NqEndEffectorPlacement& a, const NqEndEffectorPlacement& b) const override;

    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// Gravity in the system frame, in m/s^2.
    virtual const NqXmlVector& gravity() const { return m_Gravity; }
    virtual void setGravity(const NqXmlVector& gravity) { m_Gravity = gravity; }

    virtual const NqXmlRealVector& activationTriggerValues() const { return m_ActivationTriggerValues; }
    virtual void setActivationTriggerValues(const NqXmlRealVector& values);

    /// Label of the link whose joint triggers; empty for none.
    virtual const NqXmlBasicType<std::string>& triggerLinkLabel() const { return m_TriggerLinkLabel; }
    virtual void setTriggerLinkLabel(const NqXmlBasicType<std::string>& label);

    /// The joint positions at which the springs are free.
    virtual const NqXmlRealVector& calibrationOffsets() const { return m_CalibrationOffsets; }
    virtual void setCalibrationOffsets(const NqXmlRealVector& offsets) { m_CalibrationOffsets = offsets; }

    /// Labels of the links whose joints sag.
    const NqLabelVector& linkLabels() const { return m_LinkLabels; }
    void setLinkLabels(const NqLabelVector& labels);

    /// In N m/rad, or N/m for a joint that slides.
    const NqXmlRealVector& springConstants() const { return m_SpringConstants; }
    void setSpringConstants(const NqXmlRealVector& constants);

    // Lists as texts, as NqEditableLists has them.

    static void vectorFromCSVString(const std::string& text, NqXmlRealVector& numbers) {
        NqEditableLists::split(text, numbers);
    }
    static void vectorFromCSVString(const std::string& text, NqLabelVector& labels) {
        NqEditableLists::split(text, labels);
    }
    static std::string formatAsCSVString(const NqXmlRealVector& numbers) {
        return NqEditableLists::join(numbers);
    }
    static std::string formatAsCSVString(const NqLabelVector& labels) {
        return NqEditableLists::join(labels);
    }

protected:
    /// Looks up the trigger's joint, and the others unless they are remembered.
    void setLinkIndices(const NqIndividualManipulator& manipulator) const;
    void clearLinkIndices() const;
    void setupGravTorqueTool(const NqIndividualManipulator& manipulator) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqSagEndEffector;
        return nqComponentList(nqComponent(NqErrorWeightToken, &E::m_ErrorWeight),
                               nqComponent(NqLinkLabelsToken, &E::m_LinkLabels),
                               nqComponent(NqLinkWeightsToken, &E::m_SpringConstants),
                               nqComponent(NqGravityVectorToken, &E::m_Gravity),
                               nqComponent(NqCalibrationOffsetsToken, &E::m_CalibrationOffsets),
                               nqComponent(NqActivationTriggerValuesToken, &E::m_ActivationTriggerValues),
                               nqComponent(NqTriggerLinkLabelToken, &E::m_TriggerLinkLabel));
    }

    struct LookedUp {
        NqJointList joints;
        unsigned triggerJoint = 0;
        bool hasTrigger = false;
    };

    /// Sets up what a row needs, then calls `visit(i, joint, hasGravity)` for the rows of joints.
    template <typename Visit>
    void forEachRow(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                    Visit visit) const;

    NqXmlBasicType<double> m_ErrorWeight = 0.1;
    NqLabelVector m_LinkLabels;
    NqXmlRealVector m_SpringConstants;
    NqXmlVector m_Gravity{NqVector(0.0, 0.0, -9.8)};
    NqXmlRealVector m_CalibrationOffsets;
    NqXmlRealVector m_ActivationTriggerValues;
    NqXmlBasicType<std::string> m_TriggerLinkLabel;

    mutable NqDroppedOnCopy<LookedUp> m_LookedUp;
    mutable NqUncopied<NqGravitationalTorqueTool> m_GravTorqueTool;
    mutable NqUncopied<std::vector<double>> m_Gradient; ///< one for each joint
};
