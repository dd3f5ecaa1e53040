#include "endeffector/NqEndEffectorSamples.h"
#include "support/NqAllocationCount.h"

#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/expression/NqExpressionBaseBinary.h>
#include <nqControlCore/expression/NqExpressionBaseUnary.h>
#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/expression/NqExpressionIdentityMatrix.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>
#include <nqControlLoop/NqControlLoop.h>

#include <cstdlib>
#include <iterator>

namespace {

using RelativeData = NqEndEffectorRelativeLinkData;

std::size_t allocationsOf(auto action) {
    const std::size_t before = nqAllocations();
    action();
    return nqAllocations() - before;
}

/// Two end-effectors of a type on a model, and all that a control loop asks of them and of the solver.
class ControlLoop {
public:
    ControlLoop(const NqTestModel& model, const NqEndEffectorKind& kind, RelativeData::RelativeMode mode)
        : m_Manipulator(*model.manipulator), m_FixedBase(!model.movesBase), m_State(m_Manipulator) {
        std::mt19937_64 random(7);
        std::generate_n(std::back_inserter(m_Poses), 10, [&] { return nqRandomState(model, random); });
        NqTestModel second = model;
        second.link = model.secondLink;
        RelativeData relative;
        relative.setRelativeMode(mode);
        relative.setRelativeLinkID(model.relativeLink);
        m_EndEffectors.push_back(kind.make(model));
        m_EndEffectors.push_back(kind.make(second));
        for (const auto& endEffector : m_EndEffectors) {
            endEffector->setRelativeLinkData(relative);
            endEffector->setExternalOffsetPointer(&m_Offset);
            endEffector->setUseExternalOffset(true);
            if (auto* sensor = dynamic_cast<NqAccelerometerEndEffector*>(endEffector.get())) {
                sensor->setIsOn(endEffector == m_EndEffectors.back());
            }
        }
        m_Columns = m_Manipulator.numberOfJoints() + (m_FixedBase ? 0 : NqEndEffector::m_theBaseDof);
        m_Target.dataVector().assign(m_Manipulator.numberOfJoints(), 0.3);
        m_Gradient.assign(m_Columns, 0.1);
        m_Metric.setToIdentity(m_Columns, m_Columns);
        m_DiagonalMetric.setToValue(m_Columns, 1, 2.0);
        m_Sparse.setUseSparseNullSpace(true);
    }

    void step() {
        m_Time += 0.01;
        m_Target.dataVector()[0] = m_Time; // another target in every step
        const NqManipulatorActiveState& pose = m_Poses[m_Step++ % m_Poses.size()];
        m_State.setPositionState(pose.positionState());
        m_State.setVelocityState(pose.velocityState());
        m_State.setAccelerationState(pose.accelerationState());
        unsigned rows = 0;
        for (const auto& endEffector : m_EndEffectors) {
            ask(*endEffector, rows);
            rows += endEffector->doc();
        }
        if (rows <= m_Columns) {
            solve();
        }
        askMasses();
    }

    bool isSolved() const { return m_IsSolved; }

private:
    void ask(const NqEndEffector& e, unsigned row) {
        e.insertJacobianComponent(m_Manipulator, row, e.relativeLinkData(), m_FixedBase, m_State, m_Jacobian);
        e.insertSparsityComponent(m_Manipulator, row, e.relativeLinkData(), m_FixedBase, m_Sparsity);
        e.insertErrorWeightComponent(row, m_Weights);
        e.calculatePlacement(m_Manipulator, m_State, m_Placement);
        e.calculatePlacementInRelative(m_Manipulator, m_State, m_RelativePlacement);
        e.convertPlacementFromRelativeToSystem(m_Manipulator, m_RelativePlacement,
                                               m_State.activePositionState(), m_Placement);
        e.calculateVelocity(m_Manipulator, m_State, m_Velocities, row);
        e.calculateAcceleration(m_Manipulator, m_State, m_Accelerations, row);
        e.calculateEndEffectorError(m_Manipulator, m_Target, m_State, m_Error);
        m_Desired.assign(e.doc(), 0.2);
        e.filterEndEffectorVelocity(m_Desired, m_Error, 0.001, m_Filtered);
        e.filterEndEffectorVelocity(m_Manipulator, m_Target, m_Desired, m_Error, 0.001, m_State, m_Filtered);
        m_Time += 1e-9 * e.minimumTime(m_Placement, m_Target) * e.difference(m_Placement, m_Target);
    }

