#pragma once

#include <Eigen/LU>
#include <Eigen/QR>

// Bases of the null space of a Jacobian by different decompositions of Eigen. Each has find(), which gives a
// basis that holds until the next call.

/// With J^T = P^T L U and L = [ L1 ; L2 ], L1 square: the basis is P^T [ -L1^-T L2^T ; I ].
template <int RowsOfJacobian, int ColumnsOfJacobian>
class NqPartialPivotNullSpace {
public:
    static constexpr int Columns = ColumnsOfJacobian;
    static constexpr int Freedom =
        Columns == Eigen::Dynamic ? Eigen::Dynamic : ColumnsOfJacobian - RowsOfJacobian;
    using Basis = Eigen::Matrix<double, Columns, Freedom>;

    NqPartialPivotNullSpace(Eigen::Index rows, Eigen::Index columns)
        : m_Factors(columns, rows), m_Basis(columns, columns - rows), m_Interchanges(rows) {}

    const Basis& find(const Eigen::MatrixXd& jacobian) {
        const Eigen::Index m = m_Factors.cols();
        const Eigen::Index freedom = m_Factors.rows() - m;
        m_Factors = jacobian.transpose();
        int count = 0;
        Eigen::internal::partial_lu_inplace(m_Factors, m_Interchanges, count);
        auto upper = m_Basis.topRows(m);
        upper = -m_Factors.bottomRows(freedom).transpose();
        m_Factors.topRows(m).template triangularView<Eigen::UnitLower>().transpose().solveInPlace(upper);
        m_Basis.bottomRows(freedom).setIdentity();
        for (Eigen::Index i = m; i-- > 0;) {
            m_Basis.row(i).swap(m_Basis.row(m_Interchanges.coeff(i)));
        }
        return m_Basis;
    }

private:
    // Eigen takes factors of a fixed size for square: this has fixed storage only.
    Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::ColMajor, Columns, RowsOfJacobian> m_Factors;
    Basis m_Basis;
    Eigen::Transpositions<RowsOfJacobian> m_Interchanges;
};

/// Eigen's own, which decides about the rank.
class NqFullPivotNullSpace {
public:
    static constexpr int Columns = Eigen::Dynamic;

    NqFullPivotNullSpace(Eigen::Index rows, Eigen::Index columns) : m_Factors(rows, columns) {}

    const Eigen::MatrixXd& find(const Eigen::MatrixXd& jacobian) {
        m_Factors.compute(jacobian);
        m_Basis = m_Factors.kernel();
        return m_Basis;
    }

private:
    Eigen::FullPivLU<Eigen::MatrixXd> m_Factors;
    Eigen::MatrixXd m_Basis;
};

/// With J^T P = Q R: the columns of Q behind the first m.
class NqOrthogonalNullSpace {
public:
    static constexpr int Columns = Eigen::Dynamic;

    NqOrthogonalNullSpace(Eigen::Index rows, Eigen::Index columns)
        : m_Factors(columns, rows), m_Basis(columns, columns - rows), m_Work(columns - rows) {}

    const Eigen::MatrixXd& find(const Eigen::MatrixXd& jacobian) {
        m_Factors.compute(jacobian.transpose());
        m_Basis.setZero();
        m_Basis.bottomRows(m_Basis.cols()).setIdentity();
        m_Factors.householderQ().applyThisOnTheLeft(m_Basis, m_Work);
        return m_Basis;
    }

private:
    Eigen::ColPivHouseholderQR<Eigen::MatrixXd> m_Factors;
    Eigen::MatrixXd m_Basis;
    Eigen::RowVectorXd m_Work;
};
