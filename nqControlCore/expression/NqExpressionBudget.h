#pragma once

#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <cstdint>

/// Bounds what the values of an expression take of the memory, whatever sizes a file gives them. While one
/// lives, it counts the values of the evaluation that runs on its thread; within another it takes its place.
class NqExpressionBudget {
public:
    static constexpr std::uint64_t kMostElements = 10'000'000; ///< of one matrix
    static constexpr std::uint64_t kMostBytes = 500'000'000;   ///< of all values of an expression

    NqExpressionBudget();
    NqExpressionBudget(const NqExpressionBudget&) = delete;
    NqExpressionBudget& operator=(const NqExpressionBudget&) = delete;
    ~NqExpressionBudget();

    /// That of the evaluation on this thread; null for elements that are evaluated without their container.
    static NqExpressionBudget* current();

    /// Whether a matrix of that shape is within the bound of one matrix. Rows count without elements too.
    static bool admits(std::uint64_t rows, std::uint64_t columns);

    /// Whether there is memory left to take. The first time that there is none it prints a line.
    bool isLeft();

    void take(const NqReArray& value) { m_Bytes += value.rows() * (kBytesOfRow + 8ULL * value.columns()); }

private:
    static constexpr std::uint64_t kBytesOfRow = 40; ///< of a row, with its block of memory

    NqExpressionBudget* m_Outer;
    std::uint64_t m_Bytes = 0;
    bool m_IsReported = false;
};
