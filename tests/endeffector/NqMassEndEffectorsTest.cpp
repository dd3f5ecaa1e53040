#include "endeffector/NqEndEffectorTest.h"

namespace {

NqRigidBodyMassProperties pointMass(double mass, const NqVector& place) {
    return {mass, mass * place, NqSecondMoment::ofPointMass(mass, place)};
}

/// A base of 3 kg, on it 2 kg that slide along y, and 1 kg on an arm of 2 m that turns about z.
std::shared_ptr<NqIndividualManipulator> slidingMass() {
    auto arm = std::make_shared<NqIndividualManipulator>("sliding mass", "base", pointMass(3.0, {}));
    arm->addLink("base", "slide", NqJointDescription(NqJointDescription::Prismatic), NqVector(),
                 {0.0, 1.0, 0.0}, pointMass(2.0, {0.5, 0.0, 0.0}));
    arm->addLink("slide", "arm", NqJointDescription(NqJointDescription::Revolute), NqVector(1.0, 0.0, 0.0),
                 {0.0, 0.0, 1.0}, pointMass(1.0, {2.0, 0.0, 0.0}));
    return arm;
}

struct NqSlidingMass : NqEndEffectorTest {
    NqSlidingMass() : NqEndEffectorTest(slidingMass()) {
        moveBase({});
        state.setVelocityState(NqVelocityState(Reals{2.0, 3.0}));
    }

    void moveBase(const Pose& base) {
        NqPositionState positions(Reals{0.4, 0.0});
        positions.setBaseFrame(base);
        state.setPositionState(positions);
    }
    NqVector column(const NqEndEffector& e, unsigned index, const Relative& relative = {}) {
        const NqReArray j = rows(e, relative, false);
        return {j[0][index], j[1][index], j.rows() > 2 ? j[2][index] : 0.0};
    }
    NqVector projected() {
        NqPlanarVector point;
        plane.calculate2DPointPlacement(manipulator, state, point);
        return {point.x(), point.y(), 0.0};
    }

