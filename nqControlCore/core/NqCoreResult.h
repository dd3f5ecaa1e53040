#pragma once

#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

#include <vector>

/// What one solve gave: the joint rates, split into what meets the constraints (the base component) and what
/// moves in the space they leave free (the null-space component), and the determinant of the primary matrix.
///
/// Three matrices may be kept along with a result; they are neither persisted nor compared.
class NqCoreResult : public NqXmlPersistent<NqCoreResult, NqXmlCompoundType> {
public:
    static const NqToken& classToken();

    virtual const NqXmlRealVector& baseComponent() const { return m_BaseComponent; }
    virtual void setBaseComponent(const NqXmlRealVector& component) { m_BaseComponent = component; }
    virtual const NqXmlRealVector& nullSpaceComponent() const { return m_NullSpaceComponent; }
    virtual void setNullSpaceComponent(const NqXmlRealVector& component) { m_NullSpaceComponent = component; }

    /// Splits total rates, given their null-space part; the tail of the longer of the two is left out.
    virtual void setComponentsFromTotalAndNull(const std::vector<double>& total,
                                               const std::vector<double>& nullPart);

    /// Copies each component, at its own length.
    virtual void getComponents(std::vector<double>& base, std::vector<double>& nullPart) const;

    virtual double primaryDeterminant() const { return m_PrimaryDeterminant; }
    virtual void setPrimaryDeterminant(double determinant) { m_PrimaryDeterminant = determinant; }

    /// Whether all entries of the null-space component, if any, are exactly zero.
    virtual bool isNullSpaceComponentZero() const;

    /// The coordinates x and y for which `rates`, a column, is closest to x times the base component plus y
    /// times the null-space component. Where one component vanishes its coordinate is 0. False, with both 0,
    /// where both vanish or they are exactly parallel.
    virtual bool getComponentCoordinates(const NqReArray& rates, double& baseCoordinate,
                                         double& nullCoordinate) const;

    virtual const NqReArray& matrix() const { return m_Matrix; }
    virtual void setMatrix(const NqReArray& matrix) { m_Matrix = matrix; }
    virtual const NqReArray& vector() const { return m_Vector; }
    virtual void setVector(const NqReArray& vector) { m_Vector = vector; }
    virtual const NqReArray& scalar() const { return m_Scalar; }
    virtual void setScalar(const NqReArray& scalar) { m_Scalar = scalar; }

    /// Whether the result came from calcJointRatesAB; not compared.
    virtual NqXmlBasicType<bool> coreIsAB() const { return m_CoreIsAB; }
    virtual void setCoreIsAB(bool coreIsAB) { m_CoreIsAB = coreIsAB; }

    /// Compares the components and the determinant.
    bool sameValue(const NqCoreResult& other) const;

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        return nqComponentList(nqComponent(NqBaseComponentToken, &NqCoreResult::m_BaseComponent),
                               nqComponent(NqNullSpaceComponentToken, &NqCoreResult::m_NullSpaceComponent),
                               nqComponent(NqPrimaryDeterminantToken, &NqCoreResult::m_PrimaryDeterminant),
                               nqComponent(NqCoreIsABToken, &NqCoreResult::m_CoreIsAB));
    }

    NqXmlRealVector m_BaseComponent;
    NqXmlRealVector m_NullSpaceComponent;
    NqXmlBasicType<double> m_PrimaryDeterminant = 0.0;
    NqXmlBasicType<bool> m_CoreIsAB = false;
    NqReArray m_Matrix;
    NqReArray m_Vector;
    NqReArray m_Scalar;
};
