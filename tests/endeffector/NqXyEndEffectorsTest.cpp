#include "endeffector/NqEndEffectorTest.h"

namespace {

/// The hand of a planar arm stretched out along x of the system, at (0.9, 0, 0.1) and turning at 2 rad/s, and
/// constraint axes whose x axis is y of the system, and y the negative x.
struct NqXyOnHand : NqEndEffectorTest {
    NqXyOnHand() : NqEndEffectorTest(nqTestModels()[0].manipulator) {
        x.setLinkIdentifier("hand");
        xy.setLinkIdentifier("hand");
        x.setXOrientation(NqOrientation::aboutZ(quarter));
        xy.setXyOrientation(NqOrientation::aboutZ(quarter));
        state.setVelocityState(NqVelocityState(Reals{2.0, 0.0}));
    }

    static constexpr double quarter = 0.5 * std::numbers::pi;
    NqXEndEffector x;
    NqXyEndEffector xy;
    const Placement target{NqVector(0.5, 0.3, 7.0)};
};

TEST_F(NqXyOnHand, CoordinatesErrorAndCommandAreInConstraintAxes) {
    expectNear(error(xy, target), {0.3, 0.4}, 1e-15);
    xy.setFilteringActive(false);
    expectNear(filtered(xy, target, {}, {}, 0.1), {3.0, 4.0}, 1e-14);

    // Of one coordinate the other takes up none of the limit, nor does a second entry of a velocity.
    x.setMotionThreshold(0.25);
    x.setAccelerationThreshold(1e3);
    expectNear(filtered(x, target, {0.0, 5.0}, {0.0, 5.0}, 0.1), {0.25}, 1e-15);

    x.setEditableValue(8, "0.5");
    x.setEditableValues();
    EXPECT_EQ(x.pointMotionFilter().decelerationThreshold(), 0.5) << "one value is both limits";
}

TEST_F(NqXyOnHand, TheRelativeLinkTurnsTheAxesAndOnlyTheRowsMoveWithIt) {
    setJoints({quarter, 0.0}); // out along y of the system
    xy.setRelativeLinkData(internalTo("upper"));
    NqPlanarVector at;
    xy.calculate2DPointPlacement(manipulator, state, at);
    EXPECT_NEAR((at - NqPlanarVector(0.0, -0.9)).mag(), 0.0, 1e-15);
    // Of the point in the system; of a velocity the tail stays, of an acceleration it is cut.
    expectNear(velocity(xy, Reals(4, 9.0), 1), {9.0, 1.8, 0.0, 9.0}, 1e-15);
    expectNear(acceleration(xy, Reals(4, 9.0), 1), {9.0, 0.0, 3.6}, 1e-15);
    EXPECT_NEAR(rows(xy, internalTo("upper"))[0][1], 0.4, 1e-15);
}

TEST_F(NqXyOnHand, TheDifferenceAlongOneAxisHasASign) {
    // Measured with the axes turned the other way: x is the negative y of the first placement.
    EXPECT_NEAR(x.difference({}, target), -0.3, 1e-15);
    EXPECT_NEAR(xy.difference({}, target), std::hypot(0.3, 0.5), 1e-15);
    x.setMotionThreshold(0.5);
    x.setSpeedFactor(0.5);
    EXPECT_NEAR(x.minimumTime({}, target), -1.2, 1e-14);
}

} // namespace
