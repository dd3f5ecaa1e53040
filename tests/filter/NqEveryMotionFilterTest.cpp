#include <nqControlCore/filter/NqGeneralMotionFilter.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

/// Limits of the linear or the angular part of a motion, as they are without a speed factor.
struct Limits {
    double speed;
    double acceleration;
    double deceleration;
    double gain;
};

/// Where a point and an orientation are, where they shall be, and how they move.
struct Pose {
    NqVector point, desiredPoint, linear;
    NqOrientation orientation, desiredOrientation;
    NqVector angular;
};

/// A filter as the simulation sees it: something that has a linear part, in one to three dimensions, an
/// angular part or both, and gives the velocities for the next step.
class Subject {
public:
    virtual ~Subject() = default;
    virtual NqBaseMotionFilter& filter() = 0;
    virtual unsigned dimensions() const { return 0; }
    virtual bool turns() const { return false; }
    virtual bool isForZAxisOnly() const { return false; }
    virtual bool matchesTimes() const { return false; }
    virtual void setLimits(const Limits& linear, const Limits& angular) = 0;
    virtual bool ask(const Pose& pose, double step, NqVector& linear, NqVector& angular) const = 0;
};

template <typename Filter>
class FilterSubject : public Subject {
public:
    NqBaseMotionFilter& filter() override { return m_Filter; }

protected:
    Filter m_Filter;
};

class Point3D : public FilterSubject<NqPointMotionFilter> {
public:
    unsigned dimensions() const override { return 3; }
    void setLimits(const Limits& linear, const Limits&) override {
        m_Filter.setThreshold(linear.speed);
        m_Filter.setAccelerationThreshold(linear.acceleration);
        m_Filter.setDecelerationThreshold(linear.deceleration);
        m_Filter.setLinearGain(linear.gain);
    }
    bool ask(const Pose& pose, double step, NqVector& linear, NqVector&) const override {
        return m_Filter.calculate3DVelocity(pose.point, pose.desiredPoint, {}, pose.linear, step, linear);
    }
};

class Point2D : public Point3D {
public:
    unsigned dimensions() const override { return 2; }
    bool ask(const Pose& pose, double step, NqVector& linear, NqVector&) const override {
        const auto planar = [](const NqVector& v) { return NqPlanarVector(v.x(), v.y()); };
        NqPlanarVector out;
        const bool done = m_Filter.calculate2DVelocity(planar(pose.point), planar(pose.desiredPoint), {},
                                                       planar(pose.linear), step, out);
        linear = NqVector(out.x(), out.y(), 0.0);
        return done;
    }
};

class Scalar : public FilterSubject<NqScalarMotionFilter> {
public:
    unsigned dimensions() const override { return 1; }
    void setLimits(const Limits& linear, const Limits&) override {
        m_Filter.setThreshold(linear.speed);
        m_Filter.setAccelerationThreshold(linear.acceleration);
        m_Filter.setDecelerationThreshold(linear.deceleration);
        m_Filter.setGain(linear.gain);
    }
    bool ask(const Pose& pose, double step, NqVector& linear, NqVector&) const override {
        return m_Filter.calculateVelocity(pose.point.x(), pose.desiredPoint.x(), 0.0, pose.linear.x(), step,
                                          linear.x());
    }
};

template <bool zAxisOnly>
class Rotation : public FilterSubject<NqRotationMotionFilter> {
public:
    bool turns() const override { return true; }
    bool isForZAxisOnly() const override { return zAxisOnly; }
    void setLimits(const Limits&, const Limits& angular) override {
        m_Filter.setAngularVelocityThreshold(angular.speed);
        m_Filter.setAngularAccelerationThreshold(angular.acceleration);
        m_Filter.setAngularDecelerationThreshold(angular.deceleration);
        m_Filter.setAngularGain(angular.gain);
    }
    bool ask(const Pose& pose, double step, NqVector&, NqVector& angular) const override {
        return m_Filter.calculateRotationMotion(pose.orientation, pose.desiredOrientation, {}, pose.angular,
                                                step, angular, zAxisOnly, true);
    }
};

