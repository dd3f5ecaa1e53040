#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqNumberEndEffector.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Constrains the distance between two points, each fixed in a link of its own.
///
/// With u the unit vector from the first to the second point (the x axis where they coincide), the row is u
/// times the difference of the points' velocities for unit rate. The link that the base class names plays no
/// part, nor do relative links, external offsets or a free base, which moves both points alike.
class NqPointDistanceEndEffector
    : public NqConcreteEndEffector<NqPointDistanceEndEffector,
                                   NqNumberEndEffector<NqPointDistanceEndEffector>> {
public:
    static const NqToken& classToken() { return NqControlCore::NqPointDistanceEndEffectorToken; }
    static constexpr const char* theTooltip = "An end effector constraining the distance between two points "
                                              "rigidly attached to any two links of the manipulator.";
    static const NqEditableValueTable<NqPointDistanceEndEffector>& editableTable();

    /// The least distance, in m, that a target is taken to be.
    static constexpr double m_theMinimumDistance = 0.005;

    bool read(NqXmlReader& reader) override;

    bool changeLinkLabel(const std::string& oldLabel, const std::string& newLabel) override;

    /// Where one link is not found, the other's columns still stand.
    void insertRows(const NqRowRequest& request, NqManipulatorActiveState& state, NqReArray& jacobian) const;
    void insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const;

    /// The distance of the points, where a point whose link is not found counts as the origin.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;

    /// The points, each measured from the primary frame of its link, in m.
    virtual const NqVector& pointOne() const { return m_PointOne.value(); }
    virtual void setPointOne(const NqVector& point) { m_PointOne = point; }
    virtual const NqVector& pointTwo() const { return m_PointTwo.value(); }
    virtual void setPointTwo(const NqVector& point) { m_PointTwo = point; }

    /// Labels of their links.
    virtual const std::string& labelOne() const { return m_LabelOne.value(); }
    virtual void setLabelOne(const std::string& label);
    virtual const std::string& labelTwo() const { return m_LabelTwo.value(); }
    virtual void setLabelTwo(const std::string& label);

    virtual const double& errorWeight() const { return m_ErrorWeight.value(); }
    virtual void setErrorWeight(const double& weight) { m_ErrorWeight = weight; }

    /// The points in the system frame, m, and their velocities, m/s. A point whose link is not found stays as
    /// it was, with a message.
    virtual void calculatePointPlacements(const NqIndividualManipulator& manipulator,
                                          NqManipulatorActiveState& state, NqVector& one,
                                          NqVector& two) const;
    virtual void calculatePointVelocities(const NqIndividualManipulator& manipulator,
                                          NqManipulatorActiveState& state, NqVector& one,
                                          NqVector& two) const;

    /// The distance, and the placement's number, no less than the least distance.
    NqDrivenNumber drivenNumber(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                                const NqEndEffectorPlacement& desiredPlacement) const;

    /// How fast the distance grows, in m/s.
    double rate(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state) const;

protected:
    /// The joints of both links, for derived classes: 0 for a link without one. They are valid when the
    /// second link was found.
    struct Joints {
        unsigned one = 0;
        unsigned two = 0;
        bool isValid = false;
    };
    const Joints& linkIndices() const { return *m_Joints; }

    virtual void setLinkIndices(const NqIndividualManipulator& manipulator) const;
    virtual void clearLinkIndices() const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqPointDistanceEndEffector;
        return nqComponentList(
            nqComponent(NqPointOneToken, &E::m_PointOne), nqComponent(NqPointTwoToken, &E::m_PointTwo),
            nqComponent(NqLabelOneToken, &E::m_LabelOne), nqComponent(NqLabelTwoToken, &E::m_LabelTwo),
            nqComponent(NqErrorWeightToken, &E::m_ErrorWeight));
    }

    /// A point of a link; the origin where the link is null.
    static NqVector placed(const NqManipulatorLink* link, const NqVector& point,
                           NqManipulatorActivePositionState& state);

    NqXmlVector m_PointOne;
    NqXmlVector m_PointTwo;
    NqXmlBasicType<std::string> m_LabelOne;
    NqXmlBasicType<std::string> m_LabelTwo;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;

    mutable NqDroppedOnCopy<Joints> m_Joints;
};
