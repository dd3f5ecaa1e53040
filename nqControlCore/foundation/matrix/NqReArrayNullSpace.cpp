#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <nqControlCore/foundation/matrix/NqRowOperations.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace {

using NqRowOperations::Panel;
using NqRowOperations::PanelWidth;

/// The columns `begin` to `end` - 1, in which a matrix is zero, down to the row in work. None: both are the
/// number of columns.
struct Gap {
    unsigned begin;
    unsigned end;

    /// Takes in row r, which is zero in columns `start` to `stop` - 1 of `columns`. Column r is left out, as
    /// its pivot comes there, and a gap too short to be worth two loops is given up.
    void narrow(unsigned r, unsigned start, unsigned stop, unsigned columns) {
        begin = std::max({begin, start, r + 1});
        end = std::min(end, stop);
        if (begin + PanelWidth > end) {
            begin = end = columns;
        }
    }
};

/// Of each row, the longest run of zeros within that of the row above.
template <typename Rows>
void findZeroRuns(const Rows& rows, unsigned m, unsigned columns, std::vector<unsigned int>& zeroStart,
                  std::vector<unsigned int>& zeroEnd) {
    zeroStart.resize(m);
    zeroEnd.resize(m);
    unsigned begin = 0;
    unsigned end = columns;
    for (unsigned r = 0; r < m; ++r) {
        unsigned runStart = begin, bestStart = begin, bestEnd = begin;
        for (unsigned j = begin; j < end; ++j) {
            if (rows[r][j] != 0) {
                runStart = j + 1;
            } else if (j + 1 - runStart > bestEnd - bestStart) {
                bestStart = runStart;
                bestEnd = j + 1;
            }
        }
        zeroStart[r] = begin = bestStart;
        zeroEnd[r] = end = bestEnd;
    }
}

/// Where the content of `place` came from, by all interchanges of `list`.
std::size_t cameFrom(const std::vector<unsigned int>& list, std::size_t place) {
    for (std::size_t k = list.size(); k-- > 0;) {
        place = place == k ? list[k] : (place == list[k] ? k : place);
    }
    return place;
}

/// Where the content of `place` goes, by the first `steps` interchanges of `list`.
std::size_t goesTo(const std::vector<unsigned int>& list, std::size_t steps, std::size_t place) {
    for (std::size_t k = 0; k < steps; ++k) {
        place = place == k ? list[k] : (place == list[k] ? k : place);
    }
    return place;
}

} // namespace

bool NqReArray::fitsNullSpace(const char* operation, const NqReArray& basis, unsigned m) const {
    const std::size_t n = columns();
    const bool fits = &basis != this && m <= m_Rows.size() && m <= n &&
                      std::all_of(m_Rows.begin(), m_Rows.begin() + static_cast<std::ptrdiff_t>(m),
                                  [n](const Row& row) { return row.size() == n; });
    return fits || refuse(operation);
}

