#include "support/NqNamedRobot.h"
#include "support/NqTesting.h"

#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlLoop/NqControlLoop.h>

#include <thread>

namespace {

constexpr unsigned kThreads = 4;

/// Runs `action(i)` on so many threads at once.
void onThreads(auto action) {
    std::vector<std::jthread> threads; // which join when they go
    for (unsigned i = 0; i < kThreads; ++i) {
        threads.emplace_back(action, i);
    }
}

/// Drives a loop for each type of end-effector, relative to another link or not, to a target that depends on
/// `run`. Gives all joint positions at their ends.
std::vector<std::vector<double>> drivenByAllTypes(unsigned run) {
    std::vector<std::vector<double>> ends;
    const NqIndividualManipulator& robot = nqNamedRobot();
    const std::vector<double> from(robot.numberOfJoints(), 0.2), to(robot.numberOfJoints(), 0.1 * run);
    NqManipulatorActiveState there(robot);
    there.setPositionState(NqPositionState(NqXmlRealVector(to)));
    for (const NqEndEffector& sample : nqNamedEndEffectors()) {
        const std::unique_ptr<NqEndEffector> endEffector(dynamic_cast<NqEndEffector*>(sample.clone()));
        NqEndEffectorRelativeLinkData relative = sample.relativeLinkData();
        relative.setRelativeMode(run % 2 == 0 ? NqEndEffectorRelativeLinkData::relativeModeNone
                                              : NqEndEffectorRelativeLinkData::relativeModeInternal);
        endEffector->setRelativeLinkData(relative);
        NqEndEffectorPlacement target;
        endEffector->calculatePlacement(robot, there, target);
        NqControlLoop loop(robot);
        loop.addEndEffector("it", *endEffector);
        loop.setPositions(from);
        loop.setTarget(0, target, true);
        for (unsigned step = 0; step < 20; ++step) {
            loop.step();
        }
        ends.push_back(loop.positions());
    }
    return ends;
}

TEST(NqSharedManipulatorTest, LoopsOfAllTypesDriveAsIfAlone) {
    NqPrintCapture capture;
    ASSERT_EQ(nqNamedRobot().numberOfJoints(), 12U);
    std::vector<std::vector<std::vector<double>>> together(kThreads);
    onThreads([&](unsigned i) { together[i] = drivenByAllTypes(i); });
    for (unsigned i = 0; i < kThreads; ++i) {
        EXPECT_EQ(together[i].size(), 23U);
        EXPECT_EQ(together[i], drivenByAllTypes(i));
    }
    EXPECT_NE(together[0], together[2]);
}

TEST(NqSharedManipulatorTest, MessagesFromThreadsStayWhole) {
    const NqIndividualManipulator base;
    NqPrintCapture capture;
    constexpr unsigned messages = 50;
    onThreads([&](unsigned i) {
        NqPointEndEffector nowhere;
        nowhere.setLinkIdentifier("link of thread " + std::to_string(i));
        NqManipulatorActiveState state(base);
        NqVector point;
        for (unsigned k = 0; k < messages; ++k) {
            nowhere.calculatePointPlacement(base, state, point);
        }
    });
    for (unsigned i = 0; i < kThreads; ++i) {
        const std::string line = "NqPointEndEffector::calculatePointPlacement(): bad label on point end "
                                 "effector: link of thread " +
                                 std::to_string(i) + ".\n";
        EXPECT_EQ(std::count(capture.lines().begin(), capture.lines().end(), std::pair(4u, line)), messages);
    }
    EXPECT_EQ(capture.lines().size(), kThreads * messages);
}

} // namespace