/// The linear part is that of the offset point; it is as far from the origin as arms are long.
template <bool matchTimes, bool zAxisOnly>
class General : public FilterSubject<NqGeneralMotionFilter> {
public:
    General() { m_Filter.setOffset({0.3, -0.5, 0.2}); }
    unsigned dimensions() const override { return 3; }
    bool turns() const override { return true; }
    bool isForZAxisOnly() const override { return zAxisOnly; }
    bool matchesTimes() const override { return matchTimes; }
    void setLimits(const Limits& linear, const Limits& angular) override {
        m_Filter.setLinearVelocityThreshold(linear.speed);
        m_Filter.setLinearAccelerationThreshold(linear.acceleration);
        m_Filter.setLinearDecelerationThreshold(linear.deceleration);
        m_Filter.setLinearGain(linear.gain);
        m_Filter.setAngularVelocityThreshold(angular.speed);
        m_Filter.setAngularAccelerationThreshold(angular.acceleration);
        m_Filter.setAngularDecelerationThreshold(angular.deceleration);
        m_Filter.setAngularGain(angular.gain);
    }
    bool ask(const Pose& pose, double step, NqVector& linear, NqVector& angular) const override {
        const NqVector toPoint = pose.orientation * m_Filter.offset();
        const NqVector toDesired = pose.desiredOrientation * m_Filter.offset();
        NqGeneralMotion out;
        const bool done =
            m_Filter.calculateGeneralMotion({pose.point - toPoint, pose.orientation},
                                            {pose.desiredPoint - toDesired, pose.desiredOrientation}, {},
                                            {pose.linear - pose.angular.cross(toPoint), pose.angular}, step,
                                            out, matchTimes, zAxisOnly, true);
        linear = out.linear() + out.angular().cross(toPoint);
        angular = out.angular();
        return done;
    }
};

struct Kind {
    const char* name;
    std::unique_ptr<Subject> (*make)();
};

template <typename Made>
std::unique_ptr<Subject> make() {
    return std::make_unique<Made>();
}

constexpr Kind kKinds[] = {{"Point3D", make<Point3D>},
                           {"Point2D", make<Point2D>},
                           {"Scalar", make<Scalar>},
                           {"Rotation", make<Rotation<false>>},
                           {"RotationOfZ", make<Rotation<true>>},
                           {"General", make<General<false, false>>},
                           {"GeneralOfZ", make<General<false, true>>},
                           {"GeneralMatched", make<General<true, false>>}};

class EveryMotionFilter : public testing::TestWithParam<std::tuple<Kind, unsigned, double>> {
protected:
    static constexpr double kStep = 0.005;

    EveryMotionFilter()
        : m_Mode(std::get<1>(GetParam())), m_Factor(std::get<2>(GetParam())),
          m_Subject(std::get<0>(GetParam()).make()), m_Unlimited(std::get<0>(GetParam()).make()) {
        for (Subject* subject : {m_Subject.get(), m_Unlimited.get()}) {
            subject->filter().setFilteringMode(m_Mode);
            subject->filter().setSpeedFactor(m_Factor);
        }
    }

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

    void setLimits(const Limits& linear, const Limits& angular) {
        m_Linear = linear;
        m_Angular = angular;
        m_Subject->setLimits(linear, angular);
        Limits freeLinear = linear;
        Limits freeAngular = angular;
        freeLinear.acceleration = freeAngular.acceleration = 1e300;
        m_Unlimited->setLimits(freeLinear, freeAngular);
    }

    void setExponent(double exponent) {
        m_Subject->filter().setExponent(exponent);
        m_Unlimited->filter().setExponent(exponent);
    }

    /// At rest, with ways to go.
    void start(double way, double angle) {
        m_Pose = {};
        m_Pose.point = {range(-1.0, 1.0), range(-1.0, 1.0), range(-1.0, 1.0)};
        m_Pose.desiredPoint = m_Pose.point;
        if (m_Subject->dimensions() > 0) {
            m_Pose.desiredPoint += way * direction(m_Subject->dimensions());
        }
        m_Pose.orientation.setFromAngleAxis(range(0.0, 3.0), direction(3));
        m_Pose.desiredOrientation = m_Pose.orientation;
        if (m_Subject->turns()) {
            const NqVector axis = direction(m_Subject->isForZAxisOnly() ? 2 : 3);
            m_Pose.desiredOrientation = m_Pose.orientation * NqOrientation(angle, axis);
        }
    }

    double linearDistance() const { return (m_Pose.desiredPoint - m_Pose.point).mag(); }

