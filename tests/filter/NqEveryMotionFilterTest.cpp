#include "filter/NqFilterTesting.h"

namespace {

/// Limits of the linear or the angular part of a motion, as they are without a speed factor.
struct Limits {
    double speed, acceleration;
    double deceleration, gain;
};

/// Where a point and an orientation are, where they shall be, and how they move.
struct Pose {
    NqVector point, desiredPoint, linear;
    NqOrientation orientation, desiredOrientation;
    NqVector angular;
    NqVector feedForward; ///< of point and orientation alike
};

/// One filter of each class, with the same limits. Linear parts of the general one are those of its offset
/// point, which is as far from the origin as arms are long.
struct Filters {
    NqPointMotionFilter point;
    NqScalarMotionFilter scalar;
    NqRotationMotionFilter rotation;
    NqGeneralMotionFilter general;

    Filters() { general.setOffset({0.3, -0.5, 0.2}); }

    std::array<NqBaseMotionFilter*, 4> all() { return {&point, &scalar, &rotation, &general}; }

    void setLimits(const Limits& linear, const Limits& angular) {
        const auto setNumber = [&](auto& filter) {
            filter.setThreshold(linear.speed);
            filter.setAccelerationThreshold(linear.acceleration);
            filter.setDecelerationThreshold(linear.deceleration);
        };
        const auto setTurn = [&](auto& filter) {
            filter.setAngularVelocityThreshold(angular.speed);
            filter.setAngularAccelerationThreshold(angular.acceleration);
            filter.setAngularDecelerationThreshold(angular.deceleration);
            filter.setAngularGain(angular.gain);
        };
        setNumber(point);
        point.setLinearGain(linear.gain);
        setNumber(scalar);
        scalar.setGain(linear.gain);
        setTurn(rotation);
        setTurn(general);
        general.setLinearVelocityThreshold(linear.speed);
        general.setLinearAccelerationThreshold(linear.acceleration);
        general.setLinearDecelerationThreshold(linear.deceleration);
        general.setLinearGain(linear.gain);
    }
};

/// A way to use a filter: what moves, and the question for the velocities of the next step.
struct Kind {
    const char* name;
    bool (*ask)(const Kind&, const Filters&, const Pose&, double step, NqVector& linear, NqVector& angular);
    const char* operation; ///< in the message about a bad mode
    unsigned dimensions;   ///< of the linear part, 0 where there is none
    bool turns = false, zAxisOnly = false, matchTimes = false;
};

bool ask3D(const Kind&, const Filters& filters, const Pose& pose, double step, NqVector& linear, NqVector&) {
    return filters.point.calculate3DVelocity(pose.point, pose.desiredPoint, pose.feedForward, pose.linear,
                                             step, linear);
}

bool ask2D(const Kind&, const Filters& filters, const Pose& pose, double step, NqVector& linear, NqVector&) {
    const auto planar = [](const NqVector& v) { return NqPlanarVector(v.x(), v.y()); };
    NqPlanarVector out = planar(linear);
    const bool done =
        filters.point.calculate2DVelocity(planar(pose.point), planar(pose.desiredPoint),
                                          planar(pose.feedForward), planar(pose.linear), step, out);
    linear = NqVector(out.x(), out.y(), 0.0);
    return done;
}

bool askScalar(const Kind&, const Filters& filters, const Pose& pose, double step, NqVector& linear,
               NqVector&) {
    return filters.scalar.calculateVelocity(pose.point.x(), pose.desiredPoint.x(), pose.feedForward.x(),
                                            pose.linear.x(), step, linear.x());
}

bool askRotation(const Kind& kind, const Filters& filters, const Pose& pose, double step, NqVector&,
                 NqVector& angular) {
    return filters.rotation.calculateRotationMotion(pose.orientation, pose.desiredOrientation,
                                                    pose.feedForward, pose.angular, step, angular,
                                                    kind.zAxisOnly, true);
}

bool askGeneral(const Kind& kind, const Filters& filters, const Pose& pose, double step, NqVector& linear,
                NqVector& angular) {
    const NqVector toPoint = pose.orientation * filters.general.offset();
    const NqVector toDesired = pose.desiredOrientation * filters.general.offset();
    NqGeneralMotion out(linear - angular.cross(toPoint), angular);
    const bool done = filters.general.calculateGeneralMotion(
        {pose.point - toPoint, pose.orientation}, {pose.desiredPoint - toDesired, pose.desiredOrientation},
        {pose.feedForward, pose.feedForward}, {pose.linear - pose.angular.cross(toPoint), pose.angular}, step,
        out, kind.matchTimes, kind.zAxisOnly, true);
    linear = out.linear() + out.angular().cross(toPoint);
    angular = out.angular();
    return done;
}

constexpr const char* kRotationOperation = "NqGeneralMotionFilter::calculateRotationMotion";
constexpr const char* kGeneralOperation = "NqGeneralMotionFilter::calculateGeneralMotion";
constexpr Kind kKinds[] = {{"Point3D", ask3D, "NqPointMotionFilter::calculate3DVelcoity", 3},
                           {"Point2D", ask2D, "NqPointMotionFilter::calculate2DVelcoity", 2},
                           {"Scalar", askScalar, "NqScalarMotionFilter::calculateGeneralMotion", 1},
                           {"Rotation", askRotation, kRotationOperation, 0, true},
                           {"RotationOfZ", askRotation, kRotationOperation, 0, true, true},
                           {"General", askGeneral, kGeneralOperation, 3, true},
                           {"GeneralOfZ", askGeneral, kGeneralOperation, 3, true, true},
                           {"GeneralMatched", askGeneral, kGeneralOperation, 3, true, false, true}};

class EveryMotionFilter : public testing::TestWithParam<std::tuple<Kind, unsigned>> {
protected:
    static constexpr double kStep = 0.01;
    static constexpr double kFactors[] = {0.5, 1.0, 2.0};

