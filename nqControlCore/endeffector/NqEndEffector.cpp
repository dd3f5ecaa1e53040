#include <nqControlCore/endeffector/NqEndEffector.h>

#include <nqControlCore/foundation/math/NqMath.h>
#include <nqControlCore/foundation/text/NqPrint.h>

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
        jacobian[i].assign(columns, 0.0);
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
        sparsity[i].assign(columns, false);
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
    const NqManipulatorLink* link = linkOrMessage(manipulator, relative.relativeLinkID(), message);
    if (!link) {
        return false;
    }
    const NqCoordinateSystemTransformation& frame = link->primaryFrameInSystem(state);
    const NqCoordinateSystemTransformation& placement = in;
    out = NqEndEffectorPlacement((isToRelative ? frame.inverse() : frame) * placement);
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
    return link.primaryFrameInSystem(state) * point;
}

const NqManipulatorLink* NqEndEffector::linkOrMessage(const NqIndividualManipulator& manipulator,
                                                      const std::string& label, const char* message) {
    const NqManipulatorLink* link = manipulator.linkByLabel(label);
    if (!link) {
        Nq::Print::instance().write(Nq::PrintFailure, message, label);
    }
    return link;
}

void NqEndEffector::clearBits(const NqIndividualManipulator& manipulator, unsigned row, bool fixedBase,
                              SparsityDescription& sparsity) const {
    const std::size_t width = jacobianWidth(manipulator, fixedBase);
    rightSizeSparsityDescriptionMatrix(row, static_cast<unsigned>(width), sparsity);
    const unsigned end = row + doc();
    for (unsigned i = row; i < end; ++i) {
        // Rows that right-sizing left as they were may be narrower.
        sparsity[i].resize(std::max(sparsity[i].size(), width));
    }
}

void NqEndEffector::insertChainBits(const NqManipulatorLink* link, unsigned row,
                                    SparsityDescription& sparsity) const {
    if (!link) {
        return;
    }
    const unsigned end = row + doc();
    link->forEachCarryingJoint([&](unsigned column) {
        for (unsigned i = row; i < end; ++i) {
            sparsity[i][column] = true;
        }
    });
}

void NqEndEffector::insertMotionBits(const NqIndividualManipulator& manipulator, unsigned row,
                                     const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                     const LabelMessages& messages, const unsigned* baseBits,
                                     SparsityDescription& sparsity) const {
    clearBits(manipulator, row, fixedBase, sparsity);
    insertChainBits(linkOrMessage(manipulator, linkIdentifier(), messages.badLabel), row, sparsity);
    insertChainBits(internalRelativeLink(manipulator, relativeLink, messages.badRelativeLabel), row,
                    sparsity);
    if (!hasBaseColumns(relativeLink, fixedBase)) {
        return;
    }
    for (unsigned i = 0; i < doc(); ++i) {
        for (unsigned c = 0; c < m_theBaseDof; ++c) {
            if ((baseBits[i] >> c & 1U) != 0) {
                sparsity[row + i][manipulator.numberOfJoints() + c] = true;
            }
        }
    }
}

NqGeneralMotion NqEndEffector::offsetVelocity(const NqManipulatorLink& link, const NqVector& offset,
                                              NqManipulatorActiveState& state) {
    const NqVector r = link.primaryFrameInSystem(state.activePositionState()).orientation() * offset;
    NqGeneralMotion motion = link.primaryFrameVelocity(state);
    return motion.transformBy(r);
}

NqGeneralMotion NqEndEffector::offsetAcceleration(const NqManipulatorLink& link,
                                                  const NqCoordinateSystemTransformation& offset,
                                                  NqManipulatorActiveState& state) {
    const NqCoordinateSystemTransformation inLink = link.primaryFrameOffset() * offset;
    const NqCoordinateSystemTransformation inSystem =
        link.linkFrameInSystem(state.activePositionState()) * inLink;
    const NqVector w = link.localVelocity(state).angular();
    const NqVector centripetal = w.cross(w.cross(inLink.translation()));

    NqGeneralMotion acceleration = inLink.inverse() * link.localAcceleration(state);
    acceleration.setLinear(acceleration.linear() + inLink.orientation().inverse() * centripetal);
    return inSystem.orientation() * acceleration;
}

double NqEndEffector::timeForDistance(double distance, double speedLimit) {
    return distance / NqMath::nonZeroPos(speedLimit);
}

void NqEndEffector::insertErrorWeights(unsigned row, NqReArray& weights, double firstWeight,
                                       double otherWeight) const {
    const bool isSquare = weights.size() != 0 && weights[0].size() > 1;
    const unsigned end = row + doc();
    if (weights.size() < end) {
        weights.resizeArray(end, isSquare ? end : 1);
    }
    for (unsigned i = row; i < end; ++i) {
        const std::size_t column = isSquare ? i : 0;
        if (weights[i].size() <= column) {
            weights[i].resize(column + 1);
        }
        weights[i][column] = i - row < 3 ? firstWeight : otherWeight;
    }
}

NqVector NqEndEffector::entries(const NqXmlRealVector& values, unsigned start) {
    NqVector result;
    for (unsigned i = 0; i < 3 && start + i < values.size(); ++i) {
        result[i] = values[start + i];
    }
    return result;
}

void NqEndEffector::insertPart(const NqVector& part, NqXmlRealVector& values, unsigned start, Tail tail) {
    const std::size_t end = start + 3;
    values.resize(tail == Tail::Kept ? std::max(end, values.size()) : end);
    for (unsigned i = 0; i < 3; ++i) {
        values[start + i] = part[i];
    }
}
