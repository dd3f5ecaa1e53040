#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>
#include <nqControlCore/foundation/xml/NqXmlCompoundType.h>
#include <nqControlCore/foundation/xml/NqXmlConcrete.h>

#include <tuple>
#include <type_traits>

/// How a component takes part in files and comparison.
enum class NqXmlComponentKind {
    Element,   ///< read, written and compared
    Attribute, ///< the same, as an attribute
    ReadOnly,  ///< read and compared, not written
    Legacy     ///< read from old files; neither written nor compared
};

/// One component of a class: its name, the field that holds it and how it takes part.
template <typename Class, typename Member>
struct NqXmlComponent {
    const NqToken& token;
    Member Class::*member;
    NqXmlComponentKind kind;
};

template <typename Class, typename Member>
NqXmlComponent<Class, Member> nqComponent(const NqToken& token, Member Class::*member,
                                          NqXmlComponentKind kind = NqXmlComponentKind::Element) {
    return {token, member, kind};
}

/// A token that is made for the call would be gone when the list is used: name a constant.
template <typename Class, typename Member>
NqXmlComponent<Class, Member> nqComponent(const NqToken&&, Member Class::*,
                                          NqXmlComponentKind = NqXmlComponentKind::Element) = delete;

/// The own components of a class, in file order.
template <typename Class, typename... Members>
std::tuple<NqXmlComponent<Class, Members>...> nqComponentList(NqXmlComponent<Class, Members>... components) {
    return {components...};
}

/// Reaches the component list of a class, which the class keeps private and opens with
/// `friend struct NqXmlComponentAccess;` (with `::` where the class is in a namespace). A class that forgets
/// to does not compile, nor does one that lists a field of its base.
struct NqXmlComponentAccess {
    /// Calls `action` for each component that `Class`, derived from `Base`, lists itself.
    template <typename Class, typename Base, typename Action>
    static void forEach(Action action) {
        if constexpr (hasOwnList<Class, Base>()) {
            std::apply([&](const auto&... component) { (callFor<Class>(component, action), ...); },
                       Class::components());
        }
    }

private:
    /// Whether components() of the class is another than that of its base, which it would inherit.
    template <typename Class, typename Base>
    static consteval bool hasOwnList() {
        if constexpr (std::is_same_v<decltype(&Class::components), decltype(&Base::components)>) {
            return &Class::components != &Base::components;
        }
        return true;
    }

    template <typename Class, typename Owner, typename Member, typename Action>
    static void callFor(const NqXmlComponent<Owner, Member>& component, Action& action) {
        static_assert(std::is_same_v<Class, Owner>, "a class lists its own fields, and no field of its base");
        action(component);
    }
};

/// The layer between an abstract persistent class and its base: registration and comparison from one list.
///
/// Derived lists its own components once, in file order:
///
///     friend struct NqXmlComponentAccess;
///     static auto components() {
///         return nqComponentList(nqComponent(NqControlCore::NqPointToken, &NqExample::m_Point), ...);
///     }
///
/// A class that compares more or less than its list declares its own sameValue(), public or protected with a
/// friend, and calls that of this layer from it. Copying is the compiler's: fields that copies don't take
/// along are NqUncopied.
template <typename Derived, typename Base>
class NqXmlPersistentBase : public Base {
public:
    using Base::Base;

    void registerComponents() override {
        Base::registerComponents();
        auto& self = static_cast<Derived&>(*this);
        NqXmlComponentAccess::forEach<Derived, Base>([&](const auto& component) {
            auto* field = &(self.*component.member);
            switch (component.kind) {
            case NqXmlComponentKind::Element:
                this->registerComponent(component.token, field);
                break;
            case NqXmlComponentKind::Attribute:
                this->registerAttributeComponent(component.token, field);
                break;
            case NqXmlComponentKind::ReadOnly:
            case NqXmlComponentKind::Legacy:
                this->registerComponentReadOnly(component.token, field);
                break;
            }
        });
    }

    /// Whether base and own components are equal; operator== is this.
    bool sameValue(const Derived& other) const {
        const auto& self = static_cast<const Derived&>(*this);
        bool same = Base::sameValue(other);
        NqXmlComponentAccess::forEach<Derived, Base>([&](const auto& component) {
            same = same && (component.kind == NqXmlComponentKind::Legacy ||
                            self.*component.member == other.*component.member);
        });
        return same;
    }

    friend bool operator==(const Derived& a, const Derived& b) { return a.sameValue(b); }
};

/// The layer between a concrete persistent class and its base: registration and comparison from its list of
/// components, and the rest of the frame of such a class.
template <typename Derived, typename Base>
using NqXmlPersistent = NqXmlConcrete<Derived, NqXmlPersistentBase<Derived, Base>>;
