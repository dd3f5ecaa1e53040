#include <nqControlCore/foundation/manipulator/NqJacobianState.h>

#include <nqControlCore/foundation/matrix/NqRowMask.h>
#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

bool NqJacobianState::setJacobian(const NqReArray& jacobian) {
    m_JacobianArray = jacobian;
    const unsigned m = jacobian.rows();
    const unsigned n = jacobian.columns();
    bool fits = m <= n;
    for (unsigned i = 0; i < m; ++i) {
        fits = fits && jacobian[i].size() == n;
    }
    if (m == 0 || !fits) {
        m_FactoredJacobianArray = NqReArray::nullObject();
        m_NullSpaceArray = NqReArray::nullObject();
        m_PivotIndices.clear();
        if (!fits) {
            Nq::Print::instance().write(Nq::PrintFailure,
                                        "NqJacobianState::setJacobian(): bad dimensions on input...\n");
        }
        return fits;
    }
    m_FactoredJacobianArray.setToZeros(n, n);
    m_FactoredJacobianArray.copyEntriesOf(jacobian);
    return m_UseSparseNullSpace
               ? m_FactoredJacobianArray.nullSpaceSparse(m_NullSpaceArray, m, m_PivotIndices,
                                                         m_SparsityIndicesFirst, m_SparsityIndicesSecond)
               : m_FactoredJacobianArray.nullSpace(m_NullSpaceArray, m, m_PivotIndices);
}

bool NqJacobianState::setSparsity(const std::vector<std::vector<bool>>& sparsity) {
    if (!NqReArray::calculateZeroStartIndices(sparsity, m_SparsityIndicesFirst, m_SparsityIndicesSecond)) {
        return false;
    }
    const bool fits = !sparsity.empty() && sparsity.front().size() <= NqRowMask::Places;
    m_SparsityMasks.resize(fits ? sparsity.size() : 0);
    for (std::size_t i = 0; i < m_SparsityMasks.size(); ++i) {
        NqRowMask::Mask mask = 0;
        for (unsigned j = 0; j < sparsity[i].size(); ++j) {
            mask |= sparsity[i][j] ? NqRowMask::bit(j) : 0;
        }
        m_SparsityMasks[i] = mask;
    }
    return true;
}