    void askMasses() {
        m_Gravity.setManipulator(m_Manipulator);
        m_Gravity.jointTorques(m_State, m_Torques);
        m_Gravity.jointTorqueGradient(0, m_State).fill(m_TorqueGradient);
        m_Momenta.setManipulator(m_Manipulator);
        m_Momenta.momentumMatrix(m_Momenta.compositeMoments(m_State), NqOrientation(), m_MomentumMatrix);
        m_Time +=
            1e-9 * (m_Manipulator.linearMomentum(m_State).x() + m_Manipulator.angularMomentum(m_State).x() +
                    m_Manipulator.centerOfMass(m_State.activePositionState()).x() +
                    m_Manipulator.compositeMassProperties(m_State).mass());
    }

    void solve() {
        m_Sparse.setSparsity(m_Sparsity);
        m_Dense.setJacobian(m_Jacobian);
        m_Sparse.setJacobian(m_Jacobian);
        const auto calculate = [&](NqJacobianState* state, const NqReArray& metric) {
            return m_Tool.calcJointRates(state, m_Jacobian, metric, m_Gradient, 0.5, m_Velocities.values(),
                                         m_Columns, m_Rates, m_NullSpaceRates, m_Determinant);
        };
        m_IsSolved = calculate(nullptr, m_Metric) && calculate(&m_Dense, m_DiagonalMetric) &&
                     calculate(&m_Sparse, m_Metric) &&
                     m_Tool.calcJointRatesAB(&m_Sparse, m_Metric, m_Gradient, 0.5, m_Velocities.values(),
                                             m_Columns, m_Rates, m_NullSpaceRates, m_Determinant);
    }

    const NqIndividualManipulator& m_Manipulator;
    bool m_FixedBase;
    std::vector<std::unique_ptr<NqEndEffector>> m_EndEffectors;
    NqCoordinateSystemTransformation m_Offset{NqVector(0.1, 0.2, 0.3)};
    NqEndEffectorPlacement m_Target{NqVector(0.3, -0.2, 0.6)};
    unsigned m_Columns = 0;
    std::vector<double> m_Gradient;
    NqReArray m_Metric, m_DiagonalMetric;

