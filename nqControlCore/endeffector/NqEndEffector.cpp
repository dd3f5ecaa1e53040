#include <nqControlCore/endeffector/NqEndEffector.h>

#include <nqControlCore/endeffector/NqLinkLookup.h>
#include <nqControlCore/endeffector/NqLinkMotion.h>
#include <nqControlCore/endeffector/NqRowRequest.h>
#include <nqControlCore/endeffector/NqSparsityBits.h>
#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/matrix/NqRowOperations.h>

#include <algorithm>

bool NqEndEffector::changeLinkLabel(const std::string& oldLabel, const std::string& newLabel) {
    if (m_LinkIdentifier.value() != oldLabel) {
        return false;
    }
    m_LinkIdentifier = newLabel;
    return true;
}

void NqEndEffector::rightSizeJacobian(unsigned row, unsigned columns, NqReArray& jacobian) const {
    const unsigned end = row + doc();
    if (jacobian.size() < end) {
        const NqReArray previous = jacobian;
        jacobian.setToZeros(end, columns);
        for (unsigned i = 0; i < std::min<std::size_t>(previous.size(), row); ++i) {
            jacobian.assign(i, previous[i]);
        }
        return;
    }
    for (unsigned i = row; i < end; ++i) {
        jacobian[i].resize(columns);
        NqRowOperations::setToZeros(jacobian[i].data(), columns);
    }
}

void NqEndEffector::rightSizeSparsityDescriptionMatrix(unsigned row, unsigned columns,
                                                       SparsityDescription& sparsity) const {
    const std::size_t end = row + doc();
    const std::size_t previous = sparsity.size();
    if (previous < end) {
        sparsity.resize(end);
        for (std::size_t i = previous; i < end; ++i) {
            sparsity[i].assign(columns, false);
        }
        return;
    }
    for (std::size_t i = row; i < end; ++i) {
        if (sparsity[i].size() == columns) {
            std::fill(sparsity[i].begin(), sparsity[i].end(), false);
        } else {
            sparsity[i].assign(columns, false);
        }
    }
}

void NqEndEffector::calculatePlacementInRelative(const NqIndividualManipulator& manipulator,
                                                 NqManipulatorActiveState& state,
                                                 NqEndEffectorPlacement& placement) const {
    convertPlacementFromSystemToRelative(manipulator, presentPlacement(manipulator, state),
                                         state.activePositionState(), placement);
}

void NqEndEffector::setEditableValues() {
    // A copy, since parsing may print the cache anew.
    const NqLabelVector values = *m_EditableValues;
    setEditableValues(values);
}

void NqEndEffector::setEditableValue(const unsigned& index, const std::string& value) {
    NqLabelVector& cache = *m_EditableValues;
    if (cache.size() == 0) {
        editableValues();
    }
    if (index < cache.size()) {
        cache[index] = value;
    }
}

bool NqEndEffector::convertPlacement(const NqIndividualManipulator& manipulator,
                                     const NqEndEffectorPlacement& in,
                                     NqManipulatorActivePositionState& state, bool isToRelative,
                                     const char* message, NqEndEffectorPlacement& out) const {
    const NqEndEffectorRelativeLinkData& relative = relativeLinkData();
    if (relative.relativeMode() == NqEndEffectorRelativeLinkData::relativeModeNone) {
        out = in;
        return true;
    }
    const auto* link = NqLinkLookup::linkOrMessage(manipulator, relative.relativeLinkID(), message);
    if (!link) {
        return false;
    }
    const NqCoordinateSystemTransformation& frame = link->primaryFrameInSystem(state);
    const NqCoordinateSystemTransformation& placement = in;
    out.setCoordSysXForm((isToRelative ? frame.inverse() : frame) * placement);
    out.dataVector().clear(); // numbers belong to no frame
    return true;
}

bool NqEndEffector::convertPlacementFromSystemToRelative(const NqIndividualManipulator& manipulator,
                                                         const NqEndEffectorPlacement& in,
                                                         NqManipulatorActivePositionState& state,
                                                         NqEndEffectorPlacement& out) const {
    return convertPlacement(manipulator, in, state, true,
                            "NqEndEffector::convertPlacementFromSystemToRelative() bad link ID (%d)\n", out);
}

bool NqEndEffector::convertPlacementFromRelativeToSystem(const NqIndividualManipulator& manipulator,
                                                         const NqEndEffectorPlacement& in,
                                                         NqManipulatorActivePositionState& state,
                                                         NqEndEffectorPlacement& out) const {
    return convertPlacement(manipulator, in, state, false,
                            "NqEndEffector::convertPlacementFromRelativeToSystem() bad link ID (%d)\n", out);
}

void NqEndEffector::calculateEndEffectorError(const NqIndividualManipulator&, const NqEndEffectorPlacement&,
                                              NqManipulatorActiveState&, NqXmlRealVector& error) const {
    error.assign(doc(), 0.0);
}

double NqEndEffector::speedFactor() const {
    return 1.0;
}

void NqEndEffector::setSpeedFactor(double) {}

bool NqEndEffector::filteringActive() const {
    return true;
}

void NqEndEffector::setFilteringActive(bool) {}

NqVector NqEndEffector::pointMotion(const NqManipulatorLink& jointLink, const NqManipulatorLink& pointLink,
                                    const NqVector& point, NqManipulatorActivePositionState& state) const {
    return jointLink.unitRateMotion(pointPosition(pointLink, point, state), state).linear();
}

void NqEndEffector::getFrameMotion(const NqManipulatorLink& jointLink, const NqManipulatorLink& frameLink,
                                   const NqCoordinateSystemTransformation& frame,
                                   NqManipulatorActivePositionState& state, NqGeneralMotion& motion) const {
    motion = jointLink.unitRateMotion(pointPosition(frameLink, frame.translation(), state), state);
}

NqVector NqEndEffector::pointPosition(const NqManipulatorLink& link, const NqVector& point,
                                      NqManipulatorActivePositionState& state) const {
    return NqLinkMotion::position(link, point, state);
}

void NqEndEffector::calculateFilteredVelocityAndError(
    const NqIndividualManipulator& manipulator, const NqEndEffectorPlacement& desiredPlacement,
    const NqXmlRealVector& desiredVelocity, const NqXmlRealVector& previousVelocity, double timeStep,
    NqManipulatorActiveState& state, NqXmlRealVector& filtered, NqXmlRealVector& error) const {
    filterEndEffectorVelocity(manipulator, desiredPlacement, desiredVelocity, previousVelocity, timeStep,
                              state, filtered);
    calculateEndEffectorError(manipulator, desiredPlacement, state, error);
}

const NqManipulatorLink* NqEndEffector::ownLink(const NqIndividualManipulator& manipulator) const {
    const std::string& label = linkIdentifier();
    const NqManipulatorLink* link = manipulator.link(*m_LinkNumber);
    if (!link || label.empty() || link->linkLabel() != label) {
        link = manipulator.linkByLabel(label);
        *m_LinkNumber = link ? link->number() : 0;
    }
    return link;
}

const NqManipulatorLink* NqEndEffector::linkOrMessage(const NqIndividualManipulator& manipulator,
                                                      const char* message) const {
    const NqManipulatorLink* found = ownLink(manipulator);
    return found ? found : NqLinkLookup::linkOrMessage(manipulator, linkIdentifier(), message);
}

void NqEndEffector::rightSizeSparsity(const NqRowRequest& request, SparsityDescription& sparsity) const {
    rightSizeSparsityDescriptionMatrix(request.row, request.width(), sparsity);
    NqSparsityBits::widen(request.row, doc(), request.width(), sparsity);
}
