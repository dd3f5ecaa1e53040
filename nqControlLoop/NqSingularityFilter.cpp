#include <nqControlLoop/NqSingularityFilter.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr unsigned kSweeps = 30;
/// Velocity asked for along a lost direction at which half of the gradient along it counts.
constexpr double kFadingVelocity = 0.5;
/// A row of a lost direction no longer than this is noise.
constexpr double kVanished = 1.0e-9;
/// Least damping, as a share of the greatest: keeps the cost finite where it sets in.
constexpr double kLeastDamping = 1.0e-3;

double dot(const std::vector<double>& a, const std::vector<double>& b, std::size_t n) {
    return std::inner_product(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(n), b.begin(), 0.0);
}

} // namespace

void NqSingularityFilter::prepare(unsigned rows, unsigned columns) {
    m_Rows = rows;
    m_Columns = columns;
    m_Square.assign(rows, std::vector<double>(rows));
    m_Directions = m_Square;
    m_Turned.assign(rows, std::vector<double>(columns));
    m_Values.assign(rows, 0.0);
    m_Kept.resize(rows + 1);
    for (unsigned count = 0; count <= rows; ++count) {
        m_Kept[count].setToZeros(count, columns);
    }
    m_KeptVelocity.assign(rows, 0.0);
}

/// The sum of the squares of the reciprocals of all singular values, the trace of (J J^T)^-1, is at least
/// that of the least one.
bool NqSingularityFilter::isNear(const NqReArray& jacobian, unsigned rows, double threshold) {
    double limit = 1.0 / (threshold * threshold);
    for (unsigned i = 0; i < rows; ++i) {
        for (unsigned j = 0; j <= i; ++j) {
            double sum = dot(jacobian[i], jacobian[j], m_Columns);
            for (unsigned k = 0; k < j; ++k) {
                sum -= m_Square[i][k] * m_Square[j][k];
            }
            if (i == j && !(sum > threshold * threshold)) {
                return true;
            }
            m_Square[i][j] = i == j ? std::sqrt(sum) : sum / m_Square[j][j];
        }
    }
    // The inverse of the factor, column by column; its squares add up to that trace.
    for (unsigned c = 0; c < rows; ++c) {
        for (unsigned i = c; i < rows; ++i) {
            double sum = i == c ? 1.0 : 0.0;
            for (unsigned k = c; k < i; ++k) {
                sum -= m_Square[i][k] * m_Values[k];
            }
            m_Values[i] = sum / m_Square[i][i];
            limit -= m_Values[i] * m_Values[i];
        }
    }
    return !(limit > 0.0);
}

/// Cyclic Jacobi rotations.
void NqSingularityFilter::diagonalise() {
    const unsigned m = m_Rows;
    for (unsigned sweep = 0; sweep < kSweeps; ++sweep) {
        double off = 0.0;
        double on = 0.0;
        for (unsigned p = 0; p < m; ++p) {
            on += m_Square[p][p] * m_Square[p][p];
            for (unsigned q = p + 1; q < m; ++q) {
                off += m_Square[p][q] * m_Square[p][q];
            }
        }
        if (!(off > 1.0e-32 * on)) {
            return;
        }
        for (unsigned p = 0; p < m; ++p) {
            for (unsigned q = p + 1; q < m; ++q) {
                if (m_Square[p][q] == 0.0) {
                    continue;
                }
                const double theta = 0.5 * (m_Square[q][q] - m_Square[p][p]) / m_Square[p][q];
                const double t =
                    (theta < 0.0 ? -1.0 : 1.0) / (std::abs(theta) + std::sqrt(theta * theta + 1.0));
                const double c = 1.0 / std::sqrt(t * t + 1.0);
                const double s = t * c;
                const auto rotate = [&](double& a, double& b) {
                    const double old = a;
                    a = c * old - s * b;
                    b = s * old + c * b;
                };
                for (unsigned k = 0; k < m; ++k) {
                    rotate(m_Square[k][p], m_Square[k][q]);
                }
                for (unsigned k = 0; k < m; ++k) {
                    rotate(m_Square[p][k], m_Square[q][k]);
                    rotate(m_Directions[p][k], m_Directions[q][k]);
                }
                m_Square[p][q] = m_Square[q][p] = 0.0;
            }
        }
    }
}

