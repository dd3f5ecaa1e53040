#pragma once

#include <nqControlCore/expression/NqExpressionLeaf.h>

/// A matrix of zeros with one entry at a position; all zeros, with a line at print type 4, where it hasn't
/// got the position. Element "singleElementMatrix".
class NqExpressionSingleElementMatrix : public NqExpressionLeaf<NqExpressionSingleElementMatrix> {
public:
    using NqExpressionLeaf::NqExpressionLeaf;
    static const NqToken& classToken();

    virtual unsigned rowSize() const { return m_RowSize; }
    virtual void setRowSize(unsigned rows) { m_RowSize = rows; }
    virtual unsigned columnSize() const { return m_ColumnSize; }
    virtual void setColumnSize(unsigned columns) { m_ColumnSize = columns; }
    virtual unsigned rowPosition() const { return m_RowPosition; }
    virtual void setRowPosition(unsigned row) { m_RowPosition = row; }
    virtual unsigned columnPosition() const { return m_ColumnPosition; }
    virtual void setColumnPosition(unsigned column) { m_ColumnPosition = column; }
    virtual double elementValue() const { return m_ElementValue; }
    virtual void setElementValue(double value) { m_ElementValue = value; }

private:
    friend NqExpressionLeaf<NqExpressionSingleElementMatrix>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqElementValueToken, &NqExpressionSingleElementMatrix::m_ElementValue),
            nqComponent(NqControlCore::NqRowSizeToken, &NqExpressionSingleElementMatrix::m_RowSize),
            nqComponent(NqControlCore::NqColumnSizeToken, &NqExpressionSingleElementMatrix::m_ColumnSize),
            nqComponent(NqControlCore::NqRowPositionToken, &NqExpressionSingleElementMatrix::m_RowPosition),
            nqComponent(NqControlCore::NqColumnPositionToken,
                        &NqExpressionSingleElementMatrix::m_ColumnPosition));
    }

    std::array<std::uint64_t, 2> shape() const { return {m_RowSize.value(), m_ColumnSize.value()}; }
    void fill(NqReArray& value) const;

    Real m_ElementValue{0.0};
    Count m_RowSize{1};
    Count m_ColumnSize{1};
    Count m_RowPosition{0};
    Count m_ColumnPosition{0};
};