    double angularDistance() const {
        const NqOrientation relative = m_Pose.orientation.inverse() * m_Pose.desiredOrientation;
        if (m_Subject->isForZAxisOnly()) {
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
        const bool isScalar = m_Subject->dimensions() == 1;
        const bool isPlanar = m_Subject->dimensions() == 2;
        const double n = isScalar || isPlanar ? 0.5 : m_Subject->filter().exponent();
        const double k = (n + 1.0) * a / std::pow(m_Factor * limits.speed, 1.0 - n);
        const double threshold = std::pow(k * kStep, 1.0 / n);
        return isScalar ? 2.0 * threshold : std::sqrt(threshold);
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
        const bool isKnown = !(m_Subject->matchesTimes() && m_Mode == NqBaseMotionFilter::ThreeHalves);
        if ((isKnown && wanted.mag() > free * (1.0 + 1e-9) && !isLimited) ||
            (isKnown && wanted.mag() < free * (1.0 - 1e-9) && !isFree) || (!isLimited && !isFree)) {
            return testing::AssertionFailure()
                   << "change " << change << " to " << velocity.mag() << ", wanted " << wanted.mag()
                   << ", free " << free << ", limit " << m_Factor * limits.acceleration * kStep;
        }
        return testing::AssertionSuccess();
    }

    unsigned m_Mode;
    double m_Factor;
    std::unique_ptr<Subject> m_Subject;
    std::unique_ptr<Subject> m_Unlimited; ///< the same, with an acceleration threshold of 1e300
    Limits m_Linear{};
    Limits m_Angular{};
    Pose m_Pose;
    std::mt19937_64 m_Random{5};
};

std::string caseName(const testing::TestParamInfo<EveryMotionFilter::ParamType>& which) {
    constexpr const char* modes[] = {"Proportional", "Trapezoidal", "ThreeHalves"};
    const auto& [kind, mode, factor] = which.param;
    return kind.name + std::string(modes[mode]) + (factor < 1.0 ? "Slowed" : factor > 1.0 ? "Sped" : "");
}

INSTANTIATE_TEST_SUITE_P(Filters, EveryMotionFilter,
                         testing::Combine(testing::ValuesIn(kKinds), testing::Values(0u, 1u, 2u),
                                          testing::Values(0.5, 1.0, 2.0)),
                         caseName);

TEST_P(EveryMotionFilter, ReachesItsTargetFromRestWithinItsLimits) {
    // A part that has arrived has a matched limit of 0, of which three-halves mode makes 0 times infinity:
    // there only the way until the first of the two arrives counts.
    const bool endsWithFirst = m_Subject->matchesTimes() && m_Mode == NqBaseMotionFilter::ThreeHalves;
    const double closeEnough = m_Mode == NqBaseMotionFilter::Trapezoidal ? 1e-9 : 1e-3;
    for (unsigned i = 0; i < 420; ++i) {
        SCOPED_TRACE("move " + std::to_string(i));
        setLimits(randomLimits(), randomLimits());
        setExponent(range(0.2, 1.0));
        start(m_Linear.speed * range(0.01, 1.0), m_Angular.speed * range(0.01, 2.0));
        double way = linearDistance();
        double angle = angularDistance();
        const auto remaining = [&] { return endsWithFirst ? std::min(way, angle) : std::max(way, angle); };
        for (unsigned step = 0; step < 2000 && remaining() > closeEnough; ++step) {
            NqVector linear, angular, wantedLinear, wantedAngular;
            ASSERT_TRUE(m_Subject->ask(m_Pose, kStep, linear, angular));
            ASSERT_TRUE(m_Unlimited->ask(m_Pose, kStep, wantedLinear, wantedAngular));
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
    setExponent(0.5);
    Limits limits{0.3, 3.0, 2.0, 200.0};
    const auto startAndMove = [&](unsigned steps) {
        setLimits(limits, limits);
        start(0.9, 0.9);
        for (unsigned step = 0; step < steps; ++step) {
            NqVector linear, angular;
            ASSERT_TRUE(m_Subject->ask(m_Pose, kStep, linear, angular));
            move(linear, angular);
        }
    };
    const auto expectSpeeds = [&](double linear, double angular) {
        EXPECT_NEAR(m_Pose.linear.mag(), m_Subject->dimensions() > 0 ? linear : 0.0, 1e-12);
        EXPECT_NEAR(m_Pose.angular.mag(), m_Subject->turns() ? angular : 0.0, 1e-12);
    };
    startAndMove(1);
    expectSpeeds(m_Factor * 3.0 * kStep, m_Factor * 3.0 * kStep);
    startAndMove(40);
    expectSpeeds(m_Factor * 0.3, m_Factor * 0.3);
    if (m_Mode == NqBaseMotionFilter::Proportional) {
        limits.gain = 0.1;
        startAndMove(40); // the last speed was that of the distance before the step
        const double gain = 0.1 / (1.0 - 0.1 * kStep);
        expectSpeeds(gain * linearDistance(), gain * angularDistance());
    }
}

} // namespace
