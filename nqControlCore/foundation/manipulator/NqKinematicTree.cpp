#include <nqControlCore/foundation/manipulator/NqKinematicTree.h>

#include <atomic>

NqKinematicTree::NqKinematicTree()
    : m_Entries(1), m_FirstMoments(1), m_SecondMoments(1), m_CompositeMasses(1) {
    changed();
}

void NqKinematicTree::changed() {
    static std::atomic<std::uint64_t> lastId{0};
    m_Id = ++lastId;
}

std::size_t NqKinematicTree::addJoint(std::size_t parent, bool isPrismatic,
                                      const NqCoordinateSystemTransformation& placement) {
    m_Entries.push_back({parent, isPrismatic, placement});
    m_FirstMoments.emplace_back();
    m_SecondMoments.emplace_back();
    m_CompositeMasses.push_back(0.0);
    changed();
    return m_Entries.size() - 1;
}

void NqKinematicTree::addBody(std::size_t entry, const NqRigidBodyMassProperties& massProperties) {
    m_FirstMoments[entry] += massProperties.firstMoment();
    m_SecondMoments[entry] += massProperties.secondMoment();
    m_CompositeMasses[0] += massProperties.mass();
    forEachInboardEntry(entry,
                        [&](std::size_t inboard) { m_CompositeMasses[inboard] += massProperties.mass(); });
    ++m_NumberOfBodies;
    changed();
}

void NqKinematicTree::computeFrames(const NqCoordinateSystemTransformation& baseFrame,
                                    const std::vector<double>& positions,
                                    std::vector<NqCoordinateSystemTransformation>& frames) const {
    frames[0] = baseFrame;
    for (std::size_t i = 1; i < m_Entries.size(); ++i) {
        const Entry& entry = m_Entries[i];
        // First in the parent's axes, so that only one product waits for the parent.
        NqCoordinateSystemTransformation inParent = entry.placement;
        if (entry.isPrismatic) {
            inParent.outboardTransformBy(NqVector::zVector(positions[i - 1]));
        } else {
            inParent.setOrientation(inParent.orientation().turnedAboutZ(positions[i - 1]));
        }
        frames[i] = frames[entry.parent] * inParent;
    }
}

void NqKinematicTree::computeVelocities(const std::vector<NqCoordinateSystemTransformation>& frames,
                                        const NqGeneralMotion& baseMotion, const std::vector<double>& rates,
                                        std::vector<NqGeneralMotion>& velocities) const {
    velocities[0] = baseMotion;
    for (std::size_t i = 1; i < m_Entries.size(); ++i) {
        const Entry& entry = m_Entries[i];
        const NqVector jointRate = rates[i - 1] * frames[i].orientation().zAxis();
        NqGeneralMotion velocity = velocities[entry.parent];
        velocity.transformBy(frames[i].translation() - frames[entry.parent].translation());
        if (entry.isPrismatic) {
            velocity.setLinear(velocity.linear() + jointRate);
        } else {
            velocity.setAngular(velocity.angular() + jointRate);
        }
        velocities[i] = velocity;
    }
}

void NqKinematicTree::computeAccelerations(const std::vector<NqCoordinateSystemTransformation>& frames,
                                           const std::vector<NqGeneralMotion>& velocities,
                                           const NqGeneralMotion& baseAcceleration,
                                           const std::vector<double>& rates,
                                           const std::vector<double>& jointAccelerations,
                                           std::vector<NqGeneralMotion>& accelerations) const {
    accelerations[0] = baseAcceleration;
    for (std::size_t i = 1; i < m_Entries.size(); ++i) {
        const Entry& entry = m_Entries[i];
        const NqVector axis = frames[i].orientation().zAxis();
        const NqVector jointRate = rates[i - 1] * axis;
        const NqVector jointAcceleration = jointAccelerations[i - 1] * axis;
        const NqVector arm = frames[i].translation() - frames[entry.parent].translation();
        const NqVector& w = velocities[entry.parent].angular();

        NqGeneralMotion acceleration = accelerations[entry.parent];
        acceleration.transformBy(arm);
        acceleration.setLinear(acceleration.linear() + w.cross(w.cross(arm)));
        if (entry.isPrismatic) {
            const NqVector coriolis = 2.0 * w.cross(jointRate);
            acceleration.setLinear(acceleration.linear() + coriolis + jointAcceleration);
        } else {
            acceleration.setAngular(acceleration.angular() + w.cross(jointRate) + jointAcceleration);
        }
        accelerations[i] = acceleration;
    }
}

void NqKinematicTree::computeFirstMoments(const std::vector<NqCoordinateSystemTransformation>& frames,
                                          NqCompositeMoments& moments) const {
    std::vector<NqVector>& composites = moments.firstMoments;
    composites.resize(m_Entries.size());
    moments.linearMomenta.resize(m_Entries.size());
    moments.linearMomenta[0] = NqVector();
    moments.baseOrientation = frames[0].orientation();
    for (std::size_t i = 0; i < m_Entries.size(); ++i) {
        composites[i] = frames[i].orientation() * m_FirstMoments[i];
    }
    for (std::size_t i = m_Entries.size() - 1; i > 0; --i) {
        const Entry& entry = m_Entries[i];
        const NqVector axis = frames[i].orientation().zAxis();
        const NqVector arm = frames[i].translation() - frames[entry.parent].translation();
        moments.linearMomenta[i] =
            entry.isPrismatic ? m_CompositeMasses[i] * axis : axis.cross(composites[i]);
        composites[entry.parent] += composites[i] + m_CompositeMasses[i] * arm;
    }
}

void NqKinematicTree::computeSecondMoments(const std::vector<NqCoordinateSystemTransformation>& frames,
                                           NqCompositeMoments& moments) const {
    std::vector<NqSecondMoment>& composites = moments.secondMoments;
    composites.resize(m_Entries.size());
    moments.angularMomenta.resize(m_Entries.size());
    moments.angularMomenta[0] = NqVector();
    NqSecondMoment::rotateAll(m_SecondMoments, frames, composites);
    const NqVector& origin = frames[0].translation();
    for (std::size_t i = m_Entries.size() - 1; i > 0; --i) {
        const Entry& entry = m_Entries[i];
        const NqVector& firstMoment = moments.firstMoments[i];
        const NqVector& place = frames[i].translation();
        const NqVector axis = frames[i].orientation().zAxis();
        const NqVector arm = place - frames[entry.parent].translation();
        moments.angularMomenta[i] = (entry.isPrismatic ? firstMoment.cross(axis) : composites[i] * axis) +
                                    (place - origin).cross(moments.linearMomenta[i]);
        composites[entry.parent] += composites[i];
        composites[entry.parent] +=
            NqSecondMoment::ofMoments(2.0 * firstMoment + m_CompositeMasses[i] * arm, arm);
    }
}
