#pragma once

#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <cstdint>
#include <vector>

/// A Jacobian J (m rows, n columns) with what the solver derives from it: its factors, a basis of its null
/// space and the pivots. They are found when the Jacobian is set; without one, everything is empty.
class NqJacobianState {
public:
    NqJacobianState() = default;
    NqJacobianState(const NqJacobianState&) = default;
    NqJacobianState(NqJacobianState&&) noexcept = default;
    NqJacobianState& operator=(const NqJacobianState&) = default;
    NqJacobianState& operator=(NqJacobianState&&) noexcept = default;
    bool operator==(const NqJacobianState&) const = default;

    virtual ~NqJacobianState() = default;

    /// J as it was set.
    virtual const NqReArray& jacobianArray() const { return m_JacobianArray; }
    /// N, n by (n - m), with J N = 0; rows in the caller's joint order.
    virtual const NqReArray& nullSpaceArray() const { return m_NullSpaceArray; }
    /// The lists of zero starts that NqReArray::nullSpaceSparse() takes: in rows, and in columns.
    virtual const std::vector<unsigned int>& sparsityIndicesFirst() const { return m_SparsityIndicesFirst; }
    virtual const std::vector<unsigned int>& sparsityIndicesSecond() const { return m_SparsityIndicesSecond; }
    /// The sparsity that was set: a mask for each row, with bit j for column j. Empty before, and where rows
    /// have more columns than a mask has bits.
    const std::vector<std::uint64_t>& sparsityMasks() const { return m_SparsityMasks; }
    /// Whether known zeros are passed over when null spaces are computed; false at first.
    /// NqCoreVelocityControlTool then passes over them in the whole solve: over those of the sparsity masks,
    /// or, where they don't hold or are few, over those that J has. Masks make it faster, as what is to be
    /// done stays the same though elements pass through zero.
    virtual bool useSparseNullSpace() const { return m_UseSparseNullSpace; }
    /// n by n; the first m rows hold J factored as by NqReArray::nullSpace(), the others are zero.
    virtual const NqReArray& factoredJacobianArray() const { return m_FactoredJacobianArray; }
    /// The n column interchanges of that factoring.
    virtual const std::vector<unsigned int>& pivotIndices() const { return m_PivotIndices; }

    /// Takes over J and factors it. False when a pivot is exactly zero (infinities are then in the factors),
    /// and, with a line, when J has more rows than columns or rows of different length; J is then kept, and
    /// all that derives from it is empty. Allocates nothing when J has the shape of the one before.
    bool setJacobian(const NqReArray& jacobian);

    /// Makes masks and lists of zero starts from rows of bits in the shape of J, set where an element can be
    /// non-zero. Lists hold from the next Jacobian on, masks from the next solve on. What doesn't fit a
    /// Jacobian is passed over.
    bool setSparsity(const std::vector<std::vector<bool>>& sparsity);
    void setUseSparseNullSpace(bool useSparseNullSpace) { m_UseSparseNullSpace = useSparseNullSpace; }

private:
    std::vector<unsigned int> m_SparsityIndicesFirst;
    std::vector<unsigned int> m_SparsityIndicesSecond;
    std::vector<std::uint64_t> m_SparsityMasks;
    bool m_UseSparseNullSpace = false;

    NqReArray m_JacobianArray;
    NqReArray m_NullSpaceArray;
    NqReArray m_FactoredJacobianArray;
    std::vector<unsigned int> m_PivotIndices;
};
