#include "NqStages.h"

#include "NqOwnPeer.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/expression/NqExpressionContainer.h>
#include <nqControlCore/expression/NqExpressionDiagonalMatrix.h>
#include <nqControlCore/expression/NqExpressionTimes.h>
#include <nqControlCore/filter/NqGeneralMotionAccFilter.h>
#include <nqControlCore/filter/NqRotationMotionFilter.h>
#include <nqControlCore/filter/NqScalarMotionFilter.h>
#include <nqControlCore/filter/NqTrapezoidalProfileTool.h>
#include <nqControlCore/foundation/manipulator/NqGravitationalTorqueTool.h>
#include <nqControlCore/foundation/manipulator/NqMatrixDTool.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <benchmark/benchmark.h>

namespace {

/// Work of one step as work of many.
template <typename Step>
std::function<void(unsigned)> repeated(Step step) {
    return [step = std::move(step)](unsigned steps) mutable {
        for (unsigned k = 0; k < steps; ++k) {
            step(k);
        }
    };
}

/// A null space of the same Jacobian again and again; the copy, which is factored in place, counts.
struct NullSpace {
    NqReArray jacobian;
    NqReArray factors;
    NqReArray basis;
    std::vector<unsigned> indices;
    std::vector<unsigned> zeroStart;
    std::vector<unsigned> zeroEnd;
};

std::shared_ptr<NullSpace> makeNullSpace(const NqOwnPeer& peer) {
    auto made = std::make_shared<NullSpace>();
    const NqReArray& jacobian = peer.jacobian();
    made->jacobian = made->factors = jacobian;
    made->basis = NqReArray(jacobian.columns(), jacobian.columns() - jacobian.rows());
    made->indices.resize(jacobian.columns());
    NqReArray::calculateZeroStartIndices(peer.sparsity(), made->zeroStart, made->zeroEnd);
    return made;
}

/// What the mass of a robot asks for in each pose, the frames of all links included.
class MassStages {
public:
    explicit MassStages(const NqBenchmarkCase& benchmarkCase)
        : m_Manipulator(benchmarkCase.manipulator()), m_Own(benchmarkCase),
          m_Jacobian(3, benchmarkCase.joints()) {
        m_MomentumTool.setManipulator(m_Manipulator);
        m_GravityTool.setManipulator(m_Manipulator);
    }

    void frames(unsigned step) {
        m_Own.setState(step);
        benchmark::DoNotOptimize(
            m_Manipulator.linkByIndex(0)->linkFrameInSystem(m_Own.state().activePositionState()));
    }

    void centerOfMass(unsigned step) {
        m_Own.setState(step);
        NqManipulatorActivePositionState& positions = m_Own.state().activePositionState();
        const NqVector center = m_Manipulator.centerOfMass(positions);
        const double perMass = 1.0 / m_Manipulator.compositeMass();
        const auto momenta = m_Manipulator.linearMomentaOfUnitRates(positions);
        for (unsigned i = 0; i < 3; ++i) {
            for (unsigned j = 0; j < momenta.size(); ++j) {
                m_Jacobian[i][j] = perMass * momenta[j][i];
            }
        }
        benchmark::DoNotOptimize(center);
        benchmark::DoNotOptimize(m_Jacobian[0].data());
    }

    void momentum(unsigned step) {
        m_Own.setState(step);
        const NqCompositeMoments& moments = m_MomentumTool.compositeMoments(m_Own.state());
        m_MomentumTool.momentumMatrix(moments, moments.baseOrientation, m_Momenta);
        benchmark::DoNotOptimize(m_Manipulator.linearMomentum(m_Own.state()));
        benchmark::DoNotOptimize(m_Manipulator.angularMomentum(m_Own.state()));
        benchmark::DoNotOptimize(m_Momenta[0].data());
    }

    void gravityTorques(unsigned step) {
        m_Own.setState(step);
        m_GravityTool.jointTorques(m_Own.state(), m_Torques);
        benchmark::DoNotOptimize(m_Torques.data());
    }

private:
    const NqIndividualManipulator& m_Manipulator;
    NqOwnPeer m_Own;
    NqMatrixDTool m_MomentumTool;
    NqGravitationalTorqueTool m_GravityTool;
    NqReArray m_Jacobian, m_Momenta;
    std::vector<double> m_Torques;
};

} // namespace

