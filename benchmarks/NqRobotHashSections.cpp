#include "NqHashSections.h"

#include "NqDraws.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>
#include <nqControlLoop/NqControlLoop.h>
#include <nqControlLoop/NqPostureSearch.h>

#include <algorithm>
#include <filesystem>

namespace {

using Mode = NqEndEffectorRelativeLinkData::RelativeMode;

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
        checksum.add(placement);
        const unsigned rows = endEffector.doc();
        checksum.add(std::uint64_t{rows});
        endEffector.insertJacobianComponent(robot, 0, relative, isBaseFixed, state, jacobian);
        checksum.add(jacobian);
        endEffector.insertSparsityComponent(robot, 0, relative, isBaseFixed, sparsity);
        for (const std::vector<bool>& row : sparsity) {
            for (const bool bit : row) {
                checksum.add(std::uint64_t{bit});
            }
        }
        weights.setToZeros(rows, rows);
        endEffector.insertErrorWeightComponent(0, weights);
        checksum.add(weights);
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

} // namespace

namespace NqHashSections {

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
