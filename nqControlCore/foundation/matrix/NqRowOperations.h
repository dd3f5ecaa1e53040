#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

/// Marks a function whose row operations are worth the widest vectors that the machine has: it is compiled
/// for these too, where compiler and C library can choose the one that fits when the program starts (the
/// build finds that out). Its results are the same to the last bit, since products are never contracted.
#if defined(NQ_HAVE_TARGET_CLONES) && defined(__OPTIMIZE__)
#define NQ_WIDE_ROWS __attribute__((target_clones("arch=x86-64-v3", "default")))
#else
#define NQ_WIDE_ROWS
#endif

/// Marks a function that such functions are made of. On its own it would have narrow vectors, and changing
/// between these and wide ones can slow down all that follows.
#define NQ_INLINE_ROWS [[gnu::always_inline]] inline

/// The inner loops of the factorings, along contiguous rows so that they vectorise. Each element receives its
/// terms one by one in rising order of the rows they come from, whatever the grouping of the loops.
///
/// Products are added; a caller that subtracts passes the negated factor, which gives the same bits.
namespace NqRowOperations {

/// How many pivot rows are worked through together, and how many neighbouring numbers.
inline constexpr unsigned PanelWidth = 4;

typedef double Group __attribute__((vector_size(PanelWidth * sizeof(double))));

/// Calls `action(j)` so that groups from there on cover `count` elements, some of them twice; count is at
/// least PanelWidth.
template <typename Action>
NQ_INLINE_ROWS void forEachGroup(std::size_t count, const Action& action) {
    constexpr std::size_t kBlock = 4 * PanelWidth;
    const auto forBlock = [&action](std::size_t j) {
        action(j);
        action(j + PanelWidth);
        action(j + 2 * PanelWidth);
        action(j + 3 * PanelWidth);
    };
    if (count >= kBlock) {
        for (std::size_t j = 0; j + kBlock < count; j += kBlock) {
            forBlock(j);
        }
        forBlock(count - kBlock);
        return;
    }
    action(0); // without a loop, which would become a call
    if (count > 2 * PanelWidth) {
        action(PanelWidth);
    }
    if (count > 3 * PanelWidth) {
        action(2 * PanelWidth);
    }
    action(count - PanelWidth);
}

/// row[j] = 0, of rows that are mostly too short for a call.
NQ_INLINE_ROWS void setToZeros(double* row, std::size_t count) {
    if (count >= PanelWidth) {
        forEachGroup(count, [row](std::size_t j) {
            const Group zeros = {};
            std::memcpy(row + j, &zeros, sizeof zeros);
        });
        return;
    }
    for (std::size_t j = 0; j < count; ++j) {
        row[j] = 0.0;
    }
}

/// Two numbers that go through the same operations side by side.
typedef double Pair __attribute__((vector_size(2 * sizeof(double))));

inline double load(double x) {
    return x;
}
inline Pair load(const std::array<double, 2>& x) {
    return Pair{x[0], x[1]};
}
inline void store(double& x, double value) {
    x = value;
}
inline void store(std::array<double, 2>& x, Pair value) {
    std::memcpy(&x, &value, sizeof value);
}

/// to[j] = from[j], of rows of at most two groups. A copy of a copy finds the pieces that were written, for
/// which it doesn't have to wait.
NQ_INLINE_ROWS void copyShort(double* to, const double* from, std::size_t count) {
    constexpr std::size_t kWhole = PanelWidth * sizeof(double);
    if (count >= PanelWidth) {
        std::memcpy(to, from, kWhole);
        to += PanelWidth;
        from += PanelWidth;
        count -= PanelWidth;
    }
    switch (count) {
    case 4:
        std::memcpy(to, from, kWhole);
        break;
    case 3:
        to[2] = from[2];
        [[fallthrough]];
    case 2:
        std::memcpy(to, from, kWhole / 2);
        break;
    case 1:
        *to = *from;
        break;
    default:
        break;
    }
}

/// to[j] = from[j], of rows that are mostly too short for a call.
NQ_INLINE_ROWS void copy(double* to, const double* from, std::size_t count) {
    if (count <= 2 * PanelWidth) {
        copyShort(to, from, count);
        return;
    }
    forEachGroup(count, [to, from](std::size_t j) {
        Group group; // in one piece
        std::memcpy(&group, from + j, sizeof group);
        std::memcpy(to + j, &group, sizeof group);
    });
}

/// Whether all numbers are finite.
inline bool areFinite(const double* row, std::size_t count) {
    Group group = {}; // NaN, where one isn't
    std::size_t j = 0;
    for (; j + PanelWidth <= count; j += PanelWidth) {
        Group numbers;
        std::memcpy(&numbers, row + j, sizeof numbers);
        group += numbers * 0.0;
    }
    double check = group[0] + group[1] + group[2] + group[3];
    for (; j < count; ++j) {
        check += row[j] * 0.0;
    }
    return check == 0.0;
}

/// y[j] += factor x[j].
inline void addMultiple(double* __restrict y, double factor, const double* __restrict x, std::size_t count) {
    for (std::size_t j = 0; j < count; ++j) {
        y[j] += factor * x[j];
    }
}

/// y[j] += factors[0] rows[0][j], then factors[1] rows[1][j] and so on, for `width` rows, at most PanelWidth;
/// j runs from `begin` to `end` - 1, in y and in the rows.
inline void addMultiples(double* y, const double* factors, const double* const* rows, unsigned width,
                         std::size_t begin, std::size_t end) {
    if (width < PanelWidth) {
        for (unsigned k = 0; k < width; ++k) {
            addMultiple(y + begin, factors[k], rows[k] + begin, end - begin);
        }
        return;
    }
    const double f0 = factors[0], f1 = factors[1], f2 = factors[2], f3 = factors[3];
    const double* __restrict r0 = rows[0];
    const double* __restrict r1 = rows[1];
    const double* __restrict r2 = rows[2];
    const double* __restrict r3 = rows[3];
    double* __restrict target = y;
    for (std::size_t j = begin; j < end; ++j) {
        target[j] = (((target[j] + f0 * r0[j]) + f1 * r1[j]) + f2 * r2[j]) + f3 * r3[j];
    }
}

/// The greatest magnitude from `begin` to `end` - 1; NaN doesn't count, and 0 is the least.
inline double largestMagnitude(const double* row, std::size_t begin, std::size_t end) {
    const auto larger = [](double entry, double best) {
        const double magnitude = std::abs(entry);
        return magnitude > best ? magnitude : best;
    };
    double best[PanelWidth] = {};
    std::size_t j = begin;
    for (; j + PanelWidth <= end; j += PanelWidth) {
        for (unsigned lane = 0; lane < PanelWidth; ++lane) {
            best[lane] = larger(row[j + lane], best[lane]);
        }
    }
    for (; j < end; ++j) {
        best[0] = larger(row[j], best[0]);
    }
    return std::max({best[0], best[1], best[2], best[3]});
}

/// The first column from `begin` to `end` - 1 whose entry has the greatest magnitude; `kept` when all of them
/// are zero or NaN.
inline unsigned firstLargest(const double* row, unsigned begin, unsigned end, unsigned kept) {
    const double best = largestMagnitude(row, begin, end);
    if (best == 0.0) {
        return kept;
    }
    while (std::abs(row[begin]) != best) {
        ++begin;
    }
    return begin;
}

/// The last such column, also when all magnitudes are zero; `kept` when all entries are NaN.
inline unsigned lastLargest(const double* row, unsigned begin, unsigned end, unsigned kept) {
    const double best = largestMagnitude(row, begin, end);
    while (end > begin) {
        if (std::abs(row[--end]) == best) {
            return end;
        }
    }
    return kept;
}

/// A few consecutive rows of a matrix, factored. The columns first, first + 1 ... are theirs.
struct Panel {
    unsigned first;                 ///< row and column index of the first one
    unsigned width = 0;             ///< how many there are by now
    const double* rows[PanelWidth]; ///< the whole rows
    double reciprocals[PanelWidth]; ///< 1.0 / pivot of each

