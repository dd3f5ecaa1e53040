#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>

#include <nqControlCore/foundation/text/NqPrint.h>

#include <cmath>

namespace {

bool isFinite(const NqVector& v) {
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

bool isFinite(const NqCoordinateSystemTransformation& frame) {
    // A rotation by a quaternion that isn't finite leaves no vector finite.
    return isFinite(frame.translation()) && isFinite(frame.orientation() * NqVector(1.0, 1.0, 1.0));
}

bool isFinite(const NqRigidBodyMassProperties& m) {
    return std::isfinite(double(m.mass())) && isFinite(m.firstMoment()) &&
           isFinite(m.secondMoment() * NqVector(1.0, 1.0, 1.0));
}

} // namespace

NqIndividualManipulator::NqIndividualManipulator(const std::string& manipulatorLabel,
                                                 const std::string& baseLabel,
                                                 const NqRigidBodyMassProperties& massProperties)
    : m_ManipulatorLabel(manipulatorLabel) {
    m_Label = baseLabel;
    m_MassProperties = massProperties;
    m_KinematicTree.addBody(0, massProperties);
    attach(*this);
}

NqIndividualManipulator::NqIndividualManipulator(const NqIndividualManipulator& other)
    : NqManipulatorLink(other), m_ManipulatorLabel(other.m_ManipulatorLabel),
      m_KinematicTree(other.m_KinematicTree) {
    copyLinks(other);
}

NqIndividualManipulator& NqIndividualManipulator::operator=(const NqIndividualManipulator& other) {
    if (this != &other) {
        NqManipulatorLink::operator=(other);
        m_ManipulatorLabel = other.m_ManipulatorLabel;
        m_KinematicTree = other.m_KinematicTree;
        copyLinks(other);
    }
    return *this;
}

void NqIndividualManipulator::copyLinks(const NqIndividualManipulator& other) {
    m_Links.clear();
    m_MovingLinks.clear();
    m_LinksByLabel.clear();
    m_Carrier = this;
    attach(*this);
    for (const auto& original : other.m_Links) {
        // Carrier and parent stand before the link, or are the link itself.
        NqManipulatorLink& copy = *m_Links.emplace_back(new NqManipulatorLink(*original));
        copy.m_Carrier = body(original->m_Carrier->m_Body);
        copy.m_Parent = original->m_Parent ? body(original->m_Parent->m_Body) : nullptr;
        attach(copy);
    }
}

void NqIndividualManipulator::attach(NqManipulatorLink& link) {
    link.m_Tree = &m_KinematicTree;
    m_LinksByLabel.emplace(link.m_Label, &link);
    if (link.m_Carrier == &link && link.m_Parent) {
        m_MovingLinks.push_back(&link);
    }
}

const NqManipulatorLink* NqIndividualManipulator::addLink(const std::string& parentLabel,
                                                          const std::string& label,
                                                          const NqJointDescription& joint,
                                                          const NqCoordinateSystemTransformation& placement,
                                                          const NqVector& axis,
                                                          const NqRigidBodyMassProperties& massProperties) {
    const auto refuse = [&](const char* reason) -> const NqManipulatorLink* {
        Nq::Print::instance().write(Nq::PrintFailure,
                                    "NqIndividualManipulator::addLink(): link \"%s\": %s.\n", label, reason);
        return nullptr;
    };
    const bool moves = joint.type() != NqJointDescription::Fixed;
    const auto found = m_LinksByLabel.find(parentLabel);
    if (found == m_LinksByLabel.end()) {
        return refuse("its parent isn't there");
    }
    if (label.empty() || m_LinksByLabel.contains(label)) {
        return refuse("its label is empty or taken");
    }
    if (!isFinite(placement) || !isFinite(massProperties)) {
        return refuse("its placement or mass isn't finite");
    }
    const double axisLength = axis.mag();
    if (moves && !(axisLength > 0.0 && std::isfinite(axisLength))) {
        return refuse("its joint axis has no direction");
    }

    const NqManipulatorLink& parent = *found->second;
    NqManipulatorLink& link = *m_Links.emplace_back(new NqManipulatorLink);
    link.m_Label = label;
    link.m_Joint = joint;
    link.m_Body = m_Links.size();
    if (moves) {
        const NqOrientation dhInPrimary = NqOrientation::fromZTo(axis / axisLength);
        link.m_PrimaryFrameOffset = dhInPrimary.inverse();
        link.m_Parent = parent.m_Carrier;
        link.m_MassProperties = massProperties;
        link.m_Entry = m_KinematicTree.addJoint(parent.m_Entry, joint.type() == NqJointDescription::Prismatic,
                                                parent.m_PrimaryFrameOffset * placement * dhInPrimary);
    } else {
        NqManipulatorLink& carrier = *body(parent.m_Carrier->m_Body);
        link.m_PrimaryFrameOffset = parent.m_PrimaryFrameOffset * placement;
        link.m_Carrier = &carrier;
        link.m_Entry = carrier.m_Entry;
        NqRigidBodyMassProperties inCarrier = massProperties;
        carrier.m_MassProperties +=
            inCarrier.transformBy(carrier.m_PrimaryFrameOffset.inverse() * link.m_PrimaryFrameOffset);
    }
    link.m_HasOffset = link.m_PrimaryFrameOffset != NqCoordinateSystemTransformation();

    NqRigidBodyMassProperties inDhFrame = massProperties;
    m_KinematicTree.addBody(link.m_Entry, inDhFrame.transformBy(link.m_PrimaryFrameOffset));
    attach(link);
    return &link;
}

const NqManipulatorLink* NqIndividualManipulator::linkByLabel(const std::string& label) const {
    const auto found = m_LinksByLabel.find(label);
    return found == m_LinksByLabel.end() || label.empty() ? nullptr : found->second;
}

const NqManipulatorLink* NqIndividualManipulator::linkByIndex(unsigned index) const {
    return index < m_MovingLinks.size() ? m_MovingLinks[index] : nullptr;
}

const NqCoordinateSystemTransformation&
NqIndividualManipulator::baseFrameInSystem(NqManipulatorActivePositionState& state) const {
    return linkFrameInSystem(state);
}

NqVector NqIndividualManipulator::centerOfMass(NqManipulatorActivePositionState& state) const {
    const NqVector& origin = baseFrameInSystem(state).translation();
    const double mass = compositeMass();
    return mass > 0.0 ? origin + compositeFirstMoment(state) / mass : origin;
}

std::span<const NqVector>
NqIndividualManipulator::linearMomentaOfUnitRates(NqManipulatorActivePositionState& state) const {
    return std::span(state.firstMoments(m_KinematicTree).linearMomenta).subspan(1);
}

std::span<const NqVector>
NqIndividualManipulator::angularMomentaOfUnitRates(NqManipulatorActivePositionState& state) const {
    return std::span(state.compositeMoments(m_KinematicTree).angularMomenta).subspan(1);
}

const NqVector& NqIndividualManipulator::linearMomentum(NqManipulatorActiveState& state) const {
    return state.linearMomentum(m_KinematicTree);
}

const NqVector& NqIndividualManipulator::angularMomentum(NqManipulatorActiveState& state) const {
    return state.angularMomentum(m_KinematicTree);
}

const NqManipulatorLink* NqIndividualManipulator::link(unsigned number) const {
    return number == 0 ? this : number <= m_Links.size() ? m_Links[number - 1].get() : nullptr;
}