/// Factors the first m rows. Where zeros aren't skipped, nothing is said of finiteness.
template <bool SkipZeros>
NQ_WIDE_ROWS NqReArray::Factored NqReArray::factorRows(unsigned m, std::vector<unsigned int>& indices,
                                                       const std::vector<unsigned int>* zeroStart,
                                                       const std::vector<unsigned int>* zeroEnd) {
    const unsigned n = columns();
    Factored factored;
    Gap gap{SkipZeros ? 0 : n, n};
    for (unsigned first = 0; first < m; first += PanelWidth) {
        Panel panel(first);
        // Infinities and NaN spread, into known zeros too.
        const auto expect = [&](bool isFinite) {
            if (!isFinite) {
                factored.isFinite = false;
                gap = {n, n};
            }
        };
        const auto eliminate = [&](double* row) {
            if constexpr (SkipZeros) {
                double factors[PanelWidth];
                panel.multipliers(row, factors);
                double sum = 0.0; // one by one, as they were just written; one that overflows does no harm
                for (unsigned k = 0; k < panel.width; ++k) {
                    sum += std::abs(factors[k]);
                }
                expect(std::isfinite(sum));
                if (sum != 0.0 || !factored.isFinite) {
                    const std::size_t begin = panel.first + panel.width;
                    NqRowOperations::addMultiples(row, factors, panel.rows, panel.width, begin, gap.begin);
                    NqRowOperations::addMultiples(row, factors, panel.rows, panel.width, gap.end, n);
                }
            } else {
                panel.eliminate(row, n);
            }
        };
        const unsigned behind = std::min(first + PanelWidth, m);
        for (unsigned c = first; c < behind; ++c) {
            double* const row = m_Rows[c].data();
            if constexpr (SkipZeros) {
                gap.narrow(c, (*zeroStart)[c], (*zeroEnd)[c], n);
            }
            eliminate(row);
            unsigned p = NqRowOperations::firstLargest(row, c, gap.begin, c);
            if constexpr (SkipZeros) {
                const unsigned q = NqRowOperations::firstLargest(row, gap.end, n, p);
                p = std::abs(row[p]) >= std::abs(row[q]) ? p : q;
            }
            if (p != c) {
                for (unsigned r = 0; r < m; ++r) {
                    std::swap(m_Rows[r][c], m_Rows[r][p]);
                }
            }
            indices[c] = p;
            panel.add(row);
            const double reciprocal = 1.0 / row[c];
            factored.isRegular = factored.isRegular && std::isfinite(reciprocal);
            if constexpr (SkipZeros) {
                expect(std::isfinite(reciprocal) && NqRowOperations::areFinite(row + c, n - c));
            }
        }
        for (unsigned r = behind; r < m; ++r) {
            eliminate(m_Rows[r].data());
        }
    }
    std::iota(indices.begin() + m, indices.end(), m);
    return factored;
}

/// The basis of the null space, from the factors that the first m rows hold.
NQ_WIDE_ROWS void NqReArray::findBasis(NqReArray& basis, unsigned m, const std::vector<unsigned int>& indices,
                                       bool skipZeros) const {
    const unsigned n = columns();
    const unsigned dimension = n - m;
    basis.m_Rows.resize(n);
    for (unsigned i = 0; i < m; ++i) {
        basis[i].resize(dimension);
    }
    for (unsigned i = 0; i < dimension; ++i) {
        basis[m + i].assign(dimension, 0.0);
        basis[m + i][i] = 1.0;
    }
    for (unsigned i = m; i-- > 0;) {
        const Row& u = m_Rows[i];
        double* const solution = basis[i].data();
        std::transform(u.begin() + m, u.end(), solution, std::negate<>());
        for (unsigned first = i + 1; first < m; first += PanelWidth) {
            const unsigned width = std::min(PanelWidth, m - first);
            double factors[PanelWidth];
            const double* known[PanelWidth];
            bool anyNonZero = false;
            for (unsigned k = 0; k < width; ++k) {
                factors[k] = -u[first + k];
                known[k] = basis[first + k].data();
                anyNonZero = anyNonZero || factors[k] != 0.0;
            }
            if (anyNonZero || !skipZeros) {
                NqRowOperations::addMultiples(solution, factors, known, width, 0, dimension);
            }
        }
        const double reciprocal = 1.0 / u[i];
        std::transform(solution, solution + dimension, solution,
                       [reciprocal](double entry) { return entry * reciprocal; });
    }
    for (unsigned i = m; i-- > 0;) {
        if (indices[i] != i) {
            basis[i].swap(basis[indices[i]]);
        }
    }
}

bool NqReArray::nullSpace(NqReArray& basis, unsigned int m, std::vector<unsigned int>& indices) {
    if (!fitsNullSpace("nullSpace", basis, m)) {
        return false;
    }
    indices.resize(columns());
    const Factored factored = factorRows<false>(m, indices, nullptr, nullptr);
    findBasis(basis, m, indices, false);
    return factored.isRegular;
}