    double range(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(m_Random);
    }

    NqVector direction(unsigned dimensions) {
        NqVector v;
        for (unsigned i = 0; i < dimensions; ++i) {
            v[i] = range(-1.0, 1.0);
        }
        return v.unitVector();
    }

    Limits randomLimits() {
        const double speed = range(0.2, 1.0);
        // In discrete time the slope of the approach needs a little more than the deceleration: without room
        // above it, the limit of acceleration makes the velocity lag, and the target is passed by a fraction
        // of a millimetre.
        const double deceleration = speed * range(3.0, 20.0);
        return {speed, deceleration * range(1.25, 4.0), deceleration, 200.0};
    }

    void configure(const Limits& linear, const Limits& angular, double factor, double exponent) {
        m_Factor = factor;
        m_Linear = linear;
        m_Angular = angular;
        m_Exponent = m_Kind.dimensions == 1 || m_Kind.dimensions == 2 ? 0.5 : exponent;
        m_Filters.setLimits(linear, angular);
        Limits freeLinear = linear;
        Limits freeAngular = angular;
        freeLinear.acceleration = freeAngular.acceleration = 1e300;
        m_Unlimited.setLimits(freeLinear, freeAngular);
        for (Filters* filters : {&m_Filters, &m_Unlimited}) {
            for (NqBaseMotionFilter* filter : filters->all()) {
                filter->setFilteringMode(m_Mode);
                filter->setSpeedFactor(factor);
                filter->setExponent(exponent);
            }
        }
    }

    /// At rest, with ways to go that take some time at the limits of speed for a factor of 1.
    void start(double linearTime, double angularTime) {
        m_Pose = {};
        m_Pose.point = {range(-1.0, 1.0), range(-1.0, 1.0), range(-1.0, 1.0)};
        m_Pose.desiredPoint = m_Pose.point;
        if (m_Kind.dimensions > 0) {
            m_Pose.desiredPoint += linearTime * m_Linear.speed * direction(m_Kind.dimensions);
        }
        m_Pose.orientation = NqOrientation{range(0.0, 3.0), direction(3)};
        m_Pose.desiredOrientation = m_Pose.orientation;
        if (m_Kind.turns) {
            const NqVector axis = direction(m_Kind.zAxisOnly ? 2 : 3);
            m_Pose.desiredOrientation =
                m_Pose.orientation * NqOrientation(angularTime * m_Angular.speed, axis);
        }
    }

