#include <nqControlLoop/NqLimitedVelocityTool.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// How much more a unit of s costs than the motion that it stands for.
constexpr double kScaleWeight = 1.0e5;
/// The same for a second try, where rounding was in the way of the first: s may then be a little less.
constexpr double kLowScaleWeight = 1.0e3;
/// Share of its freedom without any rows that a rate must have left to count as free.
constexpr double kLeastFreedom = 1.0e-8;
/// The same when s is free too, which adds a share of 1 / kScaleWeight at most.
constexpr double kLeastScaledFreedom = 1.0e-11;
constexpr double kRounding = 1.0e-9;
/// Share of zeros that makes it worth to pass over them.
constexpr double kWorthPassing = 0.25;

bool isWithin(const std::vector<double>& x, const std::vector<double>& lower,
              const std::vector<double>& upper) {
    for (std::size_t k = 0; k < x.size(); ++k) {
        if (x[k] < lower[k] || x[k] > upper[k]) {
            return false;
        }
    }
    return true;
}

bool areFinite(const std::vector<double>& values) {
    double sum = 0.0;
    for (const double value : values) {
        sum += value * 0.0;
    }
    return sum == 0.0;
}

} // namespace

/// Columns of N (N^T W N)^-1 N^T, from the factors of the last solve.
class NqLimitedVelocityTool::Response : public NqBoundActiveSet::Response {
public:
    explicit Response(NqLimitedVelocityTool& tool) : m_Tool(tool) {}
    void column(unsigned k, std::vector<double>& column) override {
        const std::vector<double>& known = m_Tool.columnOf(k);
        std::copy(known.begin(), known.end(), column.begin());
    }

private:
    NqLimitedVelocityTool& m_Tool;
};

/// The same when the rates may also move along the path, by s.
class NqLimitedVelocityTool::ScaledResponse : public NqLimitedVelocityTool::Response {
public:
    ScaledResponse(NqLimitedVelocityTool& tool, double weight)
        : Response(tool), m_Path(tool.m_Path), m_Weight(weight) {}
    void column(unsigned k, std::vector<double>& column) override {
        Response::column(k, column);
        for (std::size_t j = 0; j < column.size(); ++j) {
            column[j] += m_Path[k] * m_Path[j] / m_Weight;
        }
    }

private:
    const std::vector<double>& m_Path;
    double m_Weight;
};

/// By a solve of that size, which sizes what the solver keeps to itself.
void NqLimitedVelocityTool::prepare(unsigned n, unsigned m) {
    NqReArray jacobian, metric;
    jacobian.setToIdentity(m, n);
    metric.setToIdentity(n, n);
    const std::vector<double> zeros(n), ends(n, 1.0);
    size(n);
    solve(jacobian, metric, zeros, zeros, zeros, ends);
}

void NqLimitedVelocityTool::setSparsity(const std::vector<std::vector<bool>>& sparsity) {
    std::size_t zeros = 0;
    std::size_t elements = 0;
    for (const std::vector<bool>& row : sparsity) {
        zeros += static_cast<std::size_t>(std::count(row.begin(), row.end(), false));
        elements += row.size();
    }
    m_Sparsity.setUseSparseNullSpace(static_cast<double>(zeros) >
                                         kWorthPassing * static_cast<double>(elements) &&
                                     m_Sparsity.setSparsity(sparsity));
}

void NqLimitedVelocityTool::size(unsigned n) {
    m_Bounds.resize(n);
    m_Columns.assign(n, std::vector<double>(n));
    m_HasColumn.assign(n, false);
    for (auto* vector : {&m_Rates, &m_NullSpaceRates, &m_Path, &m_Limited, &m_Freedom, &m_RightHandSide}) {
        vector->assign(n, 0.0);
    }
}

const std::vector<double>& NqLimitedVelocityTool::columnOf(unsigned k) {
    if (!m_HasColumn[k]) {
        const auto& basis = nullSpace()[k];
        std::fill(m_RightHandSide.begin(), m_RightHandSide.end(), 0.0);
        std::copy(basis.begin(), basis.end(), m_RightHandSide.begin() + m_Rows);
        double determinant = 0.0;
        calc(primaryMatrix(), indices(), m_RightHandSide, m_Columns[k], determinant);
        m_HasColumn[k] = true;
    }
    return m_Columns[k];
}

