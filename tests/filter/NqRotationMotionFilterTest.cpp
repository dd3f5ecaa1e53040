#include "filter/NqFilterTesting.h"

namespace {

using Filter = NqRotationMotionFilter;
using std::numbers::pi;

const NqOrientation& kTurn = kActual.orientation();

/// The bare error for a relative orientation, in the actual frame.
NqVector errorOf(const NqOrientation& relative, bool zAxisOnly = false) {
    NqVector out;
    EXPECT_TRUE(Filter().calculateRotationMotion(kTurn, kTurn * relative, {9.0, 9.0, 9.0}, {}, 0.01, out,
                                                 zAxisOnly, false));
    return kTurn.inverse() * out;
}

TEST(NqRotationMotionFilter, ErrorIsTheRotationVectorOfTheShortWay) {
    const NqVector axis = NqVector(1.0, 2.0, -2.0) / 3.0;
    for (const double angle : {0.3, 1.0, 2.5, 3.1}) {
        expectNear(errorOf(NqOrientation(angle, axis)), angle * axis);
        expectNear(errorOf(NqOrientation(2.0 * pi - angle, axis)), -angle * axis); // as -q
    }
    for (const double angle : {1e-9, 0.1, 0.28}) { // twice the sine of half the angle
        expectNear(errorOf(NqOrientation(angle, axis)), 2.0 * std::sin(angle / 2.0) * axis);
        expectNear(errorOf(NqOrientation(2.0 * pi + angle, axis)), 2.0 * std::sin(angle / 2.0) * axis);
    }
    NqOrientation bound; // the chord is for more than 0.99
    bound.setFromQuaternion(0.99, std::sqrt(1.0 - 0.99 * 0.99), 0.0, 0.0);
    EXPECT_NEAR(errorOf(bound).mag(), 2.0 * std::acos(0.99), 1e-12);
    NqOrientation half; // no way is the short one
    half.setFromQuaternion(0.0, 0.6, 0.0, 0.8);
    EXPECT_EQ(errorOf(half).mag(), 0.0);
}

TEST(NqRotationMotionFilter, ZAxisAloneLeavesRotationAboutItFree) {
    for (const double spin : {0.0, 0.05, 2.0, 4.0}) {
        const NqOrientation aboutZ = NqOrientation::aboutZ(spin);
        expectNear(errorOf(aboutZ, true), {}, 1e-15);
        expectNear(errorOf(NqOrientation(0.5, {0.6, 0.8, 0.0}) * aboutZ, true), {0.3, 0.4, 0.0});
        expectNear(errorOf(NqOrientation(0.1, {1.0, 0.0, 0.0}) * aboutZ, true), {std::sin(0.1), 0.0, 0.0});
        // Beyond a right angle what is left to the opposite direction counts.
        expectNear(errorOf(NqOrientation(pi - 0.5, {0.6, 0.8, 0.0}) * aboutZ, true), {0.3, 0.4, 0.0});
        expectNear(errorOf(NqOrientation(pi, {0.6, 0.8, 0.0}) * aboutZ, true), {});
    }
}

} // namespace
