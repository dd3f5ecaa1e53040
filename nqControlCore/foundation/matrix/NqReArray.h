#pragma once

#include <cstdint>
#include <iosfwd>
#include <vector>

/// A dense matrix of doubles, kept as a vector of row vectors.
///
/// Written A below, with A^T its transpose. `operator[]` hands out whole rows, unchecked; whoever changes
/// their lengths keeps them equal. Every other operation checks shapes: on operands that don't fit it prints
/// one line at print type 4, returns false (or the stated value) and leaves its outputs untouched. Arithmetic
/// itself is plain IEEE: division by zero gives infinities, a NaN spreads.
///
/// An array that is given the shape it already has keeps its memory, also as the result of an operation. The
/// result may be the operand itself only where that is said.
class NqReArray {
public:
    using Row = std::vector<double>;

    NqReArray() = default;
    /// Zeros.
    NqReArray(unsigned rows, unsigned columns);
    NqReArray(const NqReArray&) = default;
    NqReArray(NqReArray&&) noexcept = default;
    NqReArray& operator=(const NqReArray&) = default;
    NqReArray& operator=(NqReArray&&) noexcept = default;
    /// One column that holds the vector.
    NqReArray& operator=(const std::vector<double>& column);

    Row& operator[](std::size_t row) { return m_Rows[row]; }
    const Row& operator[](std::size_t row) const { return m_Rows[row]; }

    /// Number of rows.
    std::uint64_t size() const { return m_Rows.size(); }

    /// Replaces a whole row, whatever the length of the new one. False with a line when there is no such row.
    bool assign(unsigned row, const Row& values);

    /// Same shape and equal entries; a NaN equals nothing.
    bool operator==(const NqReArray& other) const { return m_Rows == other.m_Rows; }

    /// Entry by entry. Shapes that differ leave this array as it was.
    NqReArray& operator+=(const NqReArray& other);
    NqReArray& operator-=(const NqReArray& other);

    /// Entry by entry. The empty array when shapes differ.
    NqReArray operator-(const NqReArray& other) const;
    NqReArray operator-() const;

    /// The matrix product. The empty array when shapes don't fit.
    NqReArray operator*(const NqReArray& right) const;

    /// An empty array.
    static NqReArray nullObject() { return {}; }

    virtual ~NqReArray() = default;

    /// Sum of the diagonal; 0.0 with a line when the array isn't square.
    virtual double trace() const;

    /// result = A vector, as one column.
    virtual bool transform(const std::vector<double>& vector, NqReArray& result) const;
    /// result = A vector. The two may be the same.
    virtual bool transform(const std::vector<double>& vector, std::vector<double>& result) const;
    /// result = A array. The result may be any of the operands.
    virtual bool transform(const NqReArray& array, NqReArray& result) const;
    /// result = A array^T. The result may be any of the operands.
    virtual bool transposeTransform(const NqReArray& array, NqReArray& result) const;
    /// result = A^T vector. The two may be the same.
    virtual bool leftTransposeTransform(const std::vector<double>& vector, std::vector<double>& result) const;
    /// result = A^T array. The result may be any of the operands.
    virtual bool leftTransposeTransform(const NqReArray& array, NqReArray& result) const;

    /// A function of each entry: 1 / a, cos a, sin a, ln a, log of a in `base`, a to the `exponent`. The
    /// result may be this array.
    virtual void elementInverse(NqReArray& result) const;
    virtual void elementCosine(NqReArray& result) const;
    virtual void elementSine(NqReArray& result) const;
    virtual void elementLog(NqReArray& result) const;
    virtual void elementLogN(double base, NqReArray& result) const;
    virtual void elementPow(double exponent, NqReArray& result) const;

    /// result = A^T, which may be this array. False with a line when rows differ in length.
    virtual bool transpose(NqReArray& result) const;
    /// A^T; the empty array when rows differ in length.
    virtual NqReArray transpose() const;

    /// A += v v^T and A += weight v v^T, for a square A of the vector's length.
    virtual bool addSelfOuterProduct(const std::vector<double>& v);
    virtual bool addWeightedSelfOuterProduct(const std::vector<double>& v, double weight);

    /// Replaces a symmetric positive definite A, of which only the lower triangle is read, by the lower
    /// triangular L of A = L L^T, zeros above its diagonal. False when A isn't square (with a line, A
    /// untouched) or not positive definite (A is then partly overwritten).
    virtual bool choleskyDecomposition();
    /// With this array as L: solves L L^T solution = rightHandSides, a right-hand side and a solution in each
    /// column. Both may be the same array.
    virtual bool choleskyBackSubstitution(const NqReArray& rightHandSides, NqReArray& solution) const;
    /// The same on the transpose: a right-hand side and its solution in each row.
    virtual bool choleskyBackSubstitutionOnTranspose(const NqReArray& rightHandSides,
                                                     NqReArray& solution) const;
    /// With this array as L, of which only the lower triangle is read: solves L solution = rightHandSides, by
    /// columns. Both may be the same array.
    virtual bool lowerTriangularForwardSubstitution(const NqReArray& rightHandSides,
                                                    NqReArray& solution) const;
    /// The same on the transpose: a right-hand side and its solution in each row.
    virtual bool lowerTriangularForwardSubstitutionOnTranspose(const NqReArray& rightHandSides,
                                                               NqReArray& solution) const;

