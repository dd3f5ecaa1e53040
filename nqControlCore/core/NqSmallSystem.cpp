#include <nqControlCore/core/NqSmallSystem.h>

#include <nqControlCore/foundation/matrix/NqReArray.h>
#include <nqControlCore/foundation/matrix/NqRowOperations.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

using NqRowOperations::Pair;
using NqSmallSystem::Places;

/// Half a row goes through an operation as a whole.
using Half = NqRowOperations::Group;
constexpr unsigned kHalf = Places / 2;
static_assert(sizeof(Half) == kHalf * sizeof(double));

/// Rows of one length, whatever n. What is behind n is 0 or never looked at.
struct alignas(Half) Square {
    double rows[Places][Places];
    double* operator[](unsigned r) { return rows[r]; }
    const double* operator[](unsigned r) const { return rows[r]; }
};

/// target[j] -= factor row[j] in a whole row.
NQ_INLINE_ROWS void subtractMultiple(double* target, double factor, const double* row) {
    for (unsigned h = 0; h < Places; h += kHalf) {
        Half x, y;
        std::memcpy(&x, row + h, sizeof x);
        std::memcpy(&y, target + h, sizeof y);
        y -= factor * x;
        std::memcpy(target + h, &y, sizeof y);
    }
}

/// Entries that were just written one by one: the load of half a row at once would have to wait.
NQ_INLINE_ROWS void collect(Half& part, const double* entries) {
    part = Half{entries[0], entries[1], entries[2], entries[3]};
}

/// A system in work. What is settled is in the order of the interchanges.
class System {
public:
    System(const NqReArray& jacobian, unsigned m, NqReArray& matrix);
    bool factorJacobian();
    void findBasis();
    bool weightBasis(const NqReArray* metric, NqReArray& nullSpace, NqReArray& weightedNullSpace);
    bool factorLower();
    void give(std::vector<unsigned int>& indices) const;

private:
    const unsigned m_N;
    const unsigned m_M;
    double* m_Factors[Places];    ///< the rows of the matrix
    Square m_Rows;                ///< J in work, in the caller's column order
    Square m_Settled;             ///< L and U of J
    Square m_Basis;               ///< N
    Square m_Weighted;            ///< W N
    double m_Reciprocals[Places]; ///< of the pivots of J
    unsigned m_Order[Places];     ///< the caller's column at each place
    unsigned m_Indices[Places];   ///< the interchanges
};

NQ_INLINE_ROWS System::System(const NqReArray& jacobian, unsigned m, NqReArray& matrix)
    : m_N(matrix.columns()), m_M(m) {
    for (unsigned r = 0; r < m_N; ++r) {
        m_Factors[r] = matrix[r].data();
    }
    for (unsigned r = 0; r < m_M; ++r) {
        std::fill_n(m_Rows[r] + kHalf, kHalf, 0.0);
        NqRowOperations::copyShort(m_Rows[r], jacobian[r].data(), m_N);
    }
    for (unsigned r = 0; r <= m_M && r < Places; ++r) { // one more, as entries behind a row may be read along
        std::fill_n(m_Settled[r], Places, 0.0);
    }
    for (unsigned j = 0; j < Places; ++j) {
        m_Order[j] = m_Indices[j] = j;
    }
}

/// Each pivot is followed by the elimination of its column from all rows of J below. Which column that is
/// mostly is as in the step before, so that the processor guesses it from the branches of the search, and
/// needn't wait. False for a row without a pivot.
NQ_INLINE_ROWS bool System::factorJacobian() {
    for (unsigned c = 0; c < m_M; ++c) {
        const double* const row = m_Rows[c];
        double largest = 0.0;
        for (unsigned place = c; place < m_N; ++place) {
            const double magnitude = std::abs(row[m_Order[place]]);
            largest = magnitude > largest ? magnitude : largest;
        }
        if (largest == 0.0) {
            return false;
        }
        unsigned pivot = c;
        while (std::abs(row[m_Order[pivot]]) != largest) {
            ++pivot;
        }
        m_Indices[c] = pivot;
        const unsigned column = m_Order[pivot];
        m_Order[pivot] = m_Order[c];
        m_Order[c] = column;
        const double reciprocal = m_Reciprocals[c] = 1.0 / row[column];
        for (unsigned r = c + 1; r < m_M; ++r) {
            const double multiplier = m_Rows[r][column] * reciprocal;
            m_Settled[r][c] = multiplier;
            subtractMultiple(m_Rows[r], multiplier, row);
        }
    }
    for (unsigned r = 0; r < m_M; ++r) {
        for (unsigned j = r; j < m_N; ++j) {
            m_Settled[r][j] = m_Rows[r][m_Order[j]];
        }
    }
    return true;
}

/// With U = [U11 U12] the rows -U11^-1 U12, and a one for each column of U12.
NQ_INLINE_ROWS void System::findBasis() {
    for (unsigned k = 0; m_M + k < m_N; k += kHalf) {
        for (unsigned i = m_M; i-- > 0;) {
            const double* const u = m_Settled[i];
            Half sum, known;
            collect(sum, u + m_M + k);
            sum = -sum;
            for (unsigned j = i + 1; j < m_M; ++j) {
                std::memcpy(&known, m_Basis[j] + k, sizeof known);
                sum -= u[j] * known;
            }
            sum *= m_Reciprocals[i];
            std::memcpy(m_Basis[i] + k, &sum, sizeof sum);
        }
    }
    for (unsigned i = m_M; i < m_N; ++i) {
        for (unsigned k = 0; m_M + k < m_N; ++k) {
            m_Basis[i][k] = m_M + k == i ? 1.0 : 0.0;
        }
    }
}

