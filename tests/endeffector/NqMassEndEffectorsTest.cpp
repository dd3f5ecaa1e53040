#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/special/NqCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqProjectedCenterOfMassEndEffector.h>
#include <nqControlCore/endeffector/special/NqSpatialMomentumEndEffector.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using RelativeData = NqEndEffectorRelativeLinkData;

NqRigidBodyMassProperties pointMass(double mass, const NqVector& place) {
    return {mass, mass * place, NqSecondMoment::ofPointMass(mass, place)};
}

/// A base of 3 kg, on it 2 kg that slide along y, and 1 kg on an arm of 2 m that turns about z.
class NqSlidingMass : public testing::Test {
protected:
    NqSlidingMass() {
        manipulator.addLink("base", "slide", NqJointDescription(NqJointDescription::Prismatic), NqVector(),
                            {0.0, 1.0, 0.0}, pointMass(2.0, {0.5, 0.0, 0.0}));
        manipulator.addLink("slide", "arm", NqJointDescription(NqJointDescription::Revolute),
                            NqVector(1.0, 0.0, 0.0), {0.0, 0.0, 1.0}, pointMass(1.0, {2.0, 0.0, 0.0}));
        setState({});
    }

    void setState(const NqCoordinateSystemTransformation& base) {
        NqPositionState positions(NqXmlRealVector{0.4, 0.0});
        positions.setBaseFrame(base);
        state = NqManipulatorActiveState(manipulator);
        state.setPositionState(positions);
        state.setVelocityState(NqVelocityState(NqXmlRealVector{2.0, 3.0}));
    }

    NqVector column(const NqEndEffector& e, unsigned index, const RelativeData& relative = {}) {
        NqReArray j;
        e.insertJacobianComponent(manipulator, 0, relative, false, state, j);
        return {j[0][index], j[1][index], j.rows() > 2 ? j[2][index] : 0.0};
    }

    static void expectNear(const NqVector& actual, const NqVector& expected, double tolerance = 1e-14) {
        EXPECT_LT((actual - expected).mag(), tolerance)
            << actual.x() << " " << actual.y() << " " << actual.z();
    }

    NqVector projected() {
        NqPlanarVector point;
        plane.calculate2DPointPlacement(manipulator, state, point);
        return {point.x(), point.y(), 0.0};
    }

    NqIndividualManipulator manipulator{"sliding mass", "base", pointMass(3.0, {})};
    NqManipulatorActiveState state;
    NqCenterOfMassEndEffector center;
    NqProjectedCenterOfMassEndEffector plane;
};

TEST_F(NqSlidingMass, ColumnsOfSlidingJointsLeaveOutTheMass) {
    NqVector c;
    center.calculatePointPlacement(manipulator, state, c);
    expectNear(c, {4.0 / 6.0, 0.2, 0.0});
    expectNear(column(center, 0), {0.0, 1.0 / 6.0, 0.0});
    expectNear(column(center, 1), {0.0, 2.0 / 6.0, 0.0});
    NqXmlRealVector velocity(6, 7.0);
    center.calculateVelocity(manipulator, state, velocity, 1);
    EXPECT_EQ(velocity.size(), 6u) << "only lengthened";
    EXPECT_NEAR(velocity[2], (3.0 * 2.0 + 2.0 * 3.0) / 6.0, 1e-14) << "the true one";
    NqXmlRealVector acceleration(2, 7.0);
    center.calculateAcceleration(manipulator, state, acceleration, 0);
    EXPECT_EQ(acceleration, NqXmlRealVector(2, 7.0));
}

