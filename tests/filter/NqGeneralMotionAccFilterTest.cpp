#include "filter/NqFilterTesting.h"

namespace {

using Filter = NqGeneralMotionAccFilter;
using Pose = NqCoordinateSystemTransformation;

/// The acceleration for a relative placement, in the actual frame.
NqGeneralMotion accelerationFor(const Filter& filter, const Pose& relative, double step = 1e-3,
                                const NqGeneralMotion& desired = {}) {
    NqGeneralMotion out;
    EXPECT_TRUE(filter.calculateGeneralAccMotion(kActual, kActual * relative, kActual.orientation() * desired,
                                                 step, out));
    return kActual.orientation().inverse() * out;
}

TEST(NqGeneralMotionAccFilter, OneFactorLimitsTheWeightedNormOfBothParts) {
    Filter filter;
    EXPECT_TRUE(filter.angularWeight() == 0.4 && filter.threshold() == 1.0) << "by default";
    EXPECT_TRUE(filter.linearGain() == 200.0 && filter.angularGain() == 200.0) << "by default";
    filter.setLinearGain(10.0);
    filter.setAngularGain(20.0);
    filter.setAngularWeight(0.5);
    const Pose relative({0.3, 0.0, 0.4}, NqOrientation(1.2, NqVector::yVector(1.0)));
    filter.setThreshold(13.0 + 1e-9); // linear 10 x 0.5, angular 20 x 1.2 with half its weight
    expectNear(accelerationFor(filter, relative).linear(), {3.0, 0.0, 4.0});
    expectNear(accelerationFor(filter, relative).angular(), {0.0, 24.0, 0.0});
    filter.setThreshold(6.5);
    const NqGeneralMotion desired({1.0, 20.0, 3.0}, {4.0, 5.0, 60.0}); // comes on top
    expectNear(accelerationFor(filter, relative, 1e-3, desired).linear(), {2.5, 20.0, 5.0});
    expectNear(accelerationFor(filter, relative, 1e-3, desired).angular(), {4.0, 17.0, 60.0});
    filter.setAngularWeight(0.0); // no longer counts, but is shortened along
    filter.setThreshold(1.0);
    expectNear(accelerationFor(filter, relative).angular(), {0.0, 4.8, 0.0});
    // Gains never exceed one over the time step, each by itself.
    filter.setThreshold(1e300);
    expectNear(accelerationFor(filter, relative, 1.0 / 16.0).linear(), {3.0, 0.0, 4.0});
    expectNear(accelerationFor(filter, relative, 1.0 / 16.0).angular(), {0.0, 19.2, 0.0});

    NqVector out;
    filter.setThreshold(2.5);
    ASSERT_TRUE(filter.calculateAcceleration({1.0, 0.0, 0.0}, {1.3, 0.0, 0.4}, {0.0, 7.0, 0.0}, 1e-3, out));
    expectNear(out, {1.5, 7.0, 2.0});
}

TEST(NqGeneralMotionAccFilter, TakesTheAngleOfTheQuaternionAsItStands) {
    const Filter filter = Filter::nullObject();
    const double pi = std::numbers::pi;
    const auto angularFor = [&](double angle) {
        NqOrientation relative;
        relative.setFromQuaternion(std::cos(angle / 2.0), 0.0, std::sin(angle / 2.0), 0.0);
        return accelerationFor(filter, relative).angular();
    };
    expectNear(angularFor(2.0), {0.0, 2.0, 0.0});
    expectNear(angularFor(2.0 * pi - 2.0), {0.0, -(2.0 * pi - 2.0), 0.0});
    for (const double scalar : {1.0, -1.0}) { // close to the identity the sign doesn't matter
        expectNear(angularFor(0.1 + (1.0 - scalar) * pi), {0.0, 2.0 * std::sin(0.05), 0.0});
    }
}

} // namespace
