#pragma once

#include <nqControlCore/foundation/matrix/NqReArray.h>

#include <memory>

class NqSparseSystem;

/// The arrays of a solver's system. A step that passes over zeros leaves them to its sparse system, and they
/// are written out when someone asks; to the outside it is as if they always were.
class NqSystemArrays {
public:
    NqSystemArrays() = default;
    /// Takes the arrays, but no sparse system.
    NqSystemArrays(const NqSystemArrays& other);
    NqSystemArrays& operator=(const NqSystemArrays& other);
    ~NqSystemArrays() = default;

    /// A in factors, N and W N.
    const NqReArray& matrix() const { return written(m_Matrix, theMatrix); }
    const NqReArray& nullSpace() const { return written(m_NullSpace, theNullSpace); }
    const NqReArray& weightedNullSpace() const { return written(m_WeightedNullSpace, theWeightedNullSpace); }
    NqReArray& matrix() { return written(m_Matrix, theMatrix); }
    NqReArray& nullSpace() { return written(m_NullSpace, theNullSpace); }
    NqReArray& weightedNullSpace() { return written(m_WeightedNullSpace, theWeightedNullSpace); }

    /// Gives all arrays the sizes for n joints and m rows; what has them keeps its numbers.
    void resize(unsigned n, unsigned m);

    /// The i-th element of the diagonal of U.
    double pivot(unsigned i) const;

    /// Made when it is first wanted.
    NqSparseSystem& sparseSystem();
    /// The arrays are what the sparse system has found.
    void leaveToSparseSystem() { m_Waiting = theWhole; }
    /// The sparse system has something else by now; what it didn't write out is lost.
    void forgetSparseSystem() { m_Waiting = 0; }

private:
    /// Which of them are still to be written.
    enum Array : unsigned { theMatrix = 1, theNullSpace = 2, theWeightedNullSpace = 4, theWhole = 7 };

    NqReArray& written(NqReArray& array, Array which) const;

    mutable NqReArray m_Matrix;
    mutable NqReArray m_NullSpace;
    mutable NqReArray m_WeightedNullSpace;
    mutable unsigned m_Waiting = 0;
    std::shared_ptr<NqSparseSystem> m_SparseSystem;
};