    /// normal = A A^T, the normal matrix of a system with fewer equations than unknowns.
    virtual bool underconstrainedNormal(NqReArray& normal) const;
    /// normal = A^T A, the normal matrix of a system with more equations than unknowns.
    virtual bool overconstrainedNormal(NqReArray& normal) const;

    /// Same shape, and no entries further apart than `tolerance`; a NaN is never close. Silent.
    virtual bool approxEq(const NqReArray& other, double tolerance) const;
    /// The greatest sum of magnitudes in a row; 0.0 for an empty array.
    virtual double infinityNorm() const;

    virtual unsigned rows() const { return static_cast<unsigned>(m_Rows.size()); }
    /// The length of the first row; 0 for an empty array.
    virtual unsigned columns() const {
        return m_Rows.empty() ? 0u : static_cast<unsigned>(m_Rows.front().size());
    }

    virtual void setToZeros(unsigned rows, unsigned columns);
    virtual void setToValue(unsigned rows, unsigned columns, double value);
    /// Ones on the main diagonal, zeros elsewhere; needn't be square.
    virtual void setToIdentity(unsigned rows, unsigned columns);
    /// Keeps the entries that fit the new shape; new ones are zero.
    virtual void resizeArray(unsigned rows, unsigned columns);
    /// Keeps the shape, and takes over the entries of the common upper left corner.
    virtual void copyEntriesOf(const NqReArray& source);

    /// Sets a column, or a row, to the values, which must be as many as it has entries.
    virtual bool assignColumnTo(unsigned column, const std::vector<double>& values);
    virtual bool assignRowTo(unsigned row, const std::vector<double>& values);

    /// Factors a square A in place, by rows interchanged for the largest pivot: L with unit diagonal strictly
    /// below the diagonal, U on and above it. pivots[i] is the row that changed places with row i at step i;
    /// `sign` is 1.0 or -1.0 for an even or odd number of interchanges. False when A isn't square (with a
    /// line) or a pivot is exactly zero (silent; the factors are then of no use).
    virtual bool LUDecomposition(std::vector<unsigned int>& pivots, double& sign);
    /// With this array and `pivots` as LUDecomposition leaves them: solves for `solution`, which may be the
    /// right-hand side itself.
    virtual bool forwardAndBackSub(const std::vector<unsigned int>& pivots,
                                   const std::vector<double>& rightHandSide,
                                   std::vector<double>& solution) const;
    /// Solves A solution = rightHandSide for a square A, which stays. False when A is singular (silent).
    virtual bool solve(const std::vector<double>& rightHandSide, std::vector<double>& solution) const;
    /// inverse = A^-1, which may be this array. False when A isn't square (with a line) or singular (silent).
    virtual bool invertSquareMatrix(NqReArray& inverse) const;
    /// LUDecomposition for arrays with many zeros: passes over rows whose multiplier is zero. The same result
    /// for finite entries, but perhaps for the sign of zeros.
    virtual bool LUDecompositionSparse(std::vector<unsigned int>& pivots, double& sign);
    /// 0.0 with a line when the array isn't square; 1.0 for the empty array.
    virtual double determinant() const;

    /// Factors the first m rows, J, and finds a basis of the null space of J. The array has n columns, m <=
    /// n, and at least m rows; those behind row m aren't touched.
    ///
    /// Row by row, the column with the largest magnitude (the first of equals) changes places with the
    /// diagonal's column in all m rows. They are left with L, unit lower triangular, strictly below the
    /// diagonal, and U on and above it. `indices` gets n entries: entry i names the column that changed
    /// places with column i at step i, and is i itself from m on. With P the interchanges and U = [U11 U12],
    ///     basis = P [ -U11^-1 U12 ; I ],  n by (n - m), rows in the caller's column order, J basis = 0.
    ///
    /// False when shapes don't fit (with a line, nothing touched), and when a pivot is zero, or too small to
    /// have a finite reciprocal: then J doesn't have full row rank, and infinities and NaN run into the
    /// factors and the basis. Allocates nothing when `basis` and `indices` have their sizes.
    virtual bool nullSpace(NqReArray& basis, unsigned int m, std::vector<unsigned int>& indices);

