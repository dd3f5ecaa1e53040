#pragma once

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/xml/NqXmlOwned.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

#include <map>

/// A persistent object whose elements are objects of many classes: the name of an element tells which class
/// to make.
///
/// A class registers its creators in registerComponentCreators(), which is called when they are first needed.
/// Those that are registered from outside stand above them, whenever that was, and go along with a copy.
/// While such an object is read it is the reader's context, so that objects inside it may ask it for objects
/// by name.
class NqXmlBaseVariableCompoundType : public NqXmlObject {
public:
    using Creator = NqXmlObject* (*)();
    using CreatorMap = std::map<NqToken, Creator>;
    using LibraryList = NqXmlVectorType<NqXmlBasicType<std::string>>;

    NqXmlBaseVariableCompoundType() = default;
    NqXmlBaseVariableCompoundType(const NqXmlBaseVariableCompoundType& other)
        : NqXmlObject(other), m_AddLibraries(other.m_AddLibraries), m_UserCreators(other.m_UserCreators) {}
    NqXmlBaseVariableCompoundType& operator=(const NqXmlBaseVariableCompoundType& other) {
        NqXmlObject::operator=(other);
        m_AddLibraries = other.m_AddLibraries;
        for (const auto& [token, creator] : other.m_UserCreators) {
            registerComponentCreator(token, creator);
        }
        return *this;
    }

    friend bool operator==(const NqXmlBaseVariableCompoundType& a, const NqXmlBaseVariableCompoundType& b) {
        return a.m_AddLibraries == b.m_AddLibraries;
    }

    /// Visits this as an object and as a container.
    void accept(NqXmlObjectVisitor* visitor) const override;
    bool xmlInit() override;

    /// Hands each element to readValueFromToken. One that fails makes the result false; the others are read
    /// all the same.
    bool read(NqXmlReader& reader) override;

    /// Writes the list of libraries, unless it is empty; classes below write their objects after it.
    bool write(NqXmlWriter& writer) const override;

    /// Writes a choice of all registered elements, each with its type.
    bool writeSchema(NqXmlSchema& schema) const override;

    /// Registers the creators of all classes that may stand in a file. Here: none.
    virtual void registerComponentCreators();

    /// Registers one creator, in the place of one that has the name already.
    virtual void registerComponentCreator(const NqToken& token, Creator creator);

    /// A heap object of the class that is registered under the name, owned by the caller; null if there is
    /// none.
    virtual NqXmlObject* newObjectFromToken(const NqToken& token) const;

    /// Libraries that are to be loaded for further classes. This library loads none: it keeps the list,
    /// writes it back, and says so when it reads one.
    virtual const LibraryList& addLibraries() const { return m_AddLibraries; }
    virtual void setAddLibraries(const LibraryList& libraries) {
        m_AddLibraries = libraries;
        m_ProcessedLibraries = 0;
    }

    virtual const CreatorMap& creatorMap() const;

protected:
    /// Reads the element of that name from the reader's current element. Here: the list of libraries; any
    /// other is reported and passed by, and the result is false.
    virtual bool readValueFromToken(const NqToken& token, NqXmlReader& reader);

    /// Called when a list of libraries was read. Here: reports at print type 4 of each that is new that it is
    /// not loaded.
    virtual bool processLibraries();

    /// Writes the schema of further attributes. Here: none.
    virtual bool writeSchemaAttributes(NqXmlSchema& schema) const;

    /// The element declarations of all registered classes, and of the list of libraries.
    bool writeCreatorSchemas(NqXmlSchema& schema) const;
    bool writeLibrarySchema(NqXmlSchema& schema) const;

    /// A new T for an element: by the creators of this object or else, while it is read, of the one around
    /// it. Without an object where neither has such a class under the name.
    template <typename T>
    NqXmlOwned<T> newComponent(const NqToken& token) const {
        T* component = asComponent<T>(newObjectFromToken(token));
        if (!component && m_OuterContext) {
            component = asComponent<T>(m_OuterContext->newObjectFromToken(token));
        }
        return NqXmlOwned<T>(component);
    }

private:
    template <typename T>
    static T* asComponent(NqXmlObject* object) {
        auto* component = dynamic_cast<T*>(object);
        if (!component) {
            delete object;
        }
        return component;
    }

    bool readLibraries(NqXmlReader& reader);

    LibraryList m_AddLibraries;
    unsigned m_ProcessedLibraries = 0; ///< of those that were read

    CreatorMap m_UserCreators;
    mutable CreatorMap m_Creators; ///< all of them, once they were needed
    mutable bool m_RegistersClass = false;
    const NqXmlBaseVariableCompoundType* m_OuterContext = nullptr; ///< the reader's, while this is read
    NqXmlReader* m_Reader = nullptr;                               ///< the same
};
