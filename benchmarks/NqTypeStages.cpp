#include "NqTypeStages.h"

#include "endeffector/NqEndEffectorSamples.h"

#include <benchmark/benchmark.h>

namespace {

/// A constraint of some type in a control loop of its own.
class TypeLoop {
public:
    TypeLoop(std::shared_ptr<const NqBenchmarkCase> benchmarkCase, const NqEndEffectorKind& kind,
             const NqTestModel& model)
        : m_Case(std::move(benchmarkCase)), m_EndEffector(kind.make(model)), m_Position(m_Case->joints()),
          m_Velocity(m_Case->joints()), m_State(m_Case->manipulator()), m_Still(m_EndEffector->doc()) {
        setState(m_Case->steps() / 2);
        m_EndEffector->calculatePlacement(m_Case->manipulator(), m_State, m_Target);
        setState(0);
    }

    void insertRows(unsigned step) {
        setState(step);
        m_EndEffector->insertJacobianComponent(m_Case->manipulator(), 0, m_EndEffector->relativeLinkData(),
                                               true, m_State, m_Jacobian);
        benchmark::DoNotOptimize(m_Jacobian[0].data());
    }

    void filter(unsigned) {
        m_EndEffector->filterEndEffectorVelocity(m_Case->manipulator(), m_Target, m_Still, m_Still,
                                                 NqBenchmarkCase::timeStep(), m_State, m_Filtered);
    }

    void calculateError(unsigned) {
        m_EndEffector->calculateEndEffectorError(m_Case->manipulator(), m_Target, m_State, m_Error);
    }

private:
    void setState(unsigned step) {
        const NqBenchmarkCase::Pose& pose = m_Case->pose(step);
        m_Position.jointPositions() = pose.positions;
        m_Velocity.jointVelocities() = pose.velocities;
        m_State.setPositionState(m_Position);
        m_State.setVelocityState(m_Velocity);
    }

    std::shared_ptr<const NqBenchmarkCase> m_Case;
    std::unique_ptr<NqEndEffector> m_EndEffector;
    NqPositionState m_Position;
    NqVelocityState m_Velocity;
    NqManipulatorActiveState m_State;
    NqEndEffectorPlacement m_Target;
    NqReArray m_Jacobian;
    NqXmlRealVector m_Still, m_Filtered, m_Error;
};

} // namespace

bool NqTypeStages::add(std::shared_ptr<const NqBenchmarkCase> benchmarkCase, const std::string& link,
                       const std::string& secondLink, NqBenchmarkRun& run) {
    if (!benchmarkCase) {
        return false;
    }
    const std::string& title = benchmarkCase->title();
    const std::string task = title.substr(0, title.find(',')) + ": each type";
    const std::shared_ptr<const NqIndividualManipulator> manipulator(benchmarkCase,
                                                                     &benchmarkCase->manipulator());
    const NqTestModel model{title, manipulator, link, secondLink, secondLink};
    for (const NqEndEffectorKind& kind : nqEndEffectorKinds()) {
        const auto loop = std::make_shared<TypeLoop>(benchmarkCase, kind, model);
        const auto addStage = [&](const char* name, void (TypeLoop::*stage)(unsigned)) {
            run.add(
                task, kind.name, benchmarkCase->steps(),
                [loop, stage](unsigned steps) {
                    for (unsigned k = 0; k < steps; ++k) {
                        ((*loop).*stage)(k);
                    }
                },
                name);
        };
        addStage("state, rows", &TypeLoop::insertRows);
        addStage("filter", &TypeLoop::filter);
        addStage("error", &TypeLoop::calculateError);
    }
    return true;
}
