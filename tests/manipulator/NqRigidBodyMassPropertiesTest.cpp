#include <manipulator/NqTestManipulators.h>
#include <support/NqTestModels.h>

namespace {

/// Sums over point masses, straight from the definition.
NqRigidBodyMassProperties ofPoints(const std::vector<std::pair<double, NqVector>>& points) {
    double mass = 0.0;
    NqVector first;
    NqSecondMoment second;
    for (const auto& [m, p] : points) {
        const double x = p[0], y = p[1], z = p[2];
        mass += m;
        first += m * p;
        second += {m * (y * y + z * z), -m * x * y, -m * x * z,
                   m * (x * x + z * z), -m * y * z, m * (x * x + y * y)};
    }
    return {mass, first, second};
}

void expectNear(const NqRigidBodyMassProperties& expected, const NqRigidBodyMassProperties& actual) {
    EXPECT_NEAR(expected.mass(), actual.mass(), 1e-14);
    nqExpectNear(expected.firstMoment(), actual.firstMoment(), 1e-14, "first moment");
    for (unsigned column = 0; column < 3; ++column) {
        NqVector e;
        e[column] = 1.0;
        nqExpectNear(expected.secondMoment() * e, actual.secondMoment() * e, 1e-14, "second moment");
    }
}

TEST(RigidBodyMassProperties, FollowPointMassesThroughEveryTransformation) {
    std::mt19937_64 random(7);
    const NqCoordinateSystemTransformation frame = nqRandomFrame(random);
    std::vector<std::pair<double, NqVector>> points, rotated, moved, central;
    for (double mass : {0.5, 1.0, 2.0, 3.0, 5.0}) {
        points.emplace_back(mass, nqRandomVector(random));
        rotated.emplace_back(mass, frame.orientation() * points.back().second);
        moved.emplace_back(mass, frame * points.back().second);
    }
    const NqRigidBodyMassProperties body = ofPoints(points);
    NqRigidBodyMassProperties result = body;
    expectNear(ofPoints(rotated), result.transformBy(frame.orientation()));
    result = body;
    expectNear(ofPoints(moved), result.transformBy(frame));

    for (const auto& [mass, position] : points) {
        central.emplace_back(mass, position - body.centerOfMass());
    }
    expectNear(body, NqRigidBodyMassProperties::fromCentral(body.mass(), body.centerOfMass(),
                                                            ofPoints(central).secondMoment()));
    EXPECT_EQ(NqRigidBodyMassProperties().centerOfMass(), NqVector());
}

} // namespace
