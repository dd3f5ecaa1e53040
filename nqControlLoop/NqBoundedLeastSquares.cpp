#include <nqControlLoop/NqBoundedLeastSquares.h>
#include <nqControlLoop/NqCholesky.h>

#include <algorithm>

namespace {

constexpr double kLeastShare = 1.0e-14;

} // namespace

/// Columns of (J^T J + lambda^2 A)^-1.
class NqBoundedLeastSquares::Response : public NqBoundActiveSet::Response {
public:
    explicit Response(const std::vector<std::vector<double>>& factor) : m_Factor(factor) {}
    void column(unsigned k, std::vector<double>& column) override {
        std::fill(column.begin(), column.end(), 0.0);
        column[k] = 1.0;
        NqCholesky::solve(m_Factor, column.size(), column);
    }

private:
    const std::vector<std::vector<double>>& m_Factor;
};

void NqBoundedLeastSquares::prepare(unsigned n) {
    m_Bounds.resize(n);
    m_Factor.assign(n, std::vector<double>(n));
    m_Freedom.assign(n, 0.0);
}

bool NqBoundedLeastSquares::solve(const NqReArray& jacobian, unsigned rows,
                                  const std::vector<double>& velocity, const std::vector<double>& wished,
                                  const std::vector<double>& weights, double damping,
                                  const std::vector<double>& lower, const std::vector<double>& upper,
                                  std::vector<double>& rates) {
    const std::size_t n = lower.size();
    const double square = damping * damping;
    rates.resize(n);
    for (std::size_t j = 0; j < n; ++j) {
        std::fill(m_Factor[j].begin(), m_Factor[j].end(), 0.0);
        m_Factor[j][j] = square * weights[j];
        rates[j] = square * weights[j] * wished[j];
        m_Freedom[j] = 1.0 / (square * weights[j]);
    }
    for (unsigned i = 0; i < rows; ++i) {
        const auto& row = jacobian[i];
        for (std::size_t j = 0; j < n; ++j) {
            rates[j] += row[j] * velocity[i];
            for (std::size_t k = 0; k <= j && row[j] != 0.0; ++k) {
                m_Factor[j][k] += row[j] * row[k];
            }
        }
    }
    bool isSolved = NqCholesky::factor(m_Factor, n, 0.0);
    if (isSolved) {
        NqCholesky::solve(m_Factor, n, rates);
        Response response(m_Factor);
        m_Bounds.forgetResponse();
        const auto outcome = m_Bounds.solve(response, lower, upper, m_Freedom, kLeastShare, rates);
        m_IsCapped = outcome == NqBoundActiveSet::Outcome::Capped;
        isSolved = outcome == NqBoundActiveSet::Outcome::Solved;
    }
    if (!isSolved) {
        for (std::size_t j = 0; j < n; ++j) {
            rates[j] = std::clamp(wished[j], lower[j], upper[j]);
        }
    }
    return isSolved;
}