void NqStages::addControlStep(const NqBenchmarkCase& benchmarkCase, NqBenchmarkRun& run) {
    const std::string task = benchmarkCase.title() + ": our stages";
    const unsigned steps = benchmarkCase.steps();
    const auto own = std::make_shared<NqOwnPeer>(benchmarkCase);
    own->step(0);
    const auto add = [&](const char* name, auto step) { run.add(task, name, steps, repeated(step)); };
    const auto addMember = [&](const char* name, void (NqOwnPeer::*stage)()) {
        add(name, [own, stage](unsigned) { ((*own).*stage)(); });
    };

    add("control step", [own](unsigned k) { own->step(k); });
    add("set positions and rates", [own](unsigned k) { own->setState(k); });
    const auto masses = std::make_shared<MassStages>(benchmarkCase);
    const auto addMass = [&](const char* name, void (MassStages::*stage)(unsigned)) {
        add(name, [masses, stage](unsigned k) { ((*masses).*stage)(k); });
    };
    addMass("set positions and rates, frames of all links", &MassStages::frames);
    addMass("  with centre of mass and its Jacobian", &MassStages::centerOfMass);
    addMass("  with momentum and its matrix", &MassStages::momentum);
    addMass("  with gravity torques", &MassStages::gravityTorques);
    addMember("Jacobian (frames are there)", &NqOwnPeer::insertJacobian);
    addMember("sparsity", &NqOwnPeer::insertSparsity);
    addMember("velocity (link velocities are there)", &NqOwnPeer::calculateVelocity);
    addMember("commanded velocity (filter)", &NqOwnPeer::filter);
    addMember("error", &NqOwnPeer::calculateError);
    addMember("both at once", &NqOwnPeer::filterAndCalculateError);
    addMember("solve", &NqOwnPeer::solve);
    if (benchmarkCase.tasks().size() > 1) {
        const auto sparse = std::make_shared<NqOwnPeer>(benchmarkCase, NqOwnPeer::NullSpace::Sparse);
        sparse->step(0);
        add("solve, sparse null space", [sparse](unsigned) { sparse->solve(); });
    }

    const auto nullSpace = makeNullSpace(*own);
    const auto rows = nullSpace->jacobian.rows();
    add("null space", [nullSpace, rows](unsigned) {
        nullSpace->factors = nullSpace->jacobian;
        nullSpace->factors.nullSpace(nullSpace->basis, rows, nullSpace->indices);
    });
    add("null space, sparse", [nullSpace, rows](unsigned) {
        nullSpace->factors = nullSpace->jacobian;
        nullSpace->factors.nullSpaceSparse(nullSpace->basis, rows, nullSpace->indices, nullSpace->zeroStart,
                                           nullSpace->zeroEnd);
    });

    const auto state = std::make_shared<NqJacobianState>();
    add("Jacobian state: null space and copies",
        [state, own](unsigned) { state->setJacobian(own->jacobian()); });

    struct RowsB {
        NqJacobianState state;
        NqCoreVelocityControlTool tool;
        NqReArray rows;
        std::vector<double> gradient, velocity, rates, nullSpaceRates;
        double determinant = 0.0;
    };
    const auto b = std::make_shared<RowsB>();
    b->state.setJacobian(own->jacobian());
    b->state.nullSpaceArray().transpose(b->rows);
    b->state.nullSpaceArray().leftTransposeTransform(benchmarkCase.gradient(), b->gradient);
    b->velocity = own->command();
    add("solve with rows B", [b, &benchmarkCase](unsigned) {
        b->tool.calcJointRatesAB(&b->state, b->rows, b->gradient, NqBenchmarkCase::alpha(), b->velocity,
                                 benchmarkCase.joints(), b->rates, b->nullSpaceRates, b->determinant);
    });
}

