#include "NqSolverContest.h"

#include "NqAgreement.h"
#include "NqOwnPeer.h"

#include <nqControlCore/core/NqCoreVelocityControlTool.h>
#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>

namespace {

constexpr unsigned kJacobians = 16;
constexpr double kAlpha = 0.5;

/// The same numbers between -1 and 1 wherever this runs.
class Numbers {
public:
    double operator()() { return static_cast<double>(m_Random() >> 11) * 0x1p-52 - 1.0; }

private:
    std::mt19937_64 m_Random{20242};
};

} // namespace

NqSolverContest NqSolverContest::random(unsigned rows, unsigned columns) {
    Numbers numbers;
    std::vector<NqReArray> jacobians(kJacobians, NqReArray(rows, columns));
    for (NqReArray& jacobian : jacobians) {
        for (unsigned i = 0; i < rows; ++i) {
            std::generate(jacobian[i].begin(), jacobian[i].end(), std::ref(numbers));
        }
    }
    return {"solver alone, " + std::to_string(columns) + " joints, " + std::to_string(rows) + " rows",
            std::move(jacobians)};
}

NqSolverContest NqSolverContest::of(const NqBenchmarkCase& benchmarkCase) {
    NqOwnPeer own(benchmarkCase);
    std::vector<NqReArray> jacobians;
    for (unsigned step = 0; step < kJacobians; ++step) {
        own.kinematics(step);
        jacobians.push_back(own.jacobian());
    }
    NqSolverContest contest("solver alone, Jacobians of " + benchmarkCase.title(), std::move(jacobians));
    contest.m_KnownZeros = std::make_shared<NqJacobianState>();
    contest.m_KnownZeros->setUseSparseNullSpace(true);
    contest.m_KnownZeros->setSparsity(own.sparsity());
    return contest;
}

NqSolverContest::NqSolverContest(std::string title, std::vector<NqReArray> jacobians)
    : m_Title(std::move(title)), m_Jacobians(std::move(jacobians)), m_Gradient(m_Jacobians.front().columns()),
      m_Velocity(m_Jacobians.front().rows()), m_Tool(std::make_shared<NqCoreVelocityControlTool>()) {
    Numbers numbers;
    std::generate(m_Gradient.begin(), m_Gradient.end(), std::ref(numbers));
    std::generate(m_Velocity.begin(), m_Velocity.end(), std::ref(numbers));
    m_Metric = std::vector<double>(m_Gradient.size(), 1.0);
#ifdef NQ_HAVE_EIGEN
    const auto n = static_cast<Eigen::Index>(m_Gradient.size());
    const auto m = static_cast<Eigen::Index>(m_Velocity.size());
    using Method = NqEigenSolver::Method;
    for (const Method method : {Method::PartialPivoting, Method::FullPivoting, Method::Orthogonal}) {
        m_Solvers.push_back(NqEigenSolver::make(method, m, n));
    }
    if (auto fixed = NqEigenSolver::makeFixed(m, n)) {
        m_Solvers.push_back(std::move(fixed));
    }
    for (const NqReArray& jacobian : m_Jacobians) {
        Eigen::MatrixXd& copy = m_EigenJacobians.emplace_back(m, n);
        for (Eigen::Index i = 0; i < m; ++i) {
            copy.row(i) =
                Eigen::Map<const Eigen::RowVectorXd>(jacobian[static_cast<std::size_t>(i)].data(), n);
        }
    }
    m_EigenGradient = Eigen::Map<const Eigen::VectorXd>(m_Gradient.data(), n);
    m_EigenVelocity = Eigen::Map<const Eigen::VectorXd>(m_Velocity.data(), m);
    m_EigenMetric = Eigen::VectorXd::Ones(n);
#endif
}

void NqSolverContest::solve(unsigned step, bool hasKnownZeros) {
    m_Tool->calcJointRates(hasKnownZeros ? m_KnownZeros.get() : nullptr,
                           m_Jacobians[step % m_Jacobians.size()], m_Metric, m_Gradient, kAlpha, m_Velocity,
                           static_cast<unsigned>(m_Gradient.size()), m_Rates, m_NullSpaceRates,
                           m_Determinant);
}

#ifdef NQ_HAVE_EIGEN

void NqSolverContest::solve(NqEigenSolver& solver, unsigned step) const {
    solver.solve(m_EigenJacobians[step % m_EigenJacobians.size()], m_EigenMetric, m_EigenGradient, kAlpha,
                 m_EigenVelocity);
}

bool NqSolverContest::check() {
    for (unsigned step = 0; step < m_Jacobians.size(); ++step) {
        solve(step);
        const auto n = static_cast<Eigen::Index>(m_Rates.size());
        const Eigen::Map<const Eigen::VectorXd> rates(m_Rates.data(), n);
        const Eigen::Map<const Eigen::VectorXd> nullSpaceRates(m_NullSpaceRates.data(), n);
        const double bound = NqAgreement::tolerance() * std::max(1.0, rates.lpNorm<Eigen::Infinity>());
        for (const auto& solver : m_Solvers) {
            solve(*solver, step);
            const double difference =
                std::max((rates - solver->rates()).lpNorm<Eigen::Infinity>(),
                         (nullSpaceRates - solver->nullSpaceRates()).lpNorm<Eigen::Infinity>());
            if (!(difference <= bound)) {
                std::fprintf(stderr, "%s: %s differs from ours by %.1e\n", m_Title.c_str(),
                             solver->name().c_str(), difference);
                return false;
            }
        }
    }
    return true;
}

#else

bool NqSolverContest::check() {
    return true;
}

#endif

void NqSolverContest::addTo(NqBenchmarkRun& run) {
    const unsigned steps = 4 * kJacobians;
    run.add(m_Title, "ours", steps, [this](unsigned count) {
        for (unsigned step = 0; step < count; ++step) {
            solve(step);
        }
    });
    if (m_KnownZeros) {
        run.add(m_Title, "ours, known zeros", steps, [this](unsigned count) {
            for (unsigned step = 0; step < count; ++step) {
                solve(step, true);
            }
        });
    }
#ifdef NQ_HAVE_EIGEN
    for (const auto& solver : m_Solvers) {
        run.add(m_Title, solver->name(), steps, [this, &solver](unsigned count) {
            for (unsigned step = 0; step < count; ++step) {
                solve(*solver, step);
            }
        });
    }
#endif
}
