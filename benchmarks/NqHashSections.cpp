#include "NqHashSections.h"

#include "NqDraws.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>
#include <nqControlCore/filter/NqGeneralMotionFilter.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>
#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlLoop/NqControlLoop.h>
#include <nqControlLoop/NqPostureSearch.h>

#include <algorithm>
#include <filesystem>

namespace {

using Mode = NqEndEffectorRelativeLinkData::RelativeMode;

void add(NqChecksum& checksum, const NqVector& vector) {
    checksum.add(vector.x());
    checksum.add(vector.y());
    checksum.add(vector.z());
}
void add(NqChecksum& checksum, const NqGeneralMotion& motion) {
    add(checksum, motion.linear());
    add(checksum, motion.angular());
}
void add(NqChecksum& checksum, const NqReArray& matrix) {
    checksum.add(matrix.size());
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        checksum.add(matrix[i]);
    }
}
void add(NqChecksum& checksum, const NqEndEffectorPlacement& placement) {
    add(checksum, placement.coordSysXForm().translation());
    double q0, q1, q2, q3;
    placement.coordSysXForm().orientation().getQuaternion(q0, q1, q2, q3);
    checksum.add(std::vector{q0, q1, q2, q3});
    checksum.add(placement.dataVector().values());
}

void draw(NqDraws& draws, bool movesBase, NqManipulatorActiveState& state, unsigned joints) {
    NqPositionState position(draws.values(joints));
    NqVelocityState velocity(draws.values(joints));
    NqAccelerationState acceleration(draws.values(joints));
    if (movesBase) {
        position.setBaseFrame(draws.frame());
        velocity.setBaseMotion(draws.motion());
        acceleration.setBaseMotion(draws.motion());
    }
    state.setPositionState(position);
    state.setVelocityState(velocity);
    state.setAccelerationState(acceleration);
}

/// Asks an end-effector for everything, in some states.
void ask(const NqIndividualManipulator& robot, NqEndEffector& endEffector, NqChecksum& checksum) {
    NqDraws draws(3);
    NqManipulatorActiveState state(robot);
    NqReArray jacobian;
    NqReArray weights;
    NqEndEffector::SparsityDescription sparsity;
    NqXmlRealVector result;
    for (unsigned i = 0; i < 60; ++i) {
        NqEndEffectorRelativeLinkData relative;
        relative.setRelativeMode(static_cast<Mode>(i % 3));
        relative.setRelativeLinkID("table");
        endEffector.setRelativeLinkData(relative);
        const bool isBaseFixed = i % 2 == 0;
        const NqCoordinateSystemTransformation offset = draws.frame();
        endEffector.setUseExternalOffset(i % 4 == 3);
        endEffector.setExternalOffsetPointer(&offset);
        draw(draws, !isBaseFixed, state, robot.numberOfJoints());

        NqEndEffectorPlacement placement;
        endEffector.calculatePlacement(robot, state, placement);
        add(checksum, placement);
        const unsigned rows = endEffector.doc();
        checksum.add(std::uint64_t{rows});
        endEffector.insertJacobianComponent(robot, 0, relative, isBaseFixed, state, jacobian);
        add(checksum, jacobian);
        endEffector.insertSparsityComponent(robot, 0, relative, isBaseFixed, sparsity);
        for (const std::vector<bool>& row : sparsity) {
            for (const bool bit : row) {
                checksum.add(std::uint64_t{bit});
            }
        }
        weights.setToZeros(rows, rows);
        endEffector.insertErrorWeightComponent(0, weights);
        add(checksum, weights);
        endEffector.calculateVelocity(robot, state, result, 0);
        checksum.add(result.values());
        endEffector.calculateAcceleration(robot, state, result, 0);
        checksum.add(result.values());

        NqEndEffectorPlacement target = placement;
        target.setCoordSysXForm(draws.frame());
        target.dataVector() = draws.values(target.dataVector().size());
        endEffector.calculateEndEffectorError(robot, target, state, result);
        checksum.add(result.values());
        const NqXmlRealVector desired(draws.values(rows));
        const NqXmlRealVector previous(draws.values(rows));
        result.assign(rows, 0.0);
        endEffector.filterEndEffectorVelocity(desired, previous, 0.01, result);
        checksum.add(result.values());
        endEffector.filterEndEffectorVelocity(robot, target, desired, previous, 0.01, state, result);
        checksum.add(result.values());
        checksum.add(endEffector.minimumTime(placement, target));
        checksum.add(endEffector.difference(placement, target));
    }
    endEffector.setExternalOffsetPointer(nullptr);
}

