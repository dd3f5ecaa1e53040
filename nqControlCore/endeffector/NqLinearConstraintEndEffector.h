#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqJointList.h>
#include <nqControlCore/endeffector/NqNumberEndEffector.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>

#include <limits>

/// Constrains a weighted sum of joint values: one row, the weights in the columns of the joints.
///
/// The number is the sum of linkWeights[i] times the position of the joint of linkLabels[i], less
/// weightedSum. Of labels and weights only as many count as both lists have. A joint should be named once: of
/// several weights the last one stands in its column, while all count in the sum. The link that the base
/// class names plays no part, nor do relative links, external offsets or a free base.
///
/// Joints are looked up once and remembered, also for another manipulator, until the labels are set, read or
/// assigned. A label that is unknown, or of a link without a joint, is left out with a message.
class NqLinearConstraintEndEffector
    : public NqConcreteEndEffector<NqLinearConstraintEndEffector,
                                   NqNumberEndEffector<NqLinearConstraintEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqLinearConstraintEndEffectorToken; }
    static constexpr const char* theTooltip =
        "This end effector constrains a linear combination of joint values.";
    static const NqEditableValueTable<NqLinearConstraintEndEffector>& editableTable();

    /// Forgets the joints.
    bool read(NqXmlReader& reader) override;

    /// Renames among linkLabels(); joints that are remembered stay.
    bool changeLinkLabel(const std::string& oldLabel, const std::string& newLabel) override;

    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// Left alone where the constraint is not interactive.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// 0 where the filter's threshold is not above 0. The speed factor plays no part.
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

    /// Present minus desired number; 0 where the constraint is not interactive, or no joint was found.
    void calculateEndEffectorError(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   NqManipulatorActiveState& state, NqXmlRealVector& error) const override;

    /// Labels of the links whose joints are summed up.
    virtual const NqLabelVector& linkLabels() const { return m_LinkLabels; }
    virtual void setLinkLabels(const NqLabelVector& labels);

    virtual const NqXmlRealVector& linkWeights() const { return m_LinkWeights; }
    virtual void setLinkWeights(const NqXmlRealVector& weights) { m_LinkWeights = weights; }

    /// What the sum exceeds the placement's number by.
    virtual double weightedSum() const { return m_WeightedSum; }
    virtual void setWeightedSum(double sum) { m_WeightedSum = sum; }

    /// Gain of the motion filter.
    virtual double gain() const { return ownFilter().gain(); }
    virtual void setGain(double gain) { ownFilter().setGain(gain); }

    /// Whether the number follows a target at all, or is held where it is.
    virtual bool isInteractive() const { return m_IsInteractive; }
    virtual void setIsInteractive(bool isInteractive) { m_IsInteractive = isInteractive; }

    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The weighted sum of joint positions less weightedSum(), and the placement's number; both 0 where the
    /// constraint is not interactive or no joint was found.
    NqDrivenNumber drivenNumber(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                                const NqEndEffectorPlacement& desiredPlacement) const;

    /// The weighted sum of joint rates.
    double rate(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state) const;

protected:
    /// Looks the joints up, unless they are remembered.
    virtual void setLinkIndices(const NqIndividualManipulator& manipulator) const;
    virtual void clearLinkIndices() const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqLinearConstraintEndEffector;
        constexpr auto legacy = NqXmlComponentKind::Legacy;
        return nqComponentList(nqComponent(NqLinkLabelsToken, &E::m_LinkLabels),
                               nqComponent(NqLinkWeightsToken, &E::m_LinkWeights),
                               nqComponent(NqWeightedSumToken, &E::m_WeightedSum),
                               nqComponent(NqIsInteractiveToken, &E::m_IsInteractive),
                               nqComponent(NqErrorWeightToken, &E::m_ErrorWeight),
                               nqComponent(NqGainToken, &E::m_OldGain, legacy),
                               nqComponent(NqThresholdToken, &E::m_OldThreshold, legacy));
    }

    /// Calls `visit(column, weight)` for each joint that was found for the first labels, `most` of them.
    template <typename Visit>
    void forEachJoint(const NqIndividualManipulator& manipulator, Visit visit,
                      std::size_t most = std::numeric_limits<std::size_t>::max()) const;

    /// A weighted sum of joint values, and how many joints counted. No more labels count than there are
    /// values.
    struct Sum {
        double value;
        unsigned count = 0;
    };
    Sum sum(const NqIndividualManipulator& manipulator, const NqXmlRealVector& jointValues,
            double start) const;

    NqLabelVector m_LinkLabels;
    NqXmlRealVector m_LinkWeights;
    NqXmlBasicType<double> m_WeightedSum = 0.0;
    NqXmlBasicType<bool> m_IsInteractive = true;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;
    NqXmlBasicType<double> m_OldGain = 50.0;     ///< of old files, without effect
    NqXmlBasicType<double> m_OldThreshold = 1.0; ///< the same

    mutable NqDroppedOnCopy<NqJointList> m_Joints;
};