    /// nullSpace() that passes over known zeros of J. The lists, of m entries each, name one run of zeros in
    /// each row: row r of J is zero from column zeroStart[r] to column zeroEnd[r] - 1, and zeroStart[r] =
    /// zeroEnd[r] stands for no run. What a row shares with the runs of all rows above it saves work. Hence
    /// most is gained when joints and constraints of a branch stand together, branch behind branch in the
    /// same order; the joints that branches share, such as a free base, stand before or behind all of them.
    ///
    /// Lists of other lengths, or with runs beyond the columns or where J isn't zero, are not used at all.
    /// Where nullSpace() succeeds, pivots and result are the same to the bit, but perhaps for the sign of
    /// zeros.
    virtual bool nullSpaceSparse(NqReArray& basis, unsigned int m, std::vector<unsigned int>& indices,
                                 const std::vector<unsigned int>& zeroStart,
                                 const std::vector<unsigned int>& zeroEnd);

    /// Makes the lists for nullSpaceSparse() from the zeros that the first m rows have now: in each row the
    /// longest run within the run of the row above.
    virtual bool calculateZeroStartIndices(unsigned int m, std::vector<unsigned int>& zeroStart,
                                           std::vector<unsigned int>& zeroEnd) const;

    /// Makes the same lists from a sparsity description: rows of bits in the shape of J, set where an element
    /// can be non-zero. False with a line when its rows differ in length.
    static bool calculateZeroStartIndices(const std::vector<std::vector<bool>>& sparsity,
                                          std::vector<unsigned int>& zeroStart,
                                          std::vector<unsigned int>& zeroEnd);

    /// Writes a line for each row, its entries separated by blanks.
    virtual void dump(std::ostream& stream) const;
    /// Writes {{a, b}, {c, d}}, exponents as "*^", which Mathematica reads.
    virtual void dumpMath(std::ostream& stream) const;

    /// One list of interchanges with the effect of two: `first`, then `second`. A list stands for exchanging
    /// places i and list[i], for i rising. `result` is a list of its own. False with a line when the lists
    /// differ in length or name a place that they don't have.
    virtual bool combineIndices(const std::vector<unsigned int>& first,
                                const std::vector<unsigned int>& second,
                                std::vector<unsigned int>& result) const;

    /// The inverse of a 2 by 2, or 3 by 3, array by cofactors; it may be this array. False when A has another
    /// shape (with a line) or its determinant is exactly zero (silent).
    virtual bool inv2(NqReArray& inverse) const;
    virtual bool inv3(NqReArray& inverse) const;

    /// Writes the array in a binary form that is the same on every machine and keeps every bit. The array
    /// must have rows of one length, below 2^32. False when that isn't so (with a line) or the stream fails.
    virtual bool writeBin(std::ostream& stream) const;
    /// Reads what writeBin() wrote. False with a line when the stream holds something else or ends early;
    /// this array is then untouched. Never takes more memory than the stream delivers, whatever sizes it
    /// names.
    virtual bool readBin(std::istream& stream);

    /// Copies a column, or a row. False with a line when there is none of that index.
    virtual bool getColumn(unsigned column, std::vector<double>& values) const;
    virtual bool getRow(unsigned row, std::vector<double>& values) const;

    /// Greatest and smallest entry: NaN when there is a NaN, 0.0 with a line when there is no entry.
    virtual double maximum() const;
    virtual double minimum() const;
    /// Sum of all entries, row by row.
    virtual double sum() const;

private:
    /// Prints that operands don't fit the operation. False.
    static bool refuse(const char* operation);
    bool isRectangular() const;
    bool isSquare() const;
    bool hasShapeOf(const NqReArray& other) const;
    template <typename Beats>
    double extreme(const char* operation, const Beats& beats) const;

    // What public operations share; `operation` is the one that a refusal names.
    bool multiply(const char* operation, const NqReArray& array, NqReArray& result) const;
    bool multiplyByTranspose(const char* operation, const NqReArray& array, NqReArray& result) const;
    bool multiplyTransposed(const char* operation, const NqReArray& array, NqReArray& result) const;
    bool addOuterProduct(const char* operation, const std::vector<double>& v, double weight);
    bool substituteInRows(const char* operation, const NqReArray& rightHandSides, NqReArray& solution,
                          bool withBack) const;
    bool substituteInColumns(const char* operation, const NqReArray& rightHandSides, NqReArray& solution,
                             bool withBack) const;

    bool factor(std::vector<unsigned int>& pivots, double& sign, bool skipZeros);
    bool fitsNullSpace(const char* operation, const NqReArray& basis, unsigned m) const;
    bool zerosHold(unsigned m, const std::vector<unsigned int>& zeroStart,
                   const std::vector<unsigned int>& zeroEnd) const;
    struct Factored {
        bool isRegular = true; ///< all pivots have finite reciprocals
        bool isFinite = true;  ///< these and the rows are finite
    };
    template <bool SkipZeros>
    Factored factorRows(unsigned m, std::vector<unsigned int>& indices,
                        const std::vector<unsigned int>* zeroStart, const std::vector<unsigned int>* zeroEnd);
    void findBasis(NqReArray& basis, unsigned m, const std::vector<unsigned int>& indices,
                   bool skipZeros) const;

    std::vector<Row> m_Rows;
};
