#pragma once

#include <nqControlCore/endeffector/NqEditableEndEffector.h>
#include <nqControlCore/endeffector/NqScalarBasedEndEffector.h>
#include <nqControlCore/foundation/math/NqDroppedOnCopy.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// Constrains the distance between two points, each fixed in a link of its own.
///
/// With u the unit vector from the first to the second point (the x axis where they coincide), the row is u
/// times the difference of the points' velocities for unit rate. The link that the base class names plays no
/// part, nor do relative links, external offsets or a free base, which moves both points alike.
class NqPointDistanceEndEffector
    : public NqConcreteEndEffector<NqPointDistanceEndEffector, NqScalarBasedEndEffector> {
public:
    static const NqToken& classToken();

    /// The least distance, in m, that a target is taken to be.
    static constexpr double m_theMinimumDistance = 0.005;

    NqPointDistanceEndEffector();

    static const NqEditableValueTable<NqPointDistanceEndEffector>& editableTable();

    bool read(NqXmlReader& reader) override;

    bool changeLinkLabel(const std::string& oldLabel, const std::string& newLabel) override;

    unsigned doc() const override { return 1; }

    /// Where one link is not found, the other's columns still stand.
    void insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 NqManipulatorActiveState& state, NqReArray& jacobian) const override;
    void insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 SparsityDescription& sparsity) const override;
    void insertErrorWeightComponent(unsigned row, NqReArray& weights) const override;

    /// The distance of the points, where a point whose link is not found counts as the origin.
    void calculatePlacement(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                            NqEndEffectorPlacement& placement) const override;
    void calculateVelocity(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                           NqXmlRealVector& velocity, unsigned start) const override;

    /// Zero.
    void calculateAcceleration(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state,
                               NqXmlRealVector& acceleration, unsigned start) const override;

    using NqScalarBasedEndEffector::filterEndEffectorVelocity;
    void filterEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                   const NqEndEffectorPlacement& desiredPlacement,
                                   const NqXmlRealVector& desiredVelocity,
                                   const NqXmlRealVector& previousVelocity, double timeStep,
                                   NqManipulatorActiveState& state, NqXmlRealVector& filtered) const override;
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

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

    /// The way from the first to the second point.
    NqVector gap(const NqIndividualManipulator& manipulator, NqManipulatorActiveState& state) const;

    NqXmlVector m_PointOne;
    NqXmlVector m_PointTwo;
    NqXmlBasicType<std::string> m_LabelOne;
    NqXmlBasicType<std::string> m_LabelTwo;
    NqXmlBasicType<double> m_ErrorWeight = 1.0;

    mutable NqDroppedOnCopy<Joints> m_Joints;
};