TEST_F(NqSlidingMass, RelativePartTakesTheCenterOfMassAsTheBaseFrameHasIt) {
    setState({NqVector(10.0, 0.0, 0.0), NqOrientation::aboutZ(M_PI / 2.0)});
    RelativeData relative;
    relative.setRelativeMode(RelativeData::relativeModeInternal);
    relative.setRelativeLinkID("arm");
    // The arm's joint is at (9.6, 1), the centre of mass at (9.8, 2/3), in the base frame at (2/3, 0.2).
    expectNear(column(center, 1, relative), {-1.0 / 3.0 - 0.8, 9.6 - 2.0 / 3.0, 0.0}, 1e-13);
    for (unsigned c = 2; c < 8; ++c) {
        expectNear(column(center, c, relative), NqVector());
    }
    NqEndEffector::SparsityDescription bits;
    center.insertSparsityComponent(manipulator, 0, relative, false, bits);
    EXPECT_EQ(bits[1], std::vector<bool>({1, 1, 0, 1, 0, 1, 0, 1})) << "set though the columns are empty";
    plane.insertSparsityComponent(manipulator, 0, relative, false, bits);
    EXPECT_EQ(bits[1], std::vector<bool>({1, 1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(NqSlidingMass, WithoutMassThereIsNoMotion) {
    const NqIndividualManipulator& massless = *nqTestModels()[0].manipulator;
    NqManipulatorActiveState there(massless);
    there.setVelocityState(NqVelocityState(NqXmlRealVector{1.0, 1.0}));
    for (const NqEndEffector* e :
         {static_cast<const NqEndEffector*>(&center), static_cast<const NqEndEffector*>(&plane)}) {
        NqXmlRealVector velocity;
        e->calculateVelocity(massless, there, velocity, 1);
        EXPECT_EQ(velocity, NqXmlRealVector(1 + e->doc()));
        NqReArray j;
        e->insertJacobianComponent(massless, 0, {}, false, there, j);
        EXPECT_EQ(j[0], std::vector<double>({0, 0, 1, 0, 0, 0, 0, 0}));
    }
    NqIndividualManipulator single("single", "base", pointMass(2.0, {0.0, 1.0, 0.0}));
    NqManipulatorActiveState alone(single);
    NqVelocityState velocities(0);
    velocities.setBaseMotion({NqVector(1.0, 0.0, 0.0), NqVector(0.0, 0.0, 1.0)});
    alone.setVelocityState(velocities);
    NqXmlRealVector velocity;
    center.calculateVelocity(single, alone, velocity, 0);
    EXPECT_EQ(velocity, NqXmlRealVector({0.0, 0.0, 0.0}));
}

TEST_F(NqSlidingMass, ProjectionRunsAlongTheVector) {
    expectNear(projected(), {4.0 / 6.0, 0.2, 0.0});
    plane.setSystemVector({0.6, 0.0, 0.8});
    expectNear(projected(), {4.0 / 6.0, 0.2, 0.0}); // no effect unless it is asked for
    plane.setProjectAlongSystemVector(true);
    expectNear(projected(), {0.8 * 4.0 / 6.0, 0.2, 0.0});
    setState(NqVector(0.6, 0.0, 0.8));
    expectNear(projected(), {0.8 * 4.0 / 6.0, 0.2, 0.0}); // moved along the vector

    setState({});
    const double sine = 4e-2; // so small a tilt is its own sine
    plane.setSystemVector({sine, 0.0, std::sqrt(1.0 - sine * sine)});
    expectNear(projected(), {std::cos(sine) * 4.0 / 6.0, 0.2, 0.0});
    plane.setSystemVector({0.0, 0.0, -2.0});
    expectNear(projected(), {4.0 / 6.0, 0.2, 0.0}); // the normal is merely reversed
    plane.setSystemVector({3.0, 0.0, 0.0});
    expectNear(projected(), {0.0, 0.2, 0.0}); // tilted by a right angle

    // Past that, the tilt goes the other way: about y by acos(0.8), though the vector asks for the opposite.
    plane.setSystemVector({0.6, 0.0, -0.8});
    setState(NqVector(0.6, 0.0, 0.8));
    expectNear(projected(), {0.8 * 4.0 / 6.0, 0.2, 0.0});
}

TEST_F(NqSlidingMass, TheFilterWorksInThePlane) {
    plane.setProjectAlongSystemVector(true);
    plane.setSystemVector({0.6, 0.0, 0.8});
    const NqVector away(4.0 / 6.0, 0.2, 5.0); // over the present place, in height
    NqXmlRealVector error, filtered;
    plane.calculateEndEffectorError(manipulator, NqEndEffectorPlacement(away), state, error);
    EXPECT_EQ(error.size(), 2u);
    EXPECT_NEAR(error[0], 0.0, 1e-15) << "in the axes of the system";
    plane.setFilteringActive(false);
    plane.filterEndEffectorVelocity(manipulator, NqEndEffectorPlacement(away), {}, {9.0, 9.0}, 0.5, state,
                                    filtered);
    EXPECT_NEAR(filtered[0], -0.6 * 5.0 / 0.5, 1e-13);
    plane.setFilteringActive(true);
    NqXmlRealVector again;
    plane.filterEndEffectorVelocity(manipulator, NqEndEffectorPlacement(away), {}, {}, 0.5, state, filtered);
    plane.filterEndEffectorVelocity(manipulator, NqEndEffectorPlacement(away), {}, {9.0, 9.0}, 0.5, state,
                                    again);
    EXPECT_EQ(again, filtered) << "the previous velocity counts as zero";
}

TEST(NqSpatialMomentum, RowsTimesRatesAreTheMomentumOfTheManipulator) {
    std::mt19937_64 random(7);
    for (const NqTestModel& model : nqTestModels()) {
        for (const bool includeAngular : {true, false, true}) {
            NqManipulatorActiveState state = nqRandomState(model, random);
            NqSpatialMomentumEndEffector e;
            e.setIncludeAngular(includeAngular);
            NqReArray j;
            e.insertJacobianComponent(*model.manipulator, 0, {}, !model.movesBase, state, j);
            std::vector<double> x = state.velocityState().jointVelocities();
            for (unsigned i = 0; i < 6 && model.movesBase; ++i) {
                x.push_back(state.velocityState().baseMotion()[i]);
            }
            std::vector<double> product;
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

TEST(NqSpatialMomentum, AsksForItsTargetAndSetsTheBitsOfAnInertia) {
    const NqTestModel& model = nqTestModels()[4]; // with a free base
    const unsigned n = model.manipulator->numberOfJoints();
    std::mt19937_64 random(7);
    NqManipulatorActiveState state = nqRandomState(model, random);
    NqSpatialMomentumEndEffector e;
    e.setDesiredLinearMomentum({1.0, 2.0, 3.0});
    e.setDesiredAngularMomentum({4.0, 5.0, 6.0});
    NqReArray j;
    NqEndEffector::SparsityDescription bits(2, std::vector<bool>(n + 6, true)); // of others
    e.insertJacobianComponent(*model.manipulator, 1, {}, false, state, j);
    e.insertSparsityComponent(*model.manipulator, 1, {}, false, bits);
    for (unsigned r = 1; r < 7; ++r) {
        for (unsigned c = n; c < n + 6; ++c) {
            EXPECT_EQ(bits[r][c], j[r][c] != 0.0) << r << " " << c;
        }
    }
    const NqEndEffectorPlacement far(NqVector(5.0, 0.0, 0.0));
    NqXmlRealVector v;
    e.calculateVelocity(*model.manipulator, state, v, 0);
    EXPECT_EQ(v, NqXmlRealVector({1.0, 2.0, 3.0, 4.0, 5.0, 6.0}));
    e.setIncludeAngular(false);
    e.filterEndEffectorVelocity(*model.manipulator, far, {9.0}, {9.0}, 0.1, state, v);
    EXPECT_EQ(v, NqXmlRealVector({1.0, 2.0, 3.0}));
    e.filterEndEffectorVelocity({9.0, 8.0}, {}, 0.1, v);
    EXPECT_EQ(v, NqXmlRealVector({9.0, 8.0}));
    EXPECT_EQ(e.difference({}, far) + e.minimumTime({}, far) + e.motionThreshold(), 0.0);
}

} // namespace