void NqLimitedVelocityTool::findPath(const std::vector<double>& velocity, std::vector<double>& path) {
    std::copy_n(velocity.begin(), m_Rows, m_RightHandSide.begin());
    std::fill(m_RightHandSide.begin() + m_Rows, m_RightHandSide.end(), 0.0);
    double determinant = 0.0;
    calc(primaryMatrix(), indices(), m_RightHandSide, path, determinant);
}

double NqLimitedVelocityTool::leastPivot() const {
    double least = std::numeric_limits<double>::infinity();
    for (unsigned i = 0; i < m_Rows; ++i) {
        const double magnitude = std::abs(pivot(i));
        least = magnitude < least || std::isnan(magnitude) ? magnitude : least;
    }
    return std::isnan(least) ? 0.0 : least;
}

NqLimitedVelocityTool::Outcome
NqLimitedVelocityTool::solve(const NqReArray& jacobian, const NqReArray& metric,
                             const std::vector<double>& gradient, const std::vector<double>& velocity,
                             const std::vector<double>& lower, const std::vector<double>& upper) {
    const auto n = static_cast<unsigned>(lower.size());
    if (m_Limited.size() != n) {
        size(n);
    }
    m_Rows = jacobian.rows();
    m_Steps = 0;
    m_IsCapped = false;
    m_Scale = 1.0;
    if (!calcJointRates(m_Sparsity.useSparseNullSpace() ? &m_Sparsity : nullptr, jacobian, metric, gradient,
                        1.0, velocity, n, m_Rates, m_NullSpaceRates, m_Determinant) ||
        !areFinite(m_Rates) || !areFinite(m_NullSpaceRates)) {
        m_Scale = 0.0;
        return Outcome::Failed;
    }
    std::copy(m_Rates.begin(), m_Rates.end(), m_Limited.begin());
    std::fill(m_HasColumn.begin(), m_HasColumn.end(), false);
    const bool isDiagonal = metric.columns() == 1;
    m_PathCost = 0.0;
    for (unsigned k = 0; k < n; ++k) {
        const double weight = metric[k][isDiagonal ? 0 : k];
        m_Path[k] = m_Rates[k] - m_NullSpaceRates[k];
        m_Freedom[k] = 1.0 / weight;
        m_PathCost += weight * m_Path[k] * m_Path[k];
    }
    if (isWithin(m_Rates, lower, upper)) {
        return Outcome::Unlimited;
    }
    return solveAgain(1.0, lower, upper);
}

NqLimitedVelocityTool::Outcome NqLimitedVelocityTool::solveAgain(double greatestScale,
                                                                 const std::vector<double>& lower,
                                                                 const std::vector<double>& upper) {
    const auto restart = [&] {
        for (std::size_t k = 0; k < m_Limited.size(); ++k) {
            m_Limited[k] = m_NullSpaceRates[k] + greatestScale * m_Path[k];
        }
    };
    using Search = NqBoundActiveSet::Outcome;
    m_Scale = greatestScale;
    restart();
    m_Bounds.forgetResponse();
    Response response(*this);
    Search search = m_Bounds.solve(response, lower, upper, m_Freedom, kLeastFreedom, m_Limited);
    m_Steps += m_Bounds.steps();
    if (search == Search::Solved) {
        return m_Bounds.holds().empty() ? Outcome::Unlimited : Outcome::Limited;
    }
    for (const double factor : {kScaleWeight, kLowScaleWeight}) {
        if (search != Search::Contradiction || !(m_PathCost > 0.0)) {
            break;
        }
        const double weight = factor * m_PathCost;
        ScaledResponse scaled(*this, weight);
        restart();
        m_Bounds.forgetResponse();
        search = m_Bounds.solve(scaled, lower, upper, m_Freedom, kLeastScaledFreedom, m_Limited);
        m_Steps += m_Bounds.steps();
        m_Scale = greatestScale;
        for (const NqBoundActiveSet::Hold& hold : m_Bounds.holds()) {
            m_Scale -= m_Path[hold.unknown] * hold.multiplier / weight;
        }
        if (search == Search::Solved && m_Scale >= -kRounding && m_Scale <= greatestScale + kRounding) {
            m_Scale = std::clamp(m_Scale, 0.0, greatestScale);
            return Outcome::Slowed;
        }
    }
    m_IsCapped = m_IsCapped || search == Search::Capped;
    m_Scale = 0.0;
    return Outcome::Blocked;
}
