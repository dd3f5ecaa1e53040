#pragma once

#include <nqControlCore/core/NqStackedVectors.h>
#include <nqControlCore/foundation/math/NqCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// The accelerations of a manipulator's end-effectors, one vector each, with an offset transformation for
/// each.
class NqManipulatorEndEffectorAcceleration
    : public NqXmlPersistent<NqManipulatorEndEffectorAcceleration, NqXmlCompoundType> {
public:
    using Vectors = NqStackedVectors::Vectors;
    using Transformations = NqXmlVectorType<NqCoordinateSystemTransformation>;

    static const NqToken& classToken();

    virtual const Vectors& generalEndEffectorAccelerations() const {
        return m_GeneralEndEffectorAccelerations;
    }
    virtual Vectors& generalEndEffectorAccelerations() { return m_GeneralEndEffectorAccelerations; }

    /// Gives the offset transformations the same count, new ones being the identity.
    virtual void setGeneralEndEffectorAccelerations(const Vectors& accelerations);

    /// Writes the accelerations one after the other; the result gets the exact length, doc().
    virtual void getSingleVector(std::vector<double>& result) const;
    virtual unsigned int doc() const;

    virtual const Transformations& offsetTransformations() const { return m_OffsetTransformations; }

    /// Leaves the accelerations as they are, whatever the count.
    virtual void setOffsetTransformations(const Transformations& offsets) {
        m_OffsetTransformations = offsets;
    }

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Set = NqManipulatorEndEffectorAcceleration;
        return nqComponentList(
            nqComponent(NqOffsetTransformationsToken, &Set::m_OffsetTransformations),
            nqComponent(NqGeneralEndEffectorAccelerationsToken, &Set::m_GeneralEndEffectorAccelerations));
    }

    Transformations m_OffsetTransformations;
    Vectors m_GeneralEndEffectorAccelerations;
};
