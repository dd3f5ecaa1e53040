#include "NqHashSections.h"

#include "NqDraws.h"

#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>
#include <nqControlCore/filter/NqGeneralMotionFilter.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>
#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlLoop/NqBoundedLeastSquares.h>
#include <nqControlLoop/NqLimitedVelocityTool.h>

namespace {

std::string inElement(const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
}

/// A matrix of 2 columns, each with a number at random in every row.
std::string matrix(NqDraws& draws, unsigned rows, double least, double greatest) {
    std::string sum;
    for (const char* row : {"1 0", "0 1"}) {
        NqXmlRealVector column;
        for (unsigned i = 0; i < rows; ++i) {
            column.pushBack(draws.within(least, greatest));
        }
        sum += inElement("times",
                         inElement("generalColumn", inElement("column", column.toText())) +
                             inElement("transpose", inElement("generalColumn", inElement("column", row))));
    }
    return inElement("plus", sum);
}

} // namespace

namespace NqHashSections {

void elementaryFunctions(const Taker& take) {
    NqDraws draws(1);
    NqChecksum checksum;
    for (unsigned i = 0; i < 20000; ++i) {
        const double x = draws.within(-7.0, 7.0);
        const double y = draws.within(0.0, 3.0);
        for (const double value : {std::sin(x), std::cos(x), std::atan2(x, y), std::acos(x / 7.0),
                                   std::pow(y, x), std::log(y), std::exp(x), std::tan(x)}) {
            checksum.add(value);
        }
    }
    take("elementary functions of the C library", checksum, true);
}

void expressions(const std::string& project, const Taker& take) {
    const auto evaluate = [&](const std::string& name, const auto& read) {
        NqChecksum checksum;
        NqExpressionContainer expression;
        const bool isComplete = read(expression);
        checksum.add(expression.value());
        take("expression " + name, checksum, isComplete);
    };
    evaluate("arm7.weights.xml", [&](NqExpressionContainer& expression) {
        return NqXmlDocument::readFile(project + "/models/arm7.weights.xml", expression);
    });
    NqDraws draws(4);
    const auto operate = [&](const std::string& name, const std::string& operands) {
        evaluate(name, [&](NqExpressionContainer& expression) {
            return NqXmlDocument::readString(inElement("expressionContainer", inElement(name, operands)),
                                             expression);
        });
    };
    constexpr unsigned rows = 300;
    for (const char* name :
         {"elementInverse", "negative", "sine", "cosine", "elementLog", "transpose", "elementLogN"}) {
        operate(name, matrix(draws, rows, 0.01, 9.0));
    }
    const auto twoMatrices = [&] {
        const std::string left = matrix(draws, rows, -2.0, 2.0);
        return left + matrix(draws, rows, -2.0, 2.0);
    };
    for (const char* name :
         {"plus", "minus", "lessThan", "greaterThan", "lessThanOrEqualTo", "greaterThanOrEqualTo"}) {
        operate(name, twoMatrices());
    }
    for (const char* name : {"and", "or"}) {
        const std::string left = inElement("lessThan", twoMatrices());
        operate(name, left + inElement("lessThan", twoMatrices()));
    }
    for (const char* name : {"elementPow", "elementRoot", "elementLogN"}) {
        const std::string left = matrix(draws, rows, 0.01, 9.0);
        operate(name, left + inElement("scalarConstant", "2.7"));
    }
    const std::string left = matrix(draws, 2, -1.0, 1.0);
    operate("times", left + matrix(draws, 2, -1.0, 1.0));
}

void filters(const Taker& take) {
    NqChecksum point, scalar, rotation, general, acceleration;
    NqDraws draws(5);
    for (unsigned i = 0; i < 6000; ++i) {
        const unsigned mode = i % 3;
        const double exponent = draws.within(0.2, 1.2);
        const double timeStep = draws.within(0.001, 0.02);
        const auto setUp = [&](NqBaseMotionFilter& filter) {
            filter.setFilteringMode(mode);
            filter.setExponent(exponent);
            filter.setSpeedFactor(draws.within(0.5, 1.5));
        };
        const auto near = [&](const NqCoordinateSystemTransformation& frame) {
            const NqVector way = draws.vector(0.05);
            const double angle = draws.within(-0.1, 0.1);
            return frame * NqCoordinateSystemTransformation(way, NqOrientation(angle, draws.vector()));
        };
        const NqCoordinateSystemTransformation from = draws.frame();
        const NqCoordinateSystemTransformation to = i % 5 < 3 ? near(from) : draws.frame();
        const NqGeneralMotion desired = draws.motion(0.3);
        const NqGeneralMotion previous = draws.motion();
        NqGeneralMotion motion;
        NqVector vector;
        double number = 0.0;

        NqPointMotionFilter pointFilter;
        setUp(pointFilter);
        pointFilter.calculate3DVelocity(from.translation(), to.translation(), desired.linear(),
                                        previous.linear(), timeStep, vector);
        point.add(vector);
        pointFilter.filter3DVelocity(desired.linear(), previous.linear(), timeStep, vector);
        point.add(vector);

        NqScalarMotionFilter scalarFilter;
        setUp(scalarFilter);
        scalarFilter.calculateVelocity(from.translation().x(), to.translation().x(), desired[0], previous[0],
                                       timeStep, number);
        scalar.add(number);

        NqRotationMotionFilter rotationFilter;
        setUp(rotationFilter);
        rotationFilter.calculateRotationMotion(from.orientation(), to.orientation(), desired.angular(),
                                               previous.angular(), timeStep, vector, i % 2 == 0, i % 7 != 0);
        rotation.add(vector);

        NqGeneralMotionFilter generalFilter;
        setUp(generalFilter);
        generalFilter.setOffset(draws.vector(0.2));
        generalFilter.calculateGeneralMotion(from, to, desired, previous, timeStep, motion, i % 2 == 0,
                                             i % 4 == 0, i % 7 != 0);
        general.add(motion);
        generalFilter.filterVelocity(desired, previous, timeStep, motion);
        general.add(motion);

        NqGeneralMotionAccFilter accelerationFilter;
        accelerationFilter.setOffset(draws.vector(0.2));
        accelerationFilter.calculateGeneralAccMotion(from, to, desired, timeStep, motion);
        acceleration.add(motion);
    }
    take("point filter", point, true);
    take("scalar filter", scalar, true);
    take("rotation filter", rotation, true);
    take("general filter", general, true);
    take("acceleration filter", acceleration, true);
}

void profileTool(const Taker& take) {
    NqDraws draws(6);
    NqChecksum checksum;
    for (unsigned i = 0; i < 20000; ++i) {
        NqTrapezoidalProfileTool tool;
        const double acceleration = draws.within(0.1, 5.0);
        const double velocity = draws.within(0.1, 2.0);
        tool.setParameters(acceleration, velocity, draws.within(-velocity, velocity));
        tool.setSpeedFactor(draws.within(0.5, 2.0));
        const double distance = draws.within(-2.0, 2.0);
        double time = 0.0;
        double cruise = 0.0;
        tool.computeMinimumTime(distance, time);
        checksum.add(time);
        checksum.add(
            std::uint64_t{tool.computeProfileVelocity(distance, time * draws.within(1.0, 3.0), cruise)});
        checksum.add(cruise);
    }
    take("profile tool", checksum, true);
}

void limitedSolvers(const Taker& take) {
    NqChecksum exact;
    NqChecksum nearest;
    NqDraws draws(7);
    NqLimitedVelocityTool tool;
    NqBoundedLeastSquares leastSquares;
    std::vector<double> rates;
    for (unsigned i = 0; i < 2000; ++i) {
        const unsigned n = 1 + draws.below(12);
        const unsigned m = draws.below(n + 1);
        NqReArray jacobian(m, n);
        for (unsigned row = 0; row < m; ++row) {
            jacobian[row] = draws.values(n);
        }
        NqReArray metric;
        metric = std::vector<double>(n, 1.0);
        const std::vector<double> gradient = draws.values(n);
        const std::vector<double> velocity = draws.values(m);
        std::vector<double> lower = draws.values(n);
        std::vector<double> upper = draws.values(n);
        for (unsigned j = 0; j < n; ++j) {
            lower[j] = -std::abs(lower[j]);
            upper[j] = std::abs(upper[j]);
        }
        tool.prepare(n, m);
        exact.add(std::uint64_t(tool.solve(jacobian, metric, gradient, velocity, lower, upper)));
        exact.add(tool.rates());
        exact.add(tool.scale());
        leastSquares.prepare(n);
        rates.assign(n, 0.0);
        const std::vector<double> wished = draws.values(n, 0.5);
        nearest.add(std::uint64_t{leastSquares.solve(
            jacobian, m, velocity, wished, std::vector<double>(n, 1.0), 0.05, lower, upper, rates)});
        nearest.add(rates);
    }
    take("limited solver", exact, true);
    take("bounded least squares", nearest, true);
}

} // namespace NqHashSections