bool NqReArray::nullSpaceSparse(NqReArray& basis, unsigned int m, std::vector<unsigned int>& indices,
                                const std::vector<unsigned int>& zeroStart,
                                const std::vector<unsigned int>& zeroEnd) {
    if (!fitsNullSpace("nullSpaceSparse", basis, m)) {
        return false;
    }
    if (&indices == &zeroStart || &indices == &zeroEnd || !zerosHold(m, zeroStart, zeroEnd)) {
        return nullSpace(basis, m, indices);
    }
    indices.resize(columns());
    const Factored factored = factorRows<true>(m, indices, &zeroStart, &zeroEnd);
    findBasis(basis, m, indices, factored.isFinite);
    return factored.isRegular;
}

/// Whether the lists fit, and J is zero wherever nullSpaceSparse() makes use of it.
bool NqReArray::zerosHold(unsigned m, const std::vector<unsigned int>& zeroStart,
                          const std::vector<unsigned int>& zeroEnd) const {
    const unsigned n = columns();
    if (zeroStart.size() != m || zeroEnd.size() != m) {
        return false;
    }
    Gap gap{0, n};
    for (unsigned r = 0; r < m; ++r) {
        if (zeroStart[r] > n || zeroEnd[r] > n) {
            return false;
        }
        gap.narrow(r, zeroStart[r], zeroEnd[r], n);
        const double* const row = m_Rows[r].data();
        if (!std::all_of(row + gap.begin, row + gap.end, [](double entry) { return entry == 0.0; })) {
            return false;
        }
    }
    return true;
}

bool NqReArray::calculateZeroStartIndices(unsigned int m, std::vector<unsigned int>& zeroStart,
                                          std::vector<unsigned int>& zeroEnd) const {
    if (m > m_Rows.size() || !isRectangular()) {
        return refuse("calculateZeroStartIndices");
    }
    findZeroRuns(m_Rows, m, columns(), zeroStart, zeroEnd);
    return true;
}

bool NqReArray::calculateZeroStartIndices(const std::vector<std::vector<bool>>& sparsity,
                                          std::vector<unsigned int>& zeroStart,
                                          std::vector<unsigned int>& zeroEnd) {
    const std::size_t columns = sparsity.empty() ? 0 : sparsity.front().size();
    if (!std::ranges::all_of(sparsity, [&](const auto& bits) { return bits.size() == columns; })) {
        return refuse("calculateZeroStartIndices");
    }
    findZeroRuns(sparsity, static_cast<unsigned>(sparsity.size()), static_cast<unsigned>(columns), zeroStart,
                 zeroEnd);
    return true;
}

bool NqReArray::combineIndices(const std::vector<unsigned int>& first,
                               const std::vector<unsigned int>& second,
                               std::vector<unsigned int>& result) const {
    const std::size_t n = first.size();
    const auto inside = [n](unsigned place) { return place < n; };
    if (second.size() != n || !std::all_of(first.begin(), first.end(), inside) ||
        !std::all_of(second.begin(), second.end(), inside)) {
        return refuse("combineIndices");
    }
    // Mostly the second list begins where the first one ends, and one just continues the other.
    std::size_t idleFrom = n;
    while (idleFrom > 0 && first[idleFrom - 1] == idleFrom - 1) {
        --idleFrom;
    }
    std::size_t idleUntil = 0;
    while (idleUntil < n && second[idleUntil] == idleUntil) {
        ++idleUntil;
    }
    result.resize(n);
    if (idleFrom <= idleUntil) {
        for (std::size_t i = 0; i < n; ++i) {
            result[i] = i < idleFrom ? first[i] : second[i];
        }
        return true;
    }
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t origin = cameFrom(first, cameFrom(second, i));
        result[i] = static_cast<unsigned>(goesTo(result, i, origin));
    }
    return true;
}
