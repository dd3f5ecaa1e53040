#pragma once

#include <nqControlCore/expression/NqExpressionLeaf.h>

/// The identity matrix of a size. Element "identityMatrix".
class NqExpressionIdentityMatrix : public NqExpressionLeaf<NqExpressionIdentityMatrix> {
public:
    using NqExpressionLeaf::NqExpressionLeaf;
    static const NqToken& classToken();

    virtual unsigned size() const { return m_Size; }
    virtual void setSize(unsigned size) { m_Size = size; }

private:
    friend NqExpressionLeaf<NqExpressionIdentityMatrix>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(nqComponent(NqControlCore::NqSizeToken, &NqExpressionIdentityMatrix::m_Size));
    }

    std::array<std::uint64_t, 2> shape() const { return {m_Size.value(), m_Size.value()}; }
    void fill(NqReArray& value) const;

    Count m_Size{1};
};
