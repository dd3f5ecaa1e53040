#pragma once

#include <nqControlCore/expression/NqExpressionLeaf.h>

/// A column with given entries. Element "generalColumn".
class NqExpressionGeneralColumn : public NqExpressionLeaf<NqExpressionGeneralColumn> {
public:
    using NqExpressionLeaf::NqExpressionLeaf;
    static const NqToken& classToken();

    virtual const NqXmlRealVector& column() const { return m_Column; }
    virtual void setColumn(const NqXmlRealVector& column) { m_Column = column; }

    /// Sets so many entries to the value. A size that is too large is refused with a line.
    virtual void assign(unsigned size, const double& value);

    /// Sets one entry; false for an index that isn't below the length.
    virtual bool setValue(unsigned index, const double& value);

private:
    friend NqExpressionLeaf<NqExpressionGeneralColumn>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqColumnToken, &NqExpressionGeneralColumn::m_Column));
    }

    std::array<std::uint64_t, 2> shape() const { return {m_Column.size(), 1}; }
    void fill(NqReArray& value) const;

    NqXmlRealVector m_Column{1.0};
};
