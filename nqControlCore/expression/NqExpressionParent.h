#pragma once

#include <nqControlCore/expression/NqExpressionElement.h>
#include <nqControlCore/xml/NqXmlOwned.h>

#include <array>

/// A node with places for children, which it owns; any of them may be missing.
///
/// In a file the elements of the children stand within that of the node, in order. They can be read only
/// within a container, which makes them by their names. The first is read into the first place, and so on;
/// one too many takes the last place from the one before. After kMostChildren all others are passed by, with
/// a message and a false result.
template <unsigned Places>
class NqExpressionParent : public NqExpressionElement {
public:
    static constexpr unsigned kMostChildren = 256; ///< elements that are read into one node

    using NqExpressionElement::NqExpressionElement;
    NqExpressionParent() = default;
    NqExpressionParent(const NqExpressionParent&) = default;
    NqExpressionParent& operator=(const NqExpressionParent& other);

    bool read(NqXmlReader& reader) override;
    bool write(NqXmlWriter& writer) const override;

    /// Any elements as children: types of a schema are nested, and these have no end.
    bool writeSchemaElements(NqXmlSchema& schema) const override;

    /// Hands the pointer on to all nodes below.
    void setContainer(const NqXmlBaseVariableCompoundType* container) override;

protected:
    const NqExpressionElement* childAt(unsigned place) const { return m_Children[place].get(); }

    /// Puts a clone in the place.
    void setChildAt(unsigned place, const NqExpressionElement& child);

    bool readValueFromSpecialToken(const NqToken& token, NqXmlReader& reader) override;

    bool sameValue(const NqExpressionParent& other) const { return m_Children == other.m_Children; }

private:
    using Child = NqXmlOwned<NqExpressionElement>;

    std::array<Child, Places> m_Children;

    unsigned m_ChildrenRead = 0; ///< elements met, while this is read
};

extern template class NqExpressionParent<1>;
extern template class NqExpressionParent<2>;