void NqStages::addFilters(NqBenchmarkRun& run) {
    constexpr unsigned steps = 1000;
    constexpr double timeStep = 0.001;
    const std::string task = "motion filters: one step";
    const NqCoordinateSystemTransformation actual(NqVector(0.1, 0.2, 0.3),
                                                  NqOrientation(0.4, {1.0, 2.0, 3.0}));
    const NqCoordinateSystemTransformation desired(NqVector(0.4, -0.1, 0.5),
                                                   NqOrientation(0.9, {-1.0, 0.5, 2.0}));
    const NqGeneralMotion previous({0.4, -0.3, 0.1}, {0.2, -0.5, 0.3});

    run.add(task, "frame", steps, repeated([=, filter = NqGeneralMotionFilter()](unsigned) {
                NqGeneralMotion out;
                filter.calculateGeneralMotion(actual, desired, {}, previous, timeStep, out, true, false,
                                              true);
                benchmark::DoNotOptimize(out);
            }));
    run.add(task, "orientation", steps, repeated([=, filter = NqRotationMotionFilter()](unsigned) {
                NqVector out;
                filter.calculateRotationMotion(actual.orientation(), desired.orientation(), {},
                                               previous.angular(), timeStep, out, false, true);
                benchmark::DoNotOptimize(out);
            }));
    run.add(task, "point", steps, repeated([=, filter = NqPointMotionFilter()](unsigned) {
                NqVector out;
                filter.calculate3DVelocity(actual.translation(), desired.translation(), {}, previous.linear(),
                                           timeStep, out);
                benchmark::DoNotOptimize(out);
            }));
    run.add(task, "number", steps, repeated([=, filter = NqScalarMotionFilter()](unsigned) {
                double out = 0.0;
                filter.calculateVelocity(0.1, 0.7, 0.0, 0.3, timeStep, out);
                benchmark::DoNotOptimize(out);
            }));
    run.add(task, "frame, acceleration", steps, repeated([=, filter = NqGeneralMotionAccFilter()](unsigned) {
                NqGeneralMotion out;
                filter.calculateGeneralAccMotion(actual, desired, {}, timeStep, out);
                benchmark::DoNotOptimize(out);
            }));
    run.add(task, "least time of a trapezoidal profile", steps, repeated([](unsigned) {
                NqTrapezoidalProfileTool tool;
                double time = 0.0;
                tool.setParameters(2.0, 0.5, 0.1);
                tool.computeMinimumTime(0.7, time);
                benchmark::DoNotOptimize(time);
            }));
}

void NqStages::addExpressions(NqBenchmarkRun& run) {
    constexpr unsigned evaluations = 100;
    constexpr unsigned nodes = 15;
    NqExpressionDiagonalMatrix matrix;
    matrix.assign(7, 7, 1.5);
    std::unique_ptr<NqExpressionElement> product(new NqExpressionDiagonalMatrix(matrix));
    for (unsigned levels = 3; levels > 0; --levels) {
        auto twice = std::make_unique<NqExpressionTimes>();
        twice->setLeft(*product);
        twice->setRight(*product);
        product = std::move(twice);
    }
    const auto expression = std::make_shared<NqExpressionContainer>();
    expression->setTopElement(*product);
    run.add("expression: product of eight 7 x 7 matrices", "one of its 15 nodes", evaluations * nodes,
            [expression](unsigned steps) {
                for (unsigned k = 0; k < steps; k += nodes) {
                    benchmark::DoNotOptimize(expression->value());
                }
            });
}

void NqStages::addXml(NqBenchmarkRun& run) {
    const auto list = std::make_shared<NqEndEffectorVector>();
    NqEndEffectorTypes::forEach([&]<typename EndEffector>() { list->pushBack(EndEffector()); });
    std::string text;
    NqXmlDocument::writeString(text, *list);
    const std::string task =
        "XML of a list with " + std::to_string(list->size()) + " constraints, one of each type";
    run.add(task, "write to memory", 20, repeated([list](unsigned) {
                std::string written;
                NqXmlDocument::writeString(written, *list);
                benchmark::DoNotOptimize(written);
            }));
    run.add(task, "read from memory", 20, repeated([text](unsigned) {
                NqEndEffectorVector read;
                NqXmlDocument::readString(text, read, "benchmark");
                benchmark::DoNotOptimize(read);
            }));
}
