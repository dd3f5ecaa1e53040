#include <nqControlLoop/NqCholesky.h>

#include <cmath>

bool NqCholesky::factor(std::vector<std::vector<double>>& matrix, std::size_t count, double least) {
    bool isGood = true;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = matrix[i][j];
            for (std::size_t k = 0; k < j; ++k) {
                sum -= matrix[i][k] * matrix[j][k];
            }
            if (j < i) {
                matrix[i][j] = sum / matrix[j][j];
            } else {
                isGood = isGood && sum > least;
                matrix[i][i] = std::sqrt(sum > least ? sum : least);
            }
        }
    }
    return isGood;
}

void NqCholesky::solve(const std::vector<std::vector<double>>& factor, std::size_t count,
                       std::vector<double>& x) {
    for (std::size_t i = 0; i < count; ++i) {
        double sum = x[i];
        for (std::size_t j = 0; j < i; ++j) {
            sum -= factor[i][j] * x[j];
        }
        x[i] = sum / factor[i][i];
    }
    for (std::size_t i = count; i-- > 0;) {
        x[i] /= factor[i][i];
        for (std::size_t j = 0; j < i; ++j) {
            x[j] -= factor[i][j] * x[i];
        }
    }
}