    explicit Panel(unsigned firstRow) : first(firstRow) {}

    void add(const double* row) {
        rows[width] = row;
        reciprocals[width] = 1.0 / row[first + width];
        ++width;
    }

    /// Leaves the multipliers that eliminate `row` in the panel's columns of that row, and negated in
    /// `factors`.
    void multipliers(double* row, double* factors) const {
        double* const head = row + first;
        if (width == PanelWidth) {
            const double* const r0 = rows[0] + first;
            const double* const r1 = rows[1] + first;
            const double* const r2 = rows[2] + first;
            head[0] *= reciprocals[0];
            head[1] = (head[1] - head[0] * r0[1]) * reciprocals[1];
            head[2] = ((head[2] - head[0] * r0[2]) - head[1] * r1[2]) * reciprocals[2];
            head[3] = (((head[3] - head[0] * r0[3]) - head[1] * r1[3]) - head[2] * r2[3]) * reciprocals[3];
            for (unsigned k = 0; k < PanelWidth; ++k) {
                factors[k] = -head[k];
            }
            return;
        }
        for (unsigned k = 0; k < width; ++k) {
            head[k] *= reciprocals[k];
            factors[k] = -head[k];
            for (unsigned later = k + 1; later < width; ++later) {
                head[later] += factors[k] * rows[k][first + later];
            }
        }
    }

    /// Eliminates `row` against the panel: the multipliers, and the columns behind the panel, up to `end`
    /// - 1.
    void eliminate(double* row, std::size_t end) const {
        double factors[PanelWidth];
        multipliers(row, factors);
        addMultiples(row, factors, rows, width, first + width, end);
    }
};

} // namespace NqRowOperations
