#include <nqControlCore/endeffector/special/NqLookAtEndEffector.h>

void NqLookAtEndEffector::calculateAcceleration(const NqIndividualManipulator&, NqManipulatorActiveState&,
                                                NqXmlRealVector& acceleration, unsigned start) const {
    NqVelocityEntries::putZeros(start, doc(), acceleration);
}

void NqLookAtEndEffector::insertCommand(const NqTargetRequest& request, NqXmlRealVector& filtered) const {
    NqGeneralMotion out;
    filterFrameEndEffectorVelocity(request.manipulator, request.desiredPlacement.coordSysXForm(), {}, {},
                                   request.timeStep, request.state, out);
    const NqEndEffectorPlacement& present = presentPlacement(request.manipulator, request.state);
    const NqVector across = present.coordSysXForm().orientation().inverse() * out.linear();
    NqVelocityEntries::put(std::array{across.y(), across.z()}, 0, NqVelocityEntries::Tail::Cut, filtered);
}

double NqLookAtEndEffector::difference(const NqEndEffectorPlacement& a,
                                       const NqEndEffectorPlacement& b) const {
    const NqVector sight = a.coordSysXForm().orientation().xAxis();
    const NqVector apex = a.coordSysXForm().translation() - focusDistance() * sight;
    const NqVector way = (b.coordSysXForm().translation() - apex).unitVector();
    return NqMath::acos(sight.dot(way)) * m_AngularScale;
}

void NqLookAtEndEffector::filterFrameEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                                         const NqCoordinateSystemTransformation& desiredFrame,
                                                         const NqGeneralMotion& desiredVelocity,
                                                         const NqGeneralMotion& previousVelocity,
                                                         double timeStep, NqManipulatorActiveState& state,
                                                         NqGeneralMotion& filtered) const {
    const NqCoordinateSystemTransformation& actual = presentPlacement(manipulator, state);
    NqVector way = actual.orientation().inverse() * (desiredFrame.translation() - actual.translation());
    way.setX(0.0);
    const NqEndEffectorPlacement goal({actual * way, desiredFrame.orientation()});
    NqFrameBasedEndEffector::filterFrameEndEffectorVelocity(manipulator, goal, desiredVelocity,
                                                            previousVelocity, timeStep, state, filtered);
}

NqCoordinateSystemTransformation NqLookAtEndEffector::motionFrame() const {
    NqCoordinateSystemTransformation frame = frameOffset();
    frame.outboardTransformBy({focusDistance(), 0.0, 0.0});
    return frame;
}

const NqEditableValueTable<NqLookAtEndEffector>& NqLookAtEndEffector::editableTable() {
    using E = NqLookAtEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        Table::inherited(NqFrameBasedEndEffector::editableTable()),
        Table::number("focal_length", "", &E::focusDistance, &E::setFocusDistance),
    };
    return table;
}
