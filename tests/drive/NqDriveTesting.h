#pragma once

#include "support/NqTestFiles.h"

#include <NqDriveRun.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <stdexcept>

using Outcome = NqDriveRecord::Outcome;

inline std::string writeTemporary(const std::string& name, const std::string& text) {
    const std::string file = testing::TempDir() + name;
    std::ofstream(file) << text;
    return file;
}

inline std::string pointXml(const std::string& link, const char* point, double speed, double acceleration) {
    return "<pointEndEffector><linkIdentifier>" + link + "</linkIdentifier><pointMotionFilter><threshold>" +
           std::to_string(speed) + "</threshold><accelerationThreshold>" + std::to_string(acceleration) +
           "</accelerationThreshold><decelerationThreshold>" + std::to_string(acceleration) +
           "</decelerationThreshold></pointMotionFilter><point>" + point + "</point></pointEndEffector>";
}

/// Checks at every step what must always hold.
class Watcher : public NqDriveRun::Watcher {
public:
    void stepDone(const NqDriveRun& run) override {
        const NqControlLoop& loop = run.loop();
        for (unsigned j = 0; j < loop.joints(); ++j) {
            const NqJointDescription& joint = run.record().joints[j].description;
            ASSERT_LE(std::abs(loop.rates()[j]), joint.rateLimit() * (1.0 + 1.0e-12));
            ASSERT_LE(loop.positions()[j], joint.upperPositionLimit() + 1.0e-12);
            ASSERT_GE(loop.positions()[j], joint.lowerPositionLimit() - 1.0e-12);
        }
        ASSERT_GE(loop.slowing(), 0.0);
        ASSERT_LE(loop.slowing(), 1.0);
        slowed += loop.slowing() < 0.98;
    }
    void wayPointReached(const NqDriveRun&) override { ++reached; }

    unsigned slowed = 0;
    unsigned reached = 0;
};

class NqDriveFixture : public testing::Test {
protected:
    /// Loads robot and end-effectors; `points` are elements of the vector.
    void load(const std::string& robot, const std::string& points, std::vector<const char*> arguments) {
        loadFiles(
            robot,
            writeTemporary("effectors.xml", "<endEffectorVector xmlns=\"http://nq.example/namespace/ct#\">" +
                                                points + "</endEffectorVector>"),
            std::move(arguments));
    }

    /// The same with end-effectors of the models folder.
    void loadModel(const std::string& robot, const std::string& effectors,
                   std::vector<const char*> arguments) {
        loadFiles(robot, nqModelFile("/" + effectors), std::move(arguments));
    }

    void loadFiles(const std::string& robot, const std::string& effectors,
                   std::vector<const char*> arguments) {
        const std::string model = nqModelFile("/" + robot);
        arguments.insert(arguments.begin(), {"nqDrive", model.c_str(), effectors.c_str()});
        NqDriveOptions options;
        std::string complaint;
        ASSERT_EQ(
            NqDriveOptions::parse(static_cast<int>(arguments.size()), arguments.data(), options, complaint),
            NqDriveOptions::Request::Run)
            << complaint;
        task = NqDriveTask();
        isLoaded = task.load(options);
    }

    /// Of what was loaded. Throws, and so ends the test, where that was refused.
    NqDriveRun loadedRun() {
        return isLoaded ? NqDriveRun(task) : throw std::runtime_error(task.complaint());
    }

    /// Throws, and so ends the test, unless all way points are reached.
    void reachAll(NqDriveRun& run) {
        run.execute(watcher);
        if (run.record().outcome != NqDriveRecord::Outcome::Reached) {
            throw std::runtime_error(run.record().verdict);
        }
    }

    /// How many rows were recorded on the way to the first way point.
    static std::size_t rowsOfFirstWay(const NqDriveRun& run) {
        std::size_t row = 0;
        while (run.recorder().wayPoint(row) == 1.0) {
            ++row;
        }
        return row;
    }

    NqDriveTask task;
    bool isLoaded = false;
    Watcher watcher;
};
