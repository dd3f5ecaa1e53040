#pragma once

#include <nqControlCore/foundation/xml/NqXmlComponentMap.h>
#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <concepts>
#include <map>
#include <tuple>

/// A persistent object with named components: fields of its own that are written as elements or attributes.
///
/// A class registers its components in registerComponents(), its base's first. The tables belong to one
/// object and are made when they are needed: what a read or write makes for itself is gone behind it, so that
/// an object in memory costs no more than its fields. Whoever asks for a table, or adds to it from outside,
/// keeps it for the life of the object. Most classes get all of this, and their clone, equality and so on,
/// from NqXmlPersistent.
class NqXmlCompoundType : public NqXmlObject {
public:
    using SpecialDescriptorMap = std::map<NqToken, unsigned int>;

    NqXmlCompoundType() = default;
    ~NqXmlCompoundType() override;
    NqXmlCompoundType(const NqXmlCompoundType& other) noexcept : NqXmlObject(other) {}
    NqXmlCompoundType& operator=(const NqXmlCompoundType& other) noexcept {
        NqXmlObject::operator=(other);
        return *this;
    }

    /// Equality of what this class itself holds, which is nothing: for the operator== of a class below, which
    /// calls that of its base first. It takes no object of a class that has forgotten its own.
    template <std::same_as<NqXmlCompoundType> Compound>
    friend bool operator==(const Compound&, const Compound&) {
        return true;
    }

    void accept(NqXmlObjectVisitor* visitor) const override;
    bool xmlInit() override;
    bool read(NqXmlReader& reader) override;
    bool readAttribute(NqXmlReader& reader) override;
    bool write(NqXmlWriter& writer) const override;
    bool writeSchema(NqXmlSchema& schema) const override;

    /// Take each attribute or element to readAttributeFromToken or readValueFromToken. A part that fails to
    /// read makes the result false; the others are read all the same.
    virtual bool readAttributes(NqXmlReader& reader);
    virtual bool readElements(NqXmlReader& reader);

    /// Write the components in order. With the writer's write-default-data flag off, those are left out that
    /// a read would find so without the file: as in a new object or, for a component, as in that of a new
    /// owner.
    virtual bool writeAttributes(NqXmlWriter& writer) const;
    virtual bool writeElements(NqXmlWriter& writer) const;

    virtual bool writeSchemaAttributes(NqXmlSchema& schema) const;
    virtual bool writeSchemaElements(NqXmlSchema& schema) const;

    /// Registers all components: the base's, then this class's own, in file order.
    virtual void registerComponents();

    /// Binds an element name to a field of this object; the field stays owned by the object.
    virtual void registerComponent(const NqToken& token, NqXmlObject* component);

    /// The same for a component that is taken from a file but never written back.
    virtual void registerComponentReadOnly(const NqToken& token, NqXmlObject* component);

    virtual const NqXmlComponentMap& componentMap() const;

    virtual void registerAttributeComponent(const NqToken& token, NqXmlObject* component);
    virtual void registerAttributeComponentReadOnly(const NqToken& token, NqXmlObject* component);
    virtual const NqXmlComponentMap& attributeComponentMap() const;

    /// Numbers that a class may give to names of elements that are no components.
    virtual SpecialDescriptorMap& specialDescriptorMap();

    virtual bool hasChildren() const;
    virtual bool hasAttributes() const;

protected:
    /// Reads the component of that name from the reader's current element.
    virtual bool readValueFromToken(const NqToken& token, NqXmlReader& reader);

    /// Called for an element that no component has registered. Here: reports it with file and line, and
    /// passes it by.
    virtual bool readValueFromSpecialToken(const NqToken& token, NqXmlReader& reader);

    /// Reads the attribute component of that name from the reader's current attribute; others are passed by.
    virtual bool readAttributeFromToken(const NqToken& token, NqXmlReader& reader);

    /// New tables, owned by the caller, and those of this object, which are made if there are none.
    virtual NqXmlComponentMap* newComponentMap() const;
    virtual SpecialDescriptorMap* newSpecialDescriptorMap() const;
    virtual NqXmlComponentMap& createComponentMap() const;
    virtual NqXmlComponentMap& createAttributeComponentMap();
    virtual SpecialDescriptorMap& createSpecialDescriptorMap();

    virtual bool isReadOnlyComponent(const NqToken& token) const;
    virtual bool isReadOnlyAttribute(const NqToken& token) const;

    /// Equality for NqXmlPersistent, which calls the forms of all bases.
    bool sameValue(const NqXmlCompoundType&) const { return true; }

private:
    friend struct NqXmlComponentAccess;
    static std::tuple<> components() { return {}; } ///< what classes without a list of their own inherit

    struct Tables;
    class TablesInUse;

    Tables& tables() const;
    void ensureTables() const;
    void registerIn(NqXmlComponentMap& map, const NqToken& token, NqXmlObject* component, bool isReadOnly);

    template <typename WriteComponent>
    bool writeComponents(NqXmlWriter& writer, const NqXmlComponentMap& map,
                         const NqXmlComponentMap& (NqXmlCompoundType::*mapOf)() const,
                         WriteComponent writeComponent) const;

    mutable Tables* m_Tables = nullptr;
};