/// Gives N and W N. False where the metric hasn't one weight for each joint.
NQ_INLINE_ROWS bool System::weightBasis(const NqReArray* metric, NqReArray& nullSpace,
                                        NqReArray& weightedNullSpace) {
    if (metric && (metric->columns() != 1 || metric->rows() < m_N)) {
        return false;
    }
    for (unsigned k = 0; m_M + k < m_N; ++k) {
        std::fill_n(m_Weighted[k], Places, 0.0);
    }
    for (unsigned i = 0; i < m_N; ++i) {
        const unsigned joint = m_Order[i];
        double weight = 1.0;
        if (metric) {
            const std::vector<double>& weights = (*metric)[joint];
            if (weights.empty()) {
                return false;
            }
            weight = weights[0];
        }
        double* const basis = nullSpace[joint].data();
        double* const weighted = weightedNullSpace[joint].data();
        for (unsigned k = 0; m_M + k < m_N; ++k) {
            const double entry = m_Basis[i][k];
            basis[k] = entry;
            weighted[k] = m_Weighted[k][i] = entry * weight;
        }
    }
    return true;
}

/// Eliminates the columns of J's pivots from the rows below J, and factors what is left of these.
NQ_INLINE_ROWS bool System::factorLower() {
    Square rows;
    for (unsigned r = m_M; r < m_N; ++r) {
        double* const row = rows[r];
        for (unsigned h = 0; h < Places; h += kHalf) {
            Half part;
            collect(part, m_Weighted[r - m_M] + h);
            std::memcpy(row + h, &part, sizeof part);
        }
        double* const factors = m_Factors[r];
        for (unsigned c = 0; c < m_M; ++c) {
            const double multiplier = factors[c] = row[c] * m_Reciprocals[c];
            subtractMultiple(row, multiplier, m_Settled[c]);
        }
        NqRowOperations::copyShort(factors + m_M, row + m_M, m_N - m_M);
    }
    for (unsigned c = m_M; c < m_N; ++c) {
        const double* const row = m_Factors[c];
        double largest = 0.0;
        unsigned pivot = c;
        for (unsigned j = c; j < m_N; ++j) {
            const double magnitude = std::abs(row[j]);
            pivot = magnitude > largest ? j : pivot;
            largest = magnitude > largest ? magnitude : largest;
        }
        if (largest == 0.0) {
            return false;
        }
        m_Indices[c] = pivot;
        if (pivot != c) {
            for (unsigned r = 0; r < m_N; ++r) {
                double* const factors = r < m_M ? m_Settled[r] : m_Factors[r];
                std::swap(factors[c], factors[pivot]);
            }
        }
        const double reciprocal = 1.0 / row[c];
        for (unsigned r = c + 1; r < m_N; ++r) {
            const double multiplier = m_Factors[r][c] *= reciprocal;
            for (unsigned j = c + 1; j < m_N; ++j) {
                m_Factors[r][j] -= multiplier * row[j];
            }
        }
    }
    return true;
}

/// Gives what rows of J became, and the interchanges.
NQ_INLINE_ROWS void System::give(std::vector<unsigned int>& indices) const {
    for (unsigned r = 0; r < m_M; ++r) {
        NqRowOperations::copyShort(m_Factors[r], m_Settled[r], m_N);
    }
    std::copy_n(m_Indices, m_N, indices.begin());
}

template <unsigned N>
void substituteBoth(const NqReArray& factors, std::array<double, 2>* solution) {
    Pair x[N];
    const double* rows[N];
    for (unsigned i = 0; i < N; ++i) {
        x[i] = NqRowOperations::load(solution[i]);
        rows[i] = factors[i].data();
    }
    for (unsigned i = 1; i < N; ++i) {
        for (unsigned j = 0; j < i; ++j) {
            x[i] -= x[j] * rows[i][j];
        }
    }
    for (unsigned i = N; i-- > 0;) {
        Pair sum = x[i];
        for (unsigned j = i + 1; j < N; ++j) {
            sum -= x[j] * rows[i][j];
        }
        if (rows[i][i] != 0.0) {
            x[i] = sum / rows[i][i];
        }
    }
    std::memcpy(solution, x, sizeof x);
}

template <unsigned... Before>
constexpr auto substitutions(std::integer_sequence<unsigned, Before...>) {
    return std::array{&substituteBoth<Before + 1>...};
}
constexpr auto kSubstitutions = substitutions(std::make_integer_sequence<unsigned, Places>{});

} // namespace

NQ_WIDE_ROWS bool NqSmallSystem::factor(const NqReArray& jacobian, unsigned m, const NqReArray* metric,
                                        NqReArray& matrix, std::vector<unsigned int>& indices,
                                        NqReArray& nullSpace, NqReArray& weightedNullSpace) {
    System system(jacobian, m, matrix);
    if (!system.factorJacobian()) {
        return false;
    }
    system.findBasis();
    if (!system.weightBasis(metric, nullSpace, weightedNullSpace) || !system.factorLower()) {
        return false;
    }
    system.give(indices);
    return true;
}

void NqSmallSystem::substitute(const NqReArray& factors, std::array<double, 2>* x) {
    kSubstitutions[factors.size() - 1](factors, x);
}
