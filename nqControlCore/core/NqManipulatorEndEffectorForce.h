#pragma once

#include <nqControlCore/core/NqStackedVectors.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// The forces on a manipulator's end-effectors, one vector each.
class NqManipulatorEndEffectorForce
    : public NqXmlPersistent<NqManipulatorEndEffectorForce, NqXmlCompoundType> {
public:
    using Vectors = NqStackedVectors::Vectors;

    static const NqToken& classToken();

    virtual const Vectors& generalEndEffectorForces() const { return m_GeneralEndEffectorForces; }
    virtual Vectors& generalEndEffectorForces() { return m_GeneralEndEffectorForces; }
    virtual void setGeneralEndEffectorForces(const Vectors& forces) { m_GeneralEndEffectorForces = forces; }

    /// Writes the forces one after the other; the result gets the exact length, doc().
    virtual void getSingleVector(std::vector<double>& result) const;
    virtual unsigned int doc() const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(NqControlCore::NqGeneralEndEffectorForcesToken,
                                           &NqManipulatorEndEffectorForce::m_GeneralEndEffectorForces));
    }

    Vectors m_GeneralEndEffectorForces;
};
