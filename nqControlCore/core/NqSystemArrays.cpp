#include <nqControlCore/core/NqSystemArrays.h>

#include <nqControlCore/core/NqSparseSystem.h>

NqSystemArrays::NqSystemArrays(const NqSystemArrays& other)
    : m_Matrix(other.matrix()), m_NullSpace(other.nullSpace()),
      m_WeightedNullSpace(other.weightedNullSpace()) {}

NqSystemArrays& NqSystemArrays::operator=(const NqSystemArrays& other) {
    if (this != &other) {
        forgetSparseSystem();
        m_Matrix = other.matrix();
        m_NullSpace = other.nullSpace();
        m_WeightedNullSpace = other.weightedNullSpace();
    }
    return *this;
}

void NqSystemArrays::resize(unsigned n, unsigned m) {
    const auto reshape = [this, n](NqReArray& array, unsigned columns, Array which) {
        if (array.rows() != n || array.columns() != columns) {
            array.setToZeros(n, columns);
            m_Waiting &= ~unsigned{which};
        }
    };
    reshape(m_Matrix, n, theMatrix);
    reshape(m_NullSpace, n - m, theNullSpace);
    reshape(m_WeightedNullSpace, n - m, theWeightedNullSpace);
}

double NqSystemArrays::pivot(unsigned i) const {
    return (m_Waiting & theMatrix) != 0 ? m_SparseSystem->pivot(i) : m_Matrix[i][i];
}

NqSparseSystem& NqSystemArrays::sparseSystem() {
    if (!m_SparseSystem) {
        m_SparseSystem = std::make_shared<NqSparseSystem>();
    }
    return *m_SparseSystem;
}

NqReArray& NqSystemArrays::written(NqReArray& array, Array which) const {
    if ((m_Waiting & which) != 0) [[unlikely]] {
        m_Waiting &= ~unsigned{which};
        switch (which) {
        case theMatrix:
            m_SparseSystem->giveFactors(array);
            break;
        case theNullSpace:
            m_SparseSystem->giveNullSpace(array);
            break;
        default:
            m_SparseSystem->giveWeightedNullSpace(array);
            break;
        }
    }
    return array;
}
