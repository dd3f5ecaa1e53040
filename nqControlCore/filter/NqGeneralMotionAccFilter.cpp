#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>

#include <nqControlCore/filter/NqMotionProfile.h>
#include <nqControlCore/filter/NqRotationError.h>

const NqToken& NqGeneralMotionAccFilter::classToken() {
    return NqControlCore::NqGeneralMotionAccelerationFilterToken;
}

NqGeneralMotionAccFilter NqGeneralMotionAccFilter::nullObject() {
    NqGeneralMotionAccFilter filter;
    filter.m_AngularWeight = 1.0;
    filter.m_Threshold = 1e300;
    filter.m_LinearGain = 1.0;
    filter.m_AngularGain = 1.0;
    return filter;
}

bool NqGeneralMotionAccFilter::calculateGeneralAccMotion(
    const NqCoordinateSystemTransformation& actualPlacement,
    const NqCoordinateSystemTransformation& desiredPlacement, const NqGeneralMotion& desiredAcceleration,
    double timeStep, NqGeneralMotion& filteredAcceleration) const {
    const NqVector& o = m_Offset.value();
    const NqCoordinateSystemTransformation relative = actualPlacement.inverse() * desiredPlacement;
    NqVector angular = NqMotionProfile::gainWithinStep(m_AngularGain, timeStep) *
                       NqRotationError::asItStands(relative.orientation());
    NqVector linear = NqMotionProfile::gainWithinStep(m_LinearGain, timeStep) * (relative * o - o);

    const double f = NqMotionProfile::factorTo(m_Threshold * m_Threshold,
                                               linear.magSquared() +
                                                   angular.magSquared() * m_AngularWeight * m_AngularWeight);
    angular *= f;
    linear *= f;
    const NqOrientation& orientation = actualPlacement.orientation();
    filteredAcceleration =
        NqGeneralMotion(orientation * (linear - angular.cross(o)) + desiredAcceleration.linear(),
                        orientation * angular + desiredAcceleration.angular());
    return true;
}

bool NqGeneralMotionAccFilter::calculateAcceleration(const NqVector& actualPosition,
                                                     const NqVector& desiredPosition,
                                                     const NqVector& desiredAcceleration, double timeStep,
                                                     NqVector& filteredAcceleration) const {
    NqVector out =
        NqMotionProfile::gainWithinStep(m_LinearGain, timeStep) * (desiredPosition - actualPosition);
    out *= NqMotionProfile::factorTo(m_Threshold * m_Threshold, out.magSquared());
    filteredAcceleration = out + desiredAcceleration;
    return true;
}
