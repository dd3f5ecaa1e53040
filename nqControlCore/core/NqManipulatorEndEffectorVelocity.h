#pragma once

#include <nqControlCore/core/NqStackedVectors.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// The velocities of a manipulator's end-effectors, one vector each, as the solver's right-hand side needs
/// them.
class NqManipulatorEndEffectorVelocity
    : public NqXmlPersistent<NqManipulatorEndEffectorVelocity, NqXmlCompoundType> {
public:
    using Vectors = NqStackedVectors::Vectors;

    NqManipulatorEndEffectorVelocity() = default;
    NqManipulatorEndEffectorVelocity(const Vectors& velocities)
        : m_GeneralEndEffectorVelocities(velocities) {}

    static const NqToken& classToken();

    virtual const Vectors& generalEndEffectorVelocities() const { return m_GeneralEndEffectorVelocities; }
    virtual Vectors& generalEndEffectorVelocities() { return m_GeneralEndEffectorVelocities; }
    virtual void setGeneralEndEffectorVelocities(const Vectors& velocities) {
        m_GeneralEndEffectorVelocities = velocities;
    }

    /// Replaces the velocity of one end-effector. False, with nothing changed, where there is no such one.
    virtual bool setGeneralEndEffectorVelocity(unsigned int index, const NqXmlRealVector& velocity);

    /// Write the velocities one after the other: of the listed end-effectors in list order, or of all. The
    /// result gets the exact length. Indices are not checked.
    virtual void getSingleVector(const std::vector<unsigned int>& indices, std::vector<double>& result) const;
    virtual void getSingleVector(std::vector<double>& result) const;

    /// Degrees of constraint: the length of that vector.
    virtual unsigned int doc(const std::vector<unsigned int>& indices) const;
    virtual unsigned int doc() const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqGeneralEndEffectorVelocitiesToken,
                        &NqManipulatorEndEffectorVelocity::m_GeneralEndEffectorVelocities));
    }

    Vectors m_GeneralEndEffectorVelocities;
};
