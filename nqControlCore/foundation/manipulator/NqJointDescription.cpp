#include <nqControlCore/foundation/manipulator/NqJointDescription.h>

#include <utility>

namespace {

// By type: the motion at unit rate.
constexpr NqGeneralMotion kUnitMotions[] = {NqGeneralMotion(),
                                            NqGeneralMotion(NqVector(), NqVector::zVector(1.0)),
                                            NqGeneralMotion(NqVector::zVector(1.0), NqVector())};

} // namespace

NqJointDescription::NqJointDescription(Type type, std::string name) : m_Type(type), m_Name(std::move(name)) {}

const NqGeneralMotion& NqJointDescription::jointMotion(double, double rate) const {
    const NqGeneralMotion& unitMotion = kUnitMotions[m_Type];
    if (rate == 1.0) {
        return unitMotion;
    }
    // Threads may share a manipulator, so the scaled motion has no place in the joint itself.
    thread_local NqGeneralMotion motion;
    motion = NqGeneralMotion(rate * unitMotion.linear(), rate * unitMotion.angular());
    return motion;
}

void NqJointDescription::setPositionLimits(double lower, double upper) {
    m_LowerPositionLimit = lower;
    m_UpperPositionLimit = upper;
}