    double linearDistance() const { return (m_Pose.desiredPoint - m_Pose.point).mag(); }

    double angularDistance() const {
        const NqOrientation relative = m_Pose.orientation.inverse() * m_Pose.desiredOrientation;
        if (m_Kind.zAxisOnly) {
            const NqVector z = relative.zAxis();
            return std::atan2(std::hypot(z.x(), z.y()), z.z());
        }
        double angle = 0.0;
        NqVector axis;
        relative.getAngleAxis(angle, axis);
        return angle;
    }

    void move(const NqVector& linear, const NqVector& angular) {
        m_Pose.linear = linear;
        m_Pose.angular = angular;
        m_Pose.point += kStep * linear;
        m_Pose.orientation = NqOrientation(kStep * angular.mag(), angular) * m_Pose.orientation;
    }

    /// The speed below which the change of velocity is free: what stops within a step or two, or its like.
    double freeSpeed(const Limits& limits) const {
        const double a = m_Factor * limits.deceleration;
        if (m_Mode != NqBaseMotionFilter::ThreeHalves) {
            return m_Mode == NqBaseMotionFilter::Proportional ? 0.0 : 2.0 * a * kStep;
        }
        const double k = (m_Exponent + 1.0) * a / std::pow(m_Factor * limits.speed, 1.0 - m_Exponent);
        const double threshold = std::pow(k * kStep, 1.0 / m_Exponent);
        return m_Kind.dimensions == 1 ? 2.0 * threshold : std::sqrt(threshold);
    }

    /// Whether a velocity keeps its limits, given the previous one and what the filter would ask for if
    /// acceleration were unlimited.
    testing::AssertionResult keepsLimits(const Limits& limits, const NqVector& velocity,
                                         const NqVector& wanted, const NqVector& previous) const {
        if (velocity.mag() > m_Factor * limits.speed * (1.0 + 1e-12)) {
            return testing::AssertionFailure() << "speed " << velocity.mag();
        }
        const bool isFree = (velocity - wanted).mag() <= 1e-14;
        const double change = (velocity - previous).mag();
        const bool isLimited = change <= m_Factor * limits.acceleration * kStep * (1.0 + 1e-9);
        const double free = freeSpeed(limits);
        // A matched limit of speed moves the free speed of three-halves mode along.
        const bool isKnown = !(m_Kind.matchTimes && m_Mode == NqBaseMotionFilter::ThreeHalves);
        if ((isKnown && wanted.mag() > free * (1.0 + 1e-9) && !isLimited) ||
            (isKnown && wanted.mag() < free * (1.0 - 1e-9) && !isFree) || (!isLimited && !isFree)) {
            return testing::AssertionFailure()
                   << "change " << change << ", wanted " << wanted.mag() << ", free " << free;
        }
        return testing::AssertionSuccess();
    }

