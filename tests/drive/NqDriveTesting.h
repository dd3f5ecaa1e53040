#pragma once

#include "support/NqTesting.h"

#include <NqDriveRun.h>

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

    unsigned slowed = 0, reached = 0;
};

class NqDriveFixture : public testing::Test {
protected:
    /// Loads files, those without a folder from that of the models.
    void load(const std::string& robot, const std::string& effectors, std::vector<const char*> arguments) {
        const auto place = [](const std::string& file) {
            return file.starts_with('/') ? file : nqModelFile("/" + file);
        };
        const std::string model = place(robot), endEffectors = place(effectors);
        arguments.insert(arguments.begin(), {"nqDrive", model.c_str(), endEffectors.c_str()});
        NqDriveOptions options;
        std::string complaint;
        ASSERT_EQ(
            NqDriveOptions::parse(static_cast<int>(arguments.size()), arguments.data(), options, complaint),
            NqDriveOptions::Request::Run)
            << complaint;
        task = NqDriveTask();
        isLoaded = task.load(options);
    }

    /// The same with end-effectors that are elements of the vector.
    void loadPoints(const std::string& robot, const std::string& points, std::vector<const char*> arguments) {
        load(robot,
             writeTemporary("effectors.xml", "<endEffectorVector xmlns=\"http://nq.example/namespace/ct#\">" +
                                                 points + "</endEffectorVector>"),
             std::move(arguments));
    }

    void expectRefused(const std::string& words) {
        EXPECT_FALSE(isLoaded);
        EXPECT_NE(task.complaint().find(words), std::string::npos) << task.complaint();
    }

    /// Of what was loaded, driven until all way points are reached. Throws, and so ends the test, otherwise.
    NqDriveRun reachAll() {
        if (!isLoaded) {
            throw std::runtime_error(task.complaint());
        }
        NqDriveRun run(task);
        run.execute(watcher);
        if (!run.record().isReached()) {
            throw std::runtime_error(run.record().verdict);
        }
        return run;
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
