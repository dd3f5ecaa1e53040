#include "support/NqTesting.h"

namespace {

/// All that a state answers about a link, gathered so that two states can be compared; first what is asked
/// about the whole manipulator.
struct Answers {
    Answers(const NqManipulatorLink& link, NqManipulatorActiveState& state)
        : linearMomentum(manipulatorOf(link).linearMomentum(state)),
          angularMomentum(manipulatorOf(link).angularMomentum(state)),
          frame(link.primaryFrameInSystem(state.activePositionState())), velocity(link.localVelocity(state)),
          primaryVelocity(link.primaryFrameVelocity(state)), acceleration(link.localAcceleration(state)),
          composite(link.compositeMassProperties(state)),
          firstMoment(link.compositeFirstMoment(state.activePositionState())) {}
    bool operator==(const Answers&) const = default;

    static const NqIndividualManipulator& manipulatorOf(const NqManipulatorLink& link) {
        return link.parentLink() ? manipulatorOf(*link.parentLink())
                                 : dynamic_cast<const NqIndividualManipulator&>(link);
    }

    NqVector linearMomentum, angularMomentum;
    NqCoordinateSystemTransformation frame;
    NqGeneralMotion velocity, primaryVelocity, acceleration;
    NqRigidBodyMassProperties composite;
    NqVector firstMoment;
};

class ManipulatorState : public testing::Test {
protected:
    /// Of a state that was asked only once all was set.
    Answers fresh(const NqManipulatorLink& link) const {
        NqManipulatorActiveState state;
        state.setPositionState(m_Position);
        state.setVelocityState(m_Velocity);
        state.setAccelerationState(m_Acceleration);
        return {link, state};
    }

    std::mt19937_64 m_Random{5};
    NqIndividualManipulator m_Arm = nqTestManipulator("arm7");
    const NqManipulatorLink& m_Hand = *m_Arm.linkByLabel("hand");
    NqManipulatorActiveState m_State =
        nqRandomState({"", std::make_shared<NqIndividualManipulator>(m_Arm), "", "", "", true}, m_Random);
    NqPositionState m_Position = m_State.positionState();
    NqVelocityState m_Velocity = m_State.velocityState();
    NqAccelerationState m_Acceleration = m_State.accelerationState();
};

TEST_F(ManipulatorState, EveryChangeDropsWhatWasComputed) {
    NqManipulatorActiveState state(m_Arm);
    for (int round = 0; round < 2; ++round) {
        m_Position.setJointPosition(2, nqRandomVector(m_Random).x());
        m_Acceleration.setBaseMotion({nqRandomVector(m_Random), nqRandomVector(m_Random)});
        m_Velocity.setJointVelocity(0, nqRandomVector(m_Random).x());
        const auto ask = [&] { return Answers(m_Hand, state); };
        ask();
        state.setPositionState(m_Position);
        ask();
        state.setAccelerationState(m_Acceleration);
        ask();
        state.setVelocityState(m_Velocity);
        EXPECT_EQ(ask(), fresh(m_Hand));
        m_Position.setBaseFrame(nqRandomFrame(m_Random));
        state.activePositionState().setPositionState(m_Position);
        EXPECT_EQ(ask(), fresh(m_Hand));
    }
}

TEST_F(ManipulatorState, CopiedAndAssignedPartsBringTheirOwnResults) {
    // Both are asked as often, so that a mere count of changes would not tell their positions apart.
    NqManipulatorActiveState state(m_Arm), other(m_Arm);
    for (NqManipulatorActiveState* each : {&state, &other}) {
        each->setPositionState(each == &other ? m_Position : NqPositionState(7));
        each->setVelocityState(m_Velocity);
        each->setAccelerationState(m_Acceleration);
        Answers(m_Hand, *each);
    }
    NqManipulatorActiveState copy(other);
    EXPECT_EQ(Answers(m_Hand, copy), fresh(m_Hand));
    state.activePositionState() = other.activePositionState();
    EXPECT_EQ(Answers(m_Hand, state), fresh(m_Hand));
    other.setVelocityState(NqVelocityState(7));
    Answers(m_Hand, other);
    other.activeVelocityState() = state.activeVelocityState();
    EXPECT_EQ(Answers(m_Hand, other), fresh(m_Hand));
    state = NqManipulatorActiveState(m_Arm);
    EXPECT_NE(Answers(m_Hand, state), fresh(m_Hand));
}

TEST_F(ManipulatorState, AnswersAboutOneManipulatorAfterAnother) {
    const NqIndividualManipulator tree = nqTestManipulator("branched");
    NqIndividualManipulator growing = m_Arm;
    NqManipulatorActiveState state;
    state.setPositionState(m_Position);
    state.setVelocityState(m_Velocity);
    state.setAccelerationState(m_Acceleration);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Answers(m_Hand, state), fresh(m_Hand));
        EXPECT_EQ(Answers(*tree.linkByLabel("left_camera"), state), fresh(*tree.linkByLabel("left_camera")));
        const NqManipulatorLink* added = growing.addLink("hand", "tool" + std::to_string(round),
                                                         NqJointDescription(), nqRandomFrame(m_Random));
        EXPECT_EQ(Answers(*added, state), fresh(*added));
    }
}

TEST_F(ManipulatorState, MissingJointsCountAsZero) {
    NqPrintCapture prints;
    NqManipulatorActiveState made(m_Arm), open;
    NqPositionState full(7), shortened(3);
    full.setJointPosition(1, 0.5);
    shortened.setJointPosition(1, 0.5);
    for (NqManipulatorActiveState* state : {&made, &open}) {
        NqManipulatorActiveState expected(m_Arm);
        expected.setPositionState(full);
        prints.clear();
        state->setPositionState(shortened);
        state->setVelocityState(NqVelocityState(2));
        state->setAccelerationState(NqAccelerationState());
        EXPECT_EQ(Answers(m_Hand, *state), Answers(m_Hand, expected));
        EXPECT_EQ(state->positionState().jointPositions().size(), 7u);
        EXPECT_EQ(state->velocityState().jointVelocities().size(), 7u);
        ASSERT_EQ(prints.lines().size(), 3u);
        EXPECT_EQ(prints.lines()[0].first, 4u);
        EXPECT_TRUE(prints.contains("3 values for 7 joints"));
    }
    made.setPositionState(NqPositionState(9));
    EXPECT_EQ(made.positionState().jointPositions().size(), 7u);
    prints.clear();
    shortened.setJointPosition(3, 1.0);
    EXPECT_TRUE(prints.contains("NqPositionState::setJointPosition(): no joint 3 among 3.\n"));
}

} // namespace