    const Kind m_Kind = std::get<0>(GetParam());
    const unsigned m_Mode = std::get<1>(GetParam());
    double m_Factor = 1.0;
    Filters m_Filters;
    Filters m_Unlimited;     ///< the same, with an acceleration threshold of 1e300
    double m_Exponent = 0.5; ///< that acts
    Limits m_Linear{};
    Limits m_Angular{};
    Pose m_Pose;
    std::mt19937_64 m_Random{5};
};

std::string caseName(const testing::TestParamInfo<EveryMotionFilter::ParamType>& which) {
    constexpr const char* modes[] = {"Proportional", "Trapezoidal", "ThreeHalves"};
    const auto& [kind, mode] = which.param;
    return kind.name + std::string(modes[mode]);
}

INSTANTIATE_TEST_SUITE_P(Filters, EveryMotionFilter,
                         testing::Combine(testing::ValuesIn(kKinds), testing::Values(0u, 1u, 2u)), caseName);

TEST_P(EveryMotionFilter, ReachesItsTargetFromRestWithinItsLimits) {
    const double closeEnough = m_Mode == NqBaseMotionFilter::Trapezoidal ? 1e-9 : 1e-3;
    for (unsigned i = 0; i < 1260; ++i) {
        SCOPED_TRACE("move " + std::to_string(i));
        const Limits linearLimits = randomLimits();
        const Limits angularLimits = randomLimits();
        configure(linearLimits, angularLimits, kFactors[i % 3], range(0.2, 1.0));
        start(range(0.01, 1.0), range(0.01, 2.0));
        double way = linearDistance(), angle = angularDistance();
        const auto remaining = [&] { return std::max(way, angle); };
        for (unsigned step = 0; step < 2000 && remaining() > closeEnough; ++step) {
            NqVector linear, angular, wantedLinear, wantedAngular;
            ASSERT_TRUE(m_Kind.ask(m_Kind, m_Filters, m_Pose, kStep, linear, angular));
            ASSERT_TRUE(m_Kind.ask(m_Kind, m_Unlimited, m_Pose, kStep, wantedLinear, wantedAngular));
            ASSERT_TRUE(keepsLimits(m_Linear, linear, wantedLinear, m_Pose.linear)) << "step " << step;
            ASSERT_TRUE(keepsLimits(m_Angular, angular, wantedAngular, m_Pose.angular)) << "step " << step;
            move(linear, angular);
            ASSERT_LE(linearDistance(), way + 1e-12) << "passes its target in step " << step;
            ASSERT_LE(angularDistance(), angle + 1e-12) << "passes its target in step " << step;
            way = linearDistance();
            angle = angularDistance();
        }
        EXPECT_LE(remaining(), closeEnough);
    }
}

TEST_P(EveryMotionFilter, SpeedFactorScalesLimitsAndNotGains) {
    const auto startAndMove = [&](double gain, double factor, unsigned steps) {
        const Limits limits{0.3, 3.0, 2.0, gain};
        configure(limits, limits, factor, 0.5);
        start(3.0, 3.0);
        for (unsigned step = 0; step < steps; ++step) {
            NqVector linear, angular;
            ASSERT_TRUE(m_Kind.ask(m_Kind, m_Filters, m_Pose, kStep, linear, angular));
            move(linear, angular);
        }
    };
    const auto expectSpeeds = [&](double linear, double angular) {
        EXPECT_NEAR(m_Pose.linear.mag(), m_Kind.dimensions > 0 ? linear : 0.0, 1e-12);
        EXPECT_NEAR(m_Pose.angular.mag(), m_Kind.turns ? angular : 0.0, 1e-12);
    };
    for (const double factor : kFactors) {
        startAndMove(200.0, factor, 1);
        expectSpeeds(factor * 3.0 * kStep, factor * 3.0 * kStep);
        startAndMove(200.0, factor, 40);
        expectSpeeds(factor * 0.3, factor * 0.3);
        if (m_Mode == NqBaseMotionFilter::Proportional) {
            startAndMove(0.1, factor, 40);
            const double gain = 0.1 / (1.0 - 0.1 * kStep); // of the distance that the last step left
            expectSpeeds(gain * linearDistance(), gain * angularDistance());
        }
    }
}

/// Where there are angles a bad mode fails even if filtering is switched off.
TEST_P(EveryMotionFilter, BadModeIsReportedAndLeavesTheOutput) {
    for (const bool isActive : {true, false}) {
        for (NqBaseMotionFilter* filter : m_Filters.all()) {
            filter->setFilteringMode(3 + m_Mode);
            filter->setFilteringActive(isActive);
        }
        NqVector linear(1.0, 0.0, 0.0), angular;
        NqPrintCapture capture;
        const bool done = m_Kind.ask(m_Kind, m_Filters, m_Pose, kStep, linear, angular);
        ASSERT_EQ(done, !isActive && !m_Kind.turns);
        if (!done) {
            EXPECT_TRUE(linear == NqVector(1.0, 0.0, 0.0) && angular == NqVector());
            ASSERT_EQ(capture.lines().size(), 1u);
            EXPECT_EQ(capture.lines()[0].first, 4u);
            EXPECT_EQ(capture.text(),
                      m_Kind.operation + ("()->bad filtering mode: " + std::to_string(3 + m_Mode)) + ".\n");
        }
    }
}

} // namespace