/// Drives a loop to places that it can reach, and to some that it can't.
void drive(const NqIndividualManipulator& robot, const NqEndEffectorVector& endEffectors,
           NqChecksum& checksum) {
    NqControlLoopSettings settings;
    settings.setTimeStep(0.005);
    const unsigned joints = robot.numberOfJoints();
    NqDraws draws(joints);
    std::vector<NqJointDescription> limits;
    std::vector<double> middle;
    for (unsigned j = 0; j < joints; ++j) {
        limits.push_back(robot.linkByIndex(j)->joint());
        const bool isLimited = limits[j].hasPositionLimits();
        middle.push_back(isLimited ? 0.5 * (limits[j].lowerPositionLimit() + limits[j].upperPositionLimit())
                                   : 0.0);
    }
    settings.setPosture(middle);
    NqControlLoop loop(robot, settings);
    loop.addEndEffectors(endEffectors);
    loop.setPositions(middle);
    NqManipulatorActiveState there(robot);
    NqEndEffectorPlacement target;
    for (unsigned way = 0; way < 8; ++way) {
        const double reach = way % 4 == 3 ? 3.0 : 0.9;
        std::vector<double> posture = middle;
        for (unsigned j = 0; j < joints; ++j) {
            const double room =
                limits[j].hasPositionLimits() ? limits[j].upperPositionLimit() - middle[j] : 1.0;
            posture[j] += draws.within(-reach, reach) * room;
        }
        there.setPositionState(NqPositionState(NqXmlRealVector(posture)));
        for (std::size_t e = 0; e < loop.endEffectors(); ++e) {
            loop.endEffector(e).calculatePlacement(robot, there, target);
            loop.setTarget(e, target, true);
        }
        for (unsigned step = 0; step < 120; ++step) {
            checksum.add(std::uint64_t{loop.step()});
            checksum.add(loop.positions());
            checksum.add(loop.rates());
            checksum.add(loop.errors());
            checksum.add(std::uint64_t{loop.status().kind});
            checksum.add(std::uint64_t{loop.status().joints.size()});
        }
        if (way == 5 && NqPostureSearch(loop).find(posture)) {
            checksum.add(posture);
            loop.goTo(posture);
        } else {
            loop.follow();
        }
        checksum.add(loop.condition());
    }
}

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

void constraints(const std::string& project, const Taker& take) {
    NqIndividualManipulator robot;
    const bool isRead = NqUrdfReader::readFile(project + "/tests/manipulator/models/named.urdf", robot);
    NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
        EndEffector endEffector;
        const std::string name(EndEffector::classToken().localName());
        NqChecksum checksum;
        const bool isComplete =
            isRead && NqXmlDocument::readFile(project + "/tests/golden/" + name + ".xml", endEffector);
        for (const unsigned mode : {0U, 1U, 2U}) {
            NqTargetKind::setProfile(endEffector, mode);
            ask(robot, endEffector, checksum);
        }
        take(name, checksum, isComplete);
    });
}

void expressions(const std::string& project, const Taker& take) {
    const auto evaluate = [&](const std::string& name, const auto& read) {
        NqChecksum checksum;
        NqExpressionContainer expression;
        const bool isComplete = read(expression);
        add(checksum, expression.value());
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
        add(point, vector);
        pointFilter.filter3DVelocity(desired.linear(), previous.linear(), timeStep, vector);
        add(point, vector);

        NqScalarMotionFilter scalarFilter;
        setUp(scalarFilter);
        scalarFilter.calculateVelocity(from.translation().x(), to.translation().x(), desired[0], previous[0],
                                       timeStep, number);
        scalar.add(number);

        NqRotationMotionFilter rotationFilter;
        setUp(rotationFilter);
        rotationFilter.calculateRotationMotion(from.orientation(), to.orientation(), desired.angular(),
                                               previous.angular(), timeStep, vector, i % 2 == 0, i % 7 != 0);
        add(rotation, vector);

        NqGeneralMotionFilter generalFilter;
        setUp(generalFilter);
        generalFilter.setOffset(draws.vector(0.2));
        generalFilter.calculateGeneralMotion(from, to, desired, previous, timeStep, motion, i % 2 == 0,
                                             i % 4 == 0, i % 7 != 0);
        add(general, motion);
        generalFilter.filterVelocity(desired, previous, timeStep, motion);
        add(general, motion);

        NqGeneralMotionAccFilter accelerationFilter;
        accelerationFilter.setOffset(draws.vector(0.2));
        accelerationFilter.calculateGeneralAccMotion(from, to, desired, timeStep, motion);
        add(acceleration, motion);
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

void loops(const std::string& project, const Taker& take) {
    std::vector<std::string> names;
    for (const auto& file : std::filesystem::directory_iterator(project + "/models")) {
        const std::string name = file.path().filename();
        if (name.ends_with(".endeffectors.xml")) {
            names.push_back(name);
        }
    }
    std::ranges::sort(names);
    for (const std::string& name : names) {
        const std::string models = project + "/models/";
        NqIndividualManipulator robot;
        NqEndEffectorVector endEffectors;
        NqChecksum checksum;
        const bool isComplete =
            NqUrdfReader::readFile(models + name.substr(0, name.find('.')) + ".urdf", robot) &&
            NqXmlDocument::readFile(models + name, endEffectors);
        if (isComplete) {
            drive(robot, endEffectors, checksum);
        }
        take("loop " + name, checksum, isComplete);
    }
}

} // namespace NqHashSections