    NqCenterOfMassEndEffector center;
    NqProjectedCenterOfMassEndEffector plane;
};

TEST_F(NqSlidingMass, ColumnsOfSlidingJointsLeaveOutTheMass) {
    expectNear(placement(center).coordSysXForm().translation(), {4.0 / 6.0, 0.2, 0.0});
    expectNear(column(center, 0), {0.0, 1.0 / 6.0, 0.0});
    expectNear(column(center, 1), {0.0, 2.0 / 6.0, 0.0});
    // The velocity is the true one, and only lengthens its list; of an acceleration nothing is written.
    const double speed = (3.0 * 2.0 + 2.0 * 3.0) / 6.0;
    expectNear(velocity(center, Reals(6, 7.0), 1), {7.0, 0.0, speed, 0.0, 7.0, 7.0}, 1e-14);
    EXPECT_EQ(acceleration(center, Reals(2, 7.0)), Reals(2, 7.0));
}

TEST_F(NqSlidingMass, RelativePartTakesTheCenterOfMassAsTheBaseFrameHasIt) {
    moveBase({NqVector(10.0, 0.0, 0.0), NqOrientation::aboutZ(M_PI / 2.0)});
    const Relative relative = internalTo("arm");
    // The arm's joint is at (9.6, 1), the centre of mass at (9.8, 2/3), in the base frame at (2/3, 0.2).
    expectNear(column(center, 1, relative), {-1.0 / 3.0 - 0.8, 9.6 - 2.0 / 3.0, 0.0}, 1e-13);
    for (unsigned c = 2; c < 8; ++c) {
        expectNear(column(center, c, relative), NqVector());
    }
    EXPECT_EQ(bits(center, relative, false)[1], std::vector<bool>({1, 1, 0, 1, 0, 1, 0, 1}))
        << "set though the columns are empty";
    EXPECT_EQ(bits(plane, relative, false)[1], std::vector<bool>({1, 1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(NqSlidingMass, ProjectionRunsAlongTheVector) {
    expectNear(projected(), {4.0 / 6.0, 0.2, 0.0});
    plane.setSystemVector({0.6, 0.0, 0.8});
    expectNear(projected(), {4.0 / 6.0, 0.2, 0.0}); // no effect unless it is asked for
    plane.setProjectAlongSystemVector(true);
    expectNear(projected(), {0.8 * 4.0 / 6.0, 0.2, 0.0});
    moveBase(NqVector(0.6, 0.0, 0.8));
    expectNear(projected(), {0.8 * 4.0 / 6.0, 0.2, 0.0}); // moved along the vector

    moveBase({});
    plane.setSystemVector({0.0, 0.0, -2.0});
    expectNear(projected(), {4.0 / 6.0, 0.2, 0.0}); // the normal is merely reversed
    plane.setSystemVector({3.0, 0.0, 0.0});
    expectNear(projected(), {0.0, 0.2, 0.0}); // tilted by a right angle

    // Past that, the tilt goes the other way: about y by acos(0.8), though the vector asks for the opposite.
    plane.setSystemVector({0.6, 0.0, -0.8});
    moveBase(NqVector(0.6, 0.0, 0.8));
    expectNear(projected(), {0.8 * 4.0 / 6.0, 0.2, 0.0});
}

TEST(NqMomentum, RowsTimesRatesAreTheMomentumOfTheManipulator) {
    std::mt19937_64 random(7);
    for (const NqTestModel& model : nqTestModels()) {
        for (const bool includeAngular : {true, false, true}) {
            NqManipulatorActiveState state = nqRandomState(model, random);
            NqSpatialMomentumEndEffector e;
            e.setIncludeAngular(includeAngular);
            NqReArray j;
            e.insertJacobianComponent(*model.manipulator, 0, {}, false, state, j);
            std::vector<double> x = state.velocityState().jointVelocities(), product;
            const NqGeneralMotion& base = state.velocityState().baseMotion();
            x.insert(x.end(), {base[0], base[1], base[2], base[3], base[4], base[5]});
            ASSERT_TRUE(j.transform(x, product));
            ASSERT_EQ(product.size(), includeAngular ? 6u : 3u);
            const NqGeneralMotion expected(model.manipulator->linearMomentum(state),
                                           model.manipulator->angularMomentum(state));
            for (unsigned i = 0; i < product.size(); ++i) {
                EXPECT_NEAR(product[i], expected[i], 1e-11) << model.name << ", row " << i;
            }
        }
    }
}

struct NqSpatialMomentum : NqEndEffectorTest {
    NqSpatialMomentum() : NqEndEffectorTest(nqTestModels()[4], 7) {} // with a free base
};

TEST_F(NqSpatialMomentum, AsksForItsTarget) {
    NqSpatialMomentumEndEffector e;
    e.setDesiredLinearMomentum({1.0, 2.0, 3.0});
    e.setDesiredAngularMomentum({4.0, 5.0, 6.0});
    const Placement far(NqVector(5.0, 0.0, 0.0));
    EXPECT_EQ(velocity(e), Reals({1.0, 2.0, 3.0, 4.0, 5.0, 6.0}));
    e.setIncludeAngular(false);
    EXPECT_EQ(filtered(e, far, {9.0}, {9.0}), Reals({1.0, 2.0, 3.0}));
    EXPECT_EQ(limited(e, {9.0, 8.0}), Reals({9.0, 8.0}));
    EXPECT_EQ(e.difference({}, far) + e.minimumTime({}, far) + e.motionThreshold(), 0.0);
    e.setSpeedFactor(0.5);
    e.setFilteringActive(false);
    EXPECT_TRUE(e.speedFactor() == 1.0 && e.filteringActive()) << "there is no filter";
}

} // namespace
