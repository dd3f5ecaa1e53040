#include <nqControlLoop/NqControlLoopCheck.h>

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

std::string quoted(const std::string& name) {
    return "'" + name + "'";
}

/// Changes of one character that turn one text into the other.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

void NqControlLoopCheck::checkNumber(const char* what, double value, double least, bool mayBeLeast) {
    if (!(value > least) && !(mayBeLeast && value == least)) {
        add(true, std::string(what) + " is " + NqDOUBLE2STRING(value) + ", but must be " +
                      (mayBeLeast ? "at least " : "above ") + NqDOUBLE2STRING(least));
    }
}

void NqControlLoopCheck::checkList(const char* what, const NqXmlRealVector& list, std::size_t entries,
                                   double least, bool mayBeLeast) {
    if (!list.empty() && list.size() != entries) {
        add(true, std::string(what) + " has " + std::to_string(list.size()) + " entries for " +
                      std::to_string(entries));
    }
    for (const double value : list) {
        checkNumber(what, value, least, mayBeLeast);
    }
}

void NqControlLoopCheck::checkJoints() {
    for (unsigned j = 0; j < m_Manipulator.numberOfJoints(); ++j) {
        const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
        const std::string name = "joint " + quoted(joint.name());
        if (!(joint.rateLimit() >= 0.0)) {
            add(true, name + " has a rate limit of " + NqDOUBLE2STRING(joint.rateLimit()));
        }
        if (!(joint.lowerPositionLimit() <= joint.upperPositionLimit())) {
            add(true, name + " has a range from " + NqDOUBLE2STRING(joint.lowerPositionLimit()) + " to " +
                          NqDOUBLE2STRING(joint.upperPositionLimit()));
        }
    }
}

void NqControlLoopCheck::checkSettings(const NqControlLoopSettings& settings) {
    const std::size_t joints = m_Manipulator.numberOfJoints();
    checkNumber("the time step", settings.timeStep(), 0.0, false);
    checkNumber("the posture gain", settings.postureGain(), 0.0, true);
    if (settings.postureGain() * settings.timeStep() > 1.0) {
        add(true, "the posture gain is more than one over the time step: the drift would overshoot");
    }
    checkNumber("the soft gain", settings.softGain(), 0.0, true);
    checkNumber("the acceleration time", settings.accelerationTime(), 0.0, true);
    checkNumber("the approach", settings.approach(), 0.0, false);
    checkNumber("the singularity threshold", settings.singularityThreshold(), 0.0, true);
    checkNumber("the damping", settings.damping(), 0.0, false);
    checkNumber("the tolerance", settings.tolerance(), 0.0, true);
    checkList("the list of joint weights", settings.jointWeights(), joints, 0.0, false);
    checkList("the list of base weights", settings.baseWeights(), NqEndEffector::m_theBaseDof, 0.0, false);
    checkList("the list of acceleration limits", settings.accelerationLimits(), joints, 0.0, false);
    checkList("the posture", settings.posture(), joints, -std::numeric_limits<double>::infinity(), false);
    for (const auto& label : settings.heldJoints()) {
        bool isFound = false;
        for (unsigned j = 0; j < joints; ++j) {
            const NqManipulatorLink& link = *m_Manipulator.linkByIndex(j);
            isFound = isFound || link.joint().name() == label.value() || link.linkLabel() == label.value();
        }
        if (!isFound) {
            add(true, "there is no joint " + quoted(label.value()) + " to hold");
        }
    }
}

void NqControlLoopCheck::checkLabel(const std::string& name, const std::string& label) {
    if (label.empty() || m_Manipulator.linkByLabel(label)) {
        return;
    }
    std::string nearest;
    std::size_t least = std::string::npos;
    for (unsigned i = 0; i < m_Manipulator.numberOfLinks(); ++i) {
        const std::string& candidate = m_Manipulator.link(i)->linkLabel();
        const std::size_t distance = editDistance(label, candidate);
        if (!candidate.empty() && distance < least) {
            least = distance;
            nearest = candidate;
        }
    }
    add(true, "end-effector " + quoted(name) + " names link " + quoted(label) +
                  ", which the robot doesn't have" +
                  (nearest.empty() ? "" : "; the nearest is " + quoted(nearest)));
}

