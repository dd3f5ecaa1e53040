#pragma once

#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <cassert>
#include <new>
#include <typeinfo>

/// The layer between a concrete persistent class and its base that gives all that is needed to make, copy and
/// compare objects through their base. Derived gives operator== and `static const NqToken& classToken()`, its
/// element name.
template <typename Derived, typename Base>
class NqXmlConcrete : public Base {
public:
    using Base::Base;

    NqXmlObject* clone() const override {
        assert(typeid(*this) == typeid(Derived) &&
               "a class below this one needs an NqXmlConcrete of its own");
        return new (std::nothrow) Derived(static_cast<const Derived&>(*this));
    }

    bool equality(const NqXmlObject* other) const override {
        return other && typeid(*other) == typeid(*this) &&
               static_cast<const Derived&>(*this) == static_cast<const Derived&>(*other);
    }

    NqXmlObject* newObject() const override { return new (std::nothrow) Derived; }

    const NqToken& token() const override { return Derived::classToken(); }

    /// A new heap object, owned by the caller.
    static NqXmlObject* creator() { return new (std::nothrow) Derived; }

    /// A default-constructed object.
    static Derived nullObject() { return Derived(); }
};
