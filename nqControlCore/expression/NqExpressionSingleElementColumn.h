#pragma once

#include <nqControlCore/expression/NqExpressionLeaf.h>

/// A column of zeros with one entry at a position; all zeros where it hasn't got the position. Element
/// "singleElementColumn".
class NqExpressionSingleElementColumn : public NqExpressionLeaf<NqExpressionSingleElementColumn> {
public:
    using NqExpressionLeaf::NqExpressionLeaf;
    static const NqToken& classToken();

    virtual unsigned size() const { return m_Size; }
    virtual void setSize(unsigned size) { m_Size = size; }
    virtual unsigned position() const { return m_Position; }
    virtual void setPosition(unsigned position) { m_Position = position; }
    virtual double elementValue() const { return m_ElementValue; }
    virtual void setElementValue(double value) { m_ElementValue = value; }

private:
    friend NqExpressionLeaf<NqExpressionSingleElementColumn>;
    friend struct NqXmlComponentAccess;
    static auto components() {
        return nqComponentList(
            nqComponent(NqControlCore::NqElementValueToken, &NqExpressionSingleElementColumn::m_ElementValue),
            nqComponent(NqControlCore::NqSizeToken, &NqExpressionSingleElementColumn::m_Size),
            nqComponent(NqControlCore::NqPositionToken, &NqExpressionSingleElementColumn::m_Position));
    }

    static constexpr bool kIsAlwaysFilled = true;
    std::array<std::uint64_t, 2> shape() const { return {m_Size.value(), 1}; }
    void fill(NqReArray& value) const;

    Real m_ElementValue{0.0};
    Count m_Size{1};
    Count m_Position{0};
};
