#pragma once

#include <nqControlLoop/NqBoundActiveSet.h>

#include <nqControlCore/foundation/matrix/NqReArray.h>

/// Rates x between bounds with the least |J x - v|^2 + lambda^2 (x - w)^T A (x - w): what comes nearest to
/// the velocity v where no rates in the bounds give it, with wished rates w to decide where it leaves a
/// choice, and weights A on a diagonal.
class NqBoundedLeastSquares {
public:
    void prepare(unsigned n);

    /// False when it took too many steps; the rates are then the wished ones, put between the bounds.
    bool solve(const NqReArray& jacobian, unsigned rows, const std::vector<double>& velocity,
               const std::vector<double>& wished, const std::vector<double>& weights, double damping,
               const std::vector<double>& lower, const std::vector<double>& upper,
               std::vector<double>& rates);

    const std::vector<NqBoundActiveSet::Hold>& holds() const { return m_Bounds.holds(); }
    unsigned steps() const { return m_Bounds.steps(); }
    bool isCapped() const { return m_IsCapped; }

private:
    class Response;

    NqBoundActiveSet m_Bounds;
    std::vector<std::vector<double>> m_Factor; ///< Cholesky, of J^T J + lambda^2 A
    std::vector<double> m_Freedom;
    bool m_IsCapped = false;
};
