#pragma once

#include "NqBenchmarkRun.h"

#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <memory>
#include <string>
#include <vector>

#ifdef NQ_HAVE_EIGEN
#include "NqEigenSolver.h"
#endif

class NqBenchmarkCase;
class NqCoreVelocityControlTool;
class NqJacobianState;

/// The solver alone, ours and those of Eigen, on some Jacobians of one size: null space, square system,
/// factoring, two solutions, determinant.
class NqSolverContest {
public:
    /// Full Jacobians drawn from a fixed seed.
    static NqSolverContest random(unsigned rows, unsigned columns);

    /// Those of a case, with their zeros.
    static NqSolverContest of(const NqBenchmarkCase& benchmarkCase);

    NqSolverContest(std::string title, std::vector<NqReArray> jacobians);

    /// False, with a line, where solutions differ from ours by more than NqAgreement::tolerance().
    bool check();
    void addTo(NqBenchmarkRun& run);

private:
    void solve(unsigned step, bool hasKnownZeros = false);

    std::string m_Title;
    std::vector<NqReArray> m_Jacobians;
    std::vector<double> m_Gradient;
    std::vector<double> m_Velocity;
    NqReArray m_Metric;
    std::shared_ptr<NqCoreVelocityControlTool> m_Tool;
    std::shared_ptr<NqJacobianState> m_KnownZeros; ///< null for Jacobians without zeros
    std::vector<double> m_Rates;
    std::vector<double> m_NullSpaceRates;
    double m_Determinant = 0.0;
#ifdef NQ_HAVE_EIGEN
    void solve(NqEigenSolver& solver, unsigned step) const;

    std::vector<std::shared_ptr<NqEigenSolver>> m_Solvers;
    std::vector<Eigen::MatrixXd> m_EigenJacobians;
    Eigen::VectorXd m_EigenGradient;
    Eigen::VectorXd m_EigenVelocity;
    Eigen::VectorXd m_EigenMetric;
#endif
};
