#include <manipulator/NqTestManipulators.h>

namespace {

/// Sums over point masses, straight from the definition.
NqRigidBodyMassProperties ofPoints(const std::vector<std::pair<double, NqVector>>& points) {
    double mass = 0.0;
    NqVector first;
    double i[3][3] = {};
    for (const auto& [m, p] : points) {
        mass += m;
        first += m * p;
        for (unsigned r = 0; r < 3; ++r) {
            for (unsigned c = 0; c < 3; ++c) {
                i[r][c] += m * ((r == c ? p.magSquared() : 0.0) - p[r] * p[c]);
            }
        }
    }
    return {mass, first, NqSecondMoment(i[0][0], i[0][1], i[0][2], i[1][1], i[1][2], i[2][2])};
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
    NqTestNumbers numbers(7);
    const NqCoordinateSystemTransformation frame = numbers.frame();
    std::vector<std::pair<double, NqVector>> points, rotated, moved, central;
    for (int k = 0; k < 6; ++k) {
        points.emplace_back(1.5 + numbers.real(), numbers.vector());
        rotated.emplace_back(points.back().first, frame.orientation() * points.back().second);
        moved.emplace_back(points.back().first, frame * points.back().second);
    }
    const NqRigidBodyMassProperties body = ofPoints(points);
    NqRigidBodyMassProperties result = body;
    expectNear(ofPoints(rotated), result.transformBy(frame.orientation()));
    result = body;
    expectNear(ofPoints(moved), result.transformBy(frame));
    result += body;
    moved.insert(moved.end(), points.begin(), points.end());
    expectNear(ofPoints(moved), result);

    for (const auto& [mass, position] : points) {
        central.emplace_back(mass, position - body.centerOfMass());
    }
    expectNear(body, NqRigidBodyMassProperties::fromCentral(
                         body.mass(), NqCoordinateSystemTransformation(body.centerOfMass()),
                         ofPoints(central).secondMoment()));
    EXPECT_EQ(NqRigidBodyMassProperties().centerOfMass(), NqVector());
}

} // namespace
