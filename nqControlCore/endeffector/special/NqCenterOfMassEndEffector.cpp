#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>

#include <nqControlCore/endeffector/NqVelocityEntries.h>

void NqCenterOfMassEndEffector::insertRows(const NqRowRequest& request, NqManipulatorActiveState& state,
                                           NqReArray& jacobian) const {
    setColumns(request, state,
               "NqCenterOfMassEndEffector::insertJacobianComponent(): bad index on relative link: %d.\n",
               jacobian, [](const NqGeneralMotion& motion) {
                   return std::array{motion[0], motion[1], motion[2]};
               });
}

void NqCenterOfMassEndEffector::insertBits(const NqRowRequest& request, SparsityDescription& sparsity) const {
    NqSparsityBits::setColumns(0, request.baseColumn(), request.row, doc(), sparsity);
    for (unsigned i = 0; i < doc() && !request.fixedBase; ++i) {
        for (unsigned c = 0; c < NqRowRequest::theBaseDof; ++c) {
            if (NqSparsityBits::inInertia(i, c)) {
                sparsity[request.row + i][request.baseColumn() + c] = true;
            }
        }
    }
}

void NqCenterOfMassEndEffector::calculateVelocity(const NqIndividualManipulator& manipulator,
                                                  NqManipulatorActiveState& state, NqXmlRealVector& velocity,
                                                  unsigned start) const {
    const NqVector v = centerOfMassVelocity(manipulator, state);
    NqVelocityEntries::put(std::array{v.x(), v.y(), v.z()}, start, NqVelocityEntries::Tail::Kept, velocity);
}

const NqEditableValueTable<NqCenterOfMassEndEffector>& NqCenterOfMassEndEffector::editableTable() {
    using E = NqCenterOfMassEndEffector;
    using Table = NqEditableValueTable<E>;
    static const Table table = {
        filterRows("The velocity profile type. Current suppoted values are: trapezoidal and "
                   "proportional."),
        Table::hardConstraint(),
    };
    return table;
}