unsigned NqSingularityFilter::split(const NqReArray& jacobian, unsigned rows, double threshold) {
    m_Rows = rows;
    m_Threshold = threshold;
    for (unsigned i = 0; i < rows; ++i) {
        std::fill(m_Directions[i].begin(), m_Directions[i].end(), 0.0);
        m_Directions[i][i] = 1.0;
        for (unsigned j = 0; j <= i; ++j) {
            m_Square[i][j] = m_Square[j][i] = dot(jacobian[i], jacobian[j], m_Columns);
        }
    }
    diagonalise();
    for (unsigned i = 0; i < rows; ++i) {
        std::vector<double>& turned = m_Turned[i];
        std::fill(turned.begin(), turned.end(), 0.0);
        for (unsigned k = 0; k < rows; ++k) {
            for (unsigned j = 0; j < m_Columns; ++j) {
                turned[j] += m_Directions[i][k] * jacobian[k][j];
            }
        }
        m_Values[i] = std::sqrt(dot(turned, turned, m_Columns));
    }
    for (unsigned i = 1; i < rows; ++i) { // by rising singular value
        for (unsigned j = i; j > 0 && m_Values[j] < m_Values[j - 1]; --j) {
            std::swap(m_Values[j], m_Values[j - 1]);
            m_Directions[j].swap(m_Directions[j - 1]);
            m_Turned[j].swap(m_Turned[j - 1]);
        }
    }
    m_Lost = 0;
    while (m_Lost < rows && m_Values[m_Lost] < threshold) {
        ++m_Lost;
    }
    m_KeptCount = rows - m_Lost;
    for (unsigned i = 0; i < m_KeptCount; ++i) {
        std::copy(m_Turned[m_Lost + i].begin(), m_Turned[m_Lost + i].end(), m_Kept[m_KeptCount][i].begin());
    }
    return m_Lost;
}

void NqSingularityFilter::projectVelocity(const std::vector<double>& velocity) {
    for (unsigned i = 0; i < m_KeptCount; ++i) {
        m_KeptVelocity[i] = along(m_Lost + i, velocity);
    }
}

unsigned NqSingularityFilter::vanished() const {
    unsigned vanished = 0;
    while (vanished < m_Lost && m_Values[vanished] <= kVanished) {
        ++vanished;
    }
    return vanished;
}

double NqSingularityFilter::along(unsigned i, const std::vector<double>& velocity) const {
    return dot(m_Directions[i], velocity, m_Rows);
}

double NqSingularityFilter::made(unsigned i, const std::vector<double>& rates) const {
    return dot(m_Turned[i], rates, m_Columns);
}

double NqSingularityFilter::dampedShare(unsigned i, double damping) const {
    const double square = m_Values[i] * m_Values[i];
    return square / (square + squareOfDamping(i, damping));
}

double NqSingularityFilter::squareOfDamping(unsigned i, double damping) const {
    const double share = m_Values[i] / m_Threshold;
    return damping * damping * std::max(1.0 - share * share, kLeastDamping * kLeastDamping);
}

const NqReArray& NqSingularityFilter::presentRows() {
    const unsigned first = vanished();
    NqReArray& rows = m_Kept[m_Rows - first];
    for (unsigned i = 0; i < m_KeptCount; ++i) {
        std::copy(m_Turned[m_Lost + i].begin(), m_Turned[m_Lost + i].end(), rows[i].begin());
    }
    for (unsigned i = first; i < m_Lost; ++i) {
        std::transform(m_Turned[i].begin(), m_Turned[i].end(), rows[m_KeptCount + i - first].begin(),
                       [&](double entry) { return entry / m_Values[i]; });
    }
    return rows;
}

void NqSingularityFilter::addCost(const std::vector<double>& velocity, double damping, NqReArray& metric,
                                  std::vector<double>& gradient) const {
    for (unsigned i = 0; i < m_Lost; ++i) {
        const double weight = 1.0 / squareOfDamping(i, damping);
        const double command = along(i, velocity);
        const std::vector<double>& row = m_Turned[i];
        if (m_Values[i] > kVanished) {
            const double fading =
                kFadingVelocity * kFadingVelocity / (kFadingVelocity * kFadingVelocity + command * command);
            const double wanted = fading * dot(row, gradient, m_Columns) / (m_Values[i] * m_Values[i]);
            for (unsigned j = 0; j < m_Columns; ++j) {
                gradient[j] -= wanted * row[j];
            }
        }
        for (unsigned j = 0; j < m_Columns; ++j) {
            gradient[j] -= weight * row[j] * command;
            for (unsigned k = 0; k < m_Columns; ++k) {
                metric[j][k] += weight * row[j] * row[k];
            }
        }
    }
}
