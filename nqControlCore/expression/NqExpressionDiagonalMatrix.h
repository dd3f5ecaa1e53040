#pragma once

#include <nqControlCore/expression/NqExpressionLeaf.h>

/// A matrix with a vector on its main diagonal, as far as both reach, and zeros elsewhere. Element
/// "diagonalMatrix".
class NqExpressionDiagonalMatrix : public NqExpressionLeaf<NqExpressionDiagonalMatrix> {
public:
    using NqExpressionLeaf::NqExpressionLeaf;
    static const NqToken& classToken();

    virtual unsigned rowSize() const { return m_RowSize; }
    virtual void setRowSize(unsigned rows) { m_RowSize = rows; }
    virtual unsigned columnSize() const { return m_ColumnSize; }
    virtual void setColumnSize(unsigned columns) { m_ColumnSize = columns; }
    virtual const NqXmlRealVector& diagonal() const { return m_Diagonal; }
    virtual void setDiagonal(const NqXmlRealVector& diagonal) { m_Diagonal = diagonal; }

    /// Sets both sizes, and the whole diagonal to the value. Sizes of a matrix that is too large are refused
    /// with a line.
    virtual void assign(unsigned rows, unsigned columns, const double& value);

private:
    friend NqExpressionLeaf<NqExpressionDiagonalMatrix>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqRowSizeToken, &NqExpressionDiagonalMatrix::m_RowSize),
            nqComponent(NqControlCore::NqColumnSizeToken, &NqExpressionDiagonalMatrix::m_ColumnSize),
            nqComponent(NqControlCore::NqDiagonalToken, &NqExpressionDiagonalMatrix::m_Diagonal));
    }

    std::array<std::uint64_t, 2> shape() const { return {m_RowSize.value(), m_ColumnSize.value()}; }
    void fill(NqReArray& value) const;

    Count m_RowSize{1};
    Count m_ColumnSize{1};
    NqXmlRealVector m_Diagonal{1.0};
};
