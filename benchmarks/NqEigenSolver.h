#pragma once

#include <Eigen/Core>

#include <memory>
#include <string>

/// Our solver's task done by Eigen: for the Jacobian J, a diagonal metric W and a gradient g it finds a basis
/// N of the null space, and solves
///     [ J ; (W N)^T ] x = [ v ; -alpha N^T g ]
/// for the velocity v and for v = 0, by LU with partial pivoting. Everything is allocated at the start.
class NqEigenSolver {
public:
    /// Where the null space comes from.
    enum class Method {
        PartialPivoting, ///< LU of the transpose with partial pivoting
        FullPivoting,    ///< LU with full pivoting
        Orthogonal       ///< QR of the transpose with column pivoting
    };

    /// For Jacobians of one size.
    static std::unique_ptr<NqEigenSolver> make(Method method, Eigen::Index rows, Eigen::Index columns);

    /// With sizes known at compile time; null for sizes that aren't provided for.
    static std::unique_ptr<NqEigenSolver> makeFixed(Eigen::Index rows, Eigen::Index columns);

    virtual ~NqEigenSolver() = default;

    const std::string& name() const { return m_Name; }

    virtual void solve(const Eigen::MatrixXd& jacobian, const Eigen::VectorXd& metric,
                       const Eigen::VectorXd& gradient, double alpha,
                       const Eigen::Ref<const Eigen::VectorXd>& velocity) = 0;

    virtual Eigen::VectorXd rates() const = 0;
    virtual Eigen::VectorXd nullSpaceRates() const = 0;
    double determinant() const { return m_Determinant; }

protected:
    explicit NqEigenSolver(std::string name) : m_Name(std::move(name)) {}

    double m_Determinant = 0.0;

private:
    std::string m_Name;
};