    double m_Time = 0.0;
    NqManipulatorActiveState m_State;
    std::vector<NqManipulatorActiveState> m_Poses;
    std::size_t m_Step = 0;
    NqReArray m_Jacobian, m_Weights;
    NqEndEffector::SparsityDescription m_Sparsity;
    NqEndEffectorPlacement m_Placement, m_RelativePlacement;
    NqXmlRealVector m_Velocities, m_Accelerations, m_Error, m_Desired, m_Filtered;
    NqJacobianState m_Dense, m_Sparse;
    NqCoreVelocityControlTool m_Tool;
    NqGravitationalTorqueTool m_Gravity;
    NqMatrixDTool m_Momenta;
    NqReArray m_TorqueGradient, m_MomentumMatrix;
    std::vector<double> m_Rates, m_NullSpaceRates, m_Torques;
    double m_Determinant = 0.0;
    bool m_IsSolved = false;
};

TEST(NqAllocationTest, EveryWayToMemoryIsSeen) {
    void* volatile block = nullptr; // what is volatile is not optimised away
    for (void* (*const allocate)() : std::initializer_list<void* (*)()>{
             [] { return std::malloc(8); }, [] { return std::realloc(nullptr, 4096); },
             [] { return std::calloc(2, 8); }, [] { return std::aligned_alloc(64, 64); },
             [] {
                 void* aligned = nullptr;
                 return posix_memalign(&aligned, 64, 64) == 0 ? aligned : nullptr;
             }}) {
        EXPECT_EQ(allocationsOf([&] { block = allocate(); }), 1u);
        std::free(block);
    }
    EXPECT_EQ(allocationsOf([&] { block = ::operator new(8); }), 1u);
    ::operator delete(block);
}

TEST(NqAllocationTest, ElementsOfExpressionsAllocateNothingOnceWarm) {
    NqExpressionIdentityMatrix operand;
    operand.setSize(5);
    NqExpressionContainer expression;
    for (const auto& [token, create] : expression.creatorMap()) {
        expression.setAndDeleteTopElementPointer(dynamic_cast<NqExpressionElement*>(create()));
        if (auto* unary = dynamic_cast<NqExpressionBaseUnary*>(expression.topElement())) {
            unary->setChild(operand);
        } else if (auto* binary = dynamic_cast<NqExpressionBaseBinary*>(expression.topElement())) {
            binary->setLeft(operand);
            binary->setRight(operand);
        }
        EXPECT_GT(allocationsOf([&] { expression.value(); }), 0u) << token.localName();
        EXPECT_EQ(allocationsOf([&] { expression.value(); }), 0u) << token.localName();
        EXPECT_GE(expression.value().size(), 1u) << token.localName();
    }
}

class ControlStep : public testing::TestWithParam<std::size_t> {};

TEST_P(ControlStep, AllocatesNothingOnceWarm) {
    const NqTestModel& model = nqTestModels()[GetParam()];
    bool isSolved = false;
    for (const NqEndEffectorKind& kind : nqEndEffectorKinds()) {
        for (const auto mode : {RelativeData::relativeModeNone, RelativeData::relativeModeInternal,
                                RelativeData::relativeModeExternal}) {
            ControlLoop loop(model, kind, mode);
            loop.step();
            loop.step();
            const std::size_t allocations = allocationsOf([&] {
                for (unsigned i = 0; i < 100; ++i) {
                    loop.step();
                }
            });
            EXPECT_EQ(allocations, 0u) << kind.name << " in relative mode " << mode;
            isSolved = isSolved || loop.isSolved();
        }
    }
    EXPECT_TRUE(isSolved || model.manipulator->numberOfJoints() < 6);
}

INSTANTIATE_TEST_SUITE_P(Models, ControlStep, testing::Range<std::size_t>(0, nqTestModels().size()),
                         [](const auto& model) { return nqTestModels()[model.param].name; });

/// With joints at limits, off the path, near singularities and at rest out of reach: all that a loop can
/// meet.
TEST(NqControlLoop, AllocatesNothingAfterTheFirstStep) {
    const NqIndividualManipulator robot = nqTestManipulator("arm7");
    NqFrameEndEffector hand;
    hand.setLinkIdentifier("hand");
    NqPointEndEffector elbow;
    elbow.setLinkIdentifier("link4");
    elbow.setIsHardConstraint(false);
    NqControlLoop loop(robot);
    loop.addEndEffector("hand", hand);
    loop.addEndEffector("elbow", elbow);
    loop.setPositions({0.0, 0.3, 0.2, -1.8, 0.2, 2.0, 0.8});
    ASSERT_TRUE(loop.step());
    bool hasSlowed = false, isStuck = false;
    for (const NqVector& place :
         {NqVector(0.5, 0.3, 0.6), NqVector(-0.9, -0.5, 0.2), NqVector(2.0, 0.0, 1.0)}) {
        const NqControlTarget target = NqControlTarget::place(place);
        const std::size_t allocations = allocationsOf([&] {
            loop.setTarget(0, target);
            for (unsigned i = 0; i < 6000; ++i) {
                loop.step();
                hasSlowed = hasSlowed || loop.slowing() < 0.9;
                isStuck = isStuck || loop.status().isStuck();
            }
        });
        EXPECT_EQ(allocations, 0u);
    }
    EXPECT_TRUE(hasSlowed && isStuck);
}

} // namespace