void NqControlLoopCheck::checkEndEffector(const std::string& name, const NqEndEffector& endEffector,
                                          const NqTargetKind& kind, bool hasTarget) {
    const bool isOnLink =
        (kind.hasPlace() || kind.hasOrientation()) && !NqTargetType::of(endEffector).isOfAllMass;
    if (endEffector.linkIdentifier().empty() && isOnLink) {
        add(true, "end-effector " + quoted(name) + " has no link: its link identifier is empty");
    }
    if (kind.form().content != NqTargetForm::Values) { // lists of joints may be named otherwise
        checkLabel(name, endEffector.linkIdentifier());
    }
    for (const NqTargetKind::Tie& tie : kind.ties()) {
        if (tie.link != endEffector.linkIdentifier()) {
            checkLabel(name, tie.link);
        }
    }
    if (endEffector.relativeLinkData().relativeMode() != NqEndEffectorRelativeLinkData::relativeModeNone) {
        checkLabel(name, endEffector.relativeLinkData().relativeLinkID());
    }
    for (const NqTargetKind::Part& part : kind.parts()) {
        if (!(part.speedLimit > 0.0) || !(part.accelerationLimit > 0.0) || !(part.approach > 0.0)) {
            add(true,
                "end-effector " + quoted(name) + " has a speed or acceleration limit that isn't above 0");
        }
    }
    if (!hasTarget && kind.form().content != NqTargetForm::Nothing) {
        add(false, "end-effector " + quoted(name) + " has no target: it is held where it is");
    }
}

void NqControlLoopCheck::checkBaseColumns(const std::string& name, const NqEndEffector& endEffector) {
    if (NqTargetType::of(endEffector).content == NqTargetForm::Nothing) {
        return;
    }
    // Relative to a link that the base carries along nothing moves with the base; but relative rows of all
    // masses are right at the origin only.
    const bool isOfLink = endEffector.relativeLinkData().relativeMode() ==
                              NqEndEffectorRelativeLinkData::relativeModeInternal &&
                          !NqTargetType::of(endEffector).isOfAllMass;
    const unsigned joints = m_Manipulator.numberOfJoints();
    NqManipulatorActiveState state(m_Manipulator);
    state.setPositionState(NqPositionState(NqXmlRealVector(joints, 0.3)));
    NqReArray jacobian;
    endEffector.insertJacobianComponent(m_Manipulator, 0, endEffector.relativeLinkData(), false, state,
                                        jacobian);
    for (unsigned k = 0; k < NqEndEffector::m_theBaseDof; ++k) {
        NqGeneralMotion motion(k < 3 ? NqVector(k == 0, k == 1, k == 2) : NqVector(),
                               k < 3 ? NqVector() : NqVector(k == 3, k == 4, k == 5));
        NqVelocityState moving(joints);
        moving.setBaseMotion(motion);
        state.setVelocityState(moving);
        NqXmlRealVector velocity;
        endEffector.calculateVelocity(m_Manipulator, state, velocity, 0);
        if (isOfLink) {
            std::fill(velocity.begin(), velocity.end(), 0.0);
        }
        for (unsigned i = 0; i < std::min<std::size_t>(jacobian.rows(), velocity.size()); ++i) {
            if (!(std::abs(velocity[i] - jacobian[i][joints + k]) <= 1.0e-9)) {
                add(true, "end-effector " + quoted(name) +
                              " can't be used with a free base: its base columns aren't its motion");
                return;
            }
        }
    }
}

void NqControlLoopCheck::checkRows(unsigned rows, unsigned unknowns) {
    if (rows > unknowns) {
        add(true, "the end-effectors constrain " + std::to_string(rows) +
                      " coordinates, but joints and base have only " + std::to_string(unknowns));
    }
}
