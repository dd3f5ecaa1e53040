#pragma once

#include <cstddef>
#include <vector>

/// Cholesky factors of small symmetric matrices, A = L L^T, of which only the lower triangle is read.
class NqCholesky {
public:
    /// Puts L in place of A's first `count` rows. A pivot that isn't above `least` is taken for that: false
    /// then.
    static bool factor(std::vector<std::vector<double>>& matrix, std::size_t count, double least);

    /// Solves A x = b, with b in x.
    static void solve(const std::vector<std::vector<double>>& factor, std::size_t count,
                      std::vector<double>& x);
};
