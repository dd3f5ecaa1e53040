#include <nqControlCore/endeffector/special/NqSpatialMomentumEndEffector.h>

void NqSpatialMomentumEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                              NqReArray& jacobian) const {
    const NqIndividualManipulator& manipulator = request.manipulator;
    NqManipulatorActivePositionState& p = state.activePositionState();
    m_MatrixDTool->setManipulator(manipulator);
    m_MatrixDTool->momentumMatrix(m_MatrixDTool->compositeMoments(state),
                                  manipulator.baseFrameInSystem(p).orientation(), *m_MomentumMatrix);
    const auto setColumn = [&](unsigned column, const auto& momentum) {
        for (unsigned i = 0; i < doc(); ++i) {
            jacobian[request.row + i][column] = momentum[i];
        }
    };
    for (unsigned joint = 0; joint < manipulator.numberOfJoints(); ++joint) {
        setColumn(joint, (*m_MomentumMatrix)[joint]);
    }
    if (request.fixedBase) {
        return;
    }
    const double mass = manipulator.compositeMass();
    const NqVector& first = manipulator.compositeFirstMoment(p);
    const NqSecondMoment& second = manipulator.compositeSecondMoment(p);
    for (unsigned axis = 0; axis < 3; ++axis) {
        NqVector unit;
        unit[axis] = 1.0;
        setColumn(request.baseColumn() + axis, NqGeneralMotion(mass * unit, first.cross(unit)));
        setColumn(request.baseColumn() + axis + 3, NqGeneralMotion(unit.cross(first), second * unit));
    }
}

void NqSpatialMomentumEndEffector::insertBits(const NqRowRequest& request,
                                              SparsityDescription& sparsity) const {
    NqSparsityBits::setColumns(0, request.baseColumn(), request.row, doc(), sparsity);
    for (unsigned i = 0; i < doc() && !request.fixedBase; ++i) {
        for (unsigned c = 0; c < NqRowRequest::theBaseDof; ++c) {
            sparsity[request.row + i][request.baseColumn() + c] = NqSparsityBits::inInertia(i, c);
        }
    }
}

void NqSpatialMomentumEndEffector::calculatePlacement(const NqIndividualManipulator&,
                                                      NqManipulatorActiveState&,
                                                      NqEndEffectorPlacement& placement) const {
    placement.setCoordSysXForm(NqCoordinateSystemTransformation());
}

void NqSpatialMomentumEndEffector::calculateVelocity(const NqIndividualManipulator&,
                                                     NqManipulatorActiveState&, NqXmlRealVector& velocity,
                                                     unsigned start) const {
    velocity.resize(start + doc());
    for (unsigned i = 0; i < doc(); ++i) {
        velocity[start + i] = i < 3 ? desiredLinearMomentum()[i] : desiredAngularMomentum()[i - 3];
    }
}

void NqSpatialMomentumEndEffector::insertCommand(const NqTargetRequest& request,
                                                 NqXmlRealVector& filtered) const {
    calculateVelocity(request.manipulator, request.state, filtered, 0);
}

const NqEditableValueTable<NqSpatialMomentumEndEffector>& NqSpatialMomentumEndEffector::editableTable() {
    using E = NqSpatialMomentumEndEffector;
    using Table = NqEditableValueTable<E>;
    constexpr auto linear = [](auto& e) -> auto& {
        return e.m_DesiredLinearMomentum.value();
    };
    constexpr auto angular = [](auto& e) -> auto& {
        return e.m_DesiredAngularMomentum.value();
    };
    static const Table table = {
        Table::vector({{"Linear: X", "The x-coordinate of the desired linear momentum of the system."},
                       {"Linear: Y", "The y-coordinate of the desired linear momentum of the system."},
                       {"Linear: Z", "The z-coordinate of the desired linear momentum of the system."}},
                      linear),
        Table::vector({{"Angular: X", "The x-coordinate of the desired angular momentum of the system."},
                       {"Angular: Y", "The y-coordinate of the desired angular momentum of the system."},
                       {"Angular: Z", "The z-coordinate of the desired angular momentum of the system."}},
                      angular),
    };
    return table;
}
