#include "NqEigenSolver.h"

#include "NqEigenNullSpaces.h"

#include <Eigen/LU>

namespace {

template <typename NullSpace>
class Solver : public NqEigenSolver {
    static constexpr int N = NullSpace::Columns;

public:
    Solver(const std::string& name, Eigen::Index rows, Eigen::Index columns)
        : NqEigenSolver(name), m_Rows(rows), m_NullSpace(rows, columns), m_System(columns, columns),
          m_Factors(columns), m_RightHandSides(columns, 2), m_Solutions(columns, 2) {}

    void solve(const Eigen::MatrixXd& jacobian, const Eigen::VectorXd& metric,
               const Eigen::VectorXd& gradient, double alpha,
               const Eigen::Ref<const Eigen::VectorXd>& velocity) override {
        const Eigen::Index m = m_Rows;
        const Eigen::Index freedom = m_System.rows() - m;
        const auto& basis = m_NullSpace.find(jacobian);
        m_System.topRows(m) = jacobian;
        m_System.bottomRows(freedom).noalias() = basis.transpose() * metric.asDiagonal();
        m_RightHandSides.col(0).head(m) = velocity;
        m_RightHandSides.col(1).head(m).setZero();
        m_RightHandSides.col(0).tail(freedom).noalias() = basis.transpose() * gradient;
        m_RightHandSides.col(0).tail(freedom) *= -alpha;
        m_RightHandSides.col(1).tail(freedom) = m_RightHandSides.col(0).tail(freedom);
        m_Factors.compute(m_System);
        m_Solutions.noalias() = m_Factors.solve(m_RightHandSides);
        m_Determinant = m_Factors.determinant();
    }

    Eigen::VectorXd rates() const override { return m_Solutions.col(0); }
    Eigen::VectorXd nullSpaceRates() const override { return m_Solutions.col(1); }

private:
    Eigen::Index m_Rows;
    NullSpace m_NullSpace;
    Eigen::Matrix<double, N, N> m_System;
    Eigen::PartialPivLU<Eigen::Matrix<double, N, N>> m_Factors;
    Eigen::Matrix<double, N, 2> m_RightHandSides;
    Eigen::Matrix<double, N, 2> m_Solutions;
};

template <typename NullSpace>
std::unique_ptr<NqEigenSolver> made(const char* name, Eigen::Index rows, Eigen::Index columns) {
    return std::make_unique<Solver<NullSpace>>(name, rows, columns);
}

template <int Rows, int Columns>
std::unique_ptr<NqEigenSolver> madeFixed() {
    return made<NqPartialPivotNullSpace<Rows, Columns>>("Eigen partial pivoting, fixed size", Rows, Columns);
}

} // namespace

std::unique_ptr<NqEigenSolver> NqEigenSolver::make(Method method, Eigen::Index rows, Eigen::Index columns) {
    switch (method) {
    case Method::FullPivoting:
        return made<NqFullPivotNullSpace>("Eigen full pivoting", rows, columns);
    case Method::Orthogonal:
        return made<NqOrthogonalNullSpace>("Eigen pivoted QR", rows, columns);
    case Method::PartialPivoting:
        break;
    }
    return made<NqPartialPivotNullSpace<Eigen::Dynamic, Eigen::Dynamic>>("Eigen partial pivoting", rows,
                                                                         columns);
}

std::unique_ptr<NqEigenSolver> NqEigenSolver::makeFixed(Eigen::Index rows, Eigen::Index columns) {
    if (columns != 7 || (rows != 6 && rows != 3)) {
        return nullptr;
    }
    return rows == 6 ? madeFixed<6, 7>() : madeFixed<3, 7>();
}
