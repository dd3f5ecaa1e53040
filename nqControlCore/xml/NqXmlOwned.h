#pragma once

#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

/// Owns one object of a class derived from T, and is never without it but when moved from. A copy owns a
/// clone, and two are equal when their objects are of one class and equal.
template <typename T>
class NqXmlOwned {
public:
    explicit NqXmlOwned(std::unique_ptr<T> object) : m_Object(std::move(object)) {}
    explicit NqXmlOwned(const T& object) : m_Object(static_cast<T*>(object.clone())) {
        if (!m_Object) {
            throw std::bad_alloc(); // as any container does when there is no memory for a copy
        }
    }
    NqXmlOwned(const NqXmlOwned& other) : NqXmlOwned(*other) {}
    NqXmlOwned(NqXmlOwned&&) noexcept = default;
    NqXmlOwned& operator=(const NqXmlOwned& other) { return *this = NqXmlOwned(other); }
    NqXmlOwned& operator=(NqXmlOwned&&) noexcept = default;
    ~NqXmlOwned() = default;

    T& operator*() { return *m_Object; }
    const T& operator*() const { return *m_Object; }
    T* operator->() { return m_Object.get(); }
    const T* operator->() const { return m_Object.get(); }

    friend bool operator==(const NqXmlOwned& a, const NqXmlOwned& b) { return a->equality(&*b); }

private:
    std::unique_ptr<T> m_Object;
};

/// Walks over the objects that a container of NqXmlOwned holds. Wrapped is the container's iterator, and T
/// what a user sees of an object, constant or not.
template <typename Wrapped, typename T>
class NqXmlOwnedIterator {
public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::remove_const_t<T>;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using reference = T&;

    NqXmlOwnedIterator() = default;
    explicit NqXmlOwnedIterator(Wrapped wrapped) : m_Wrapped(wrapped) {}

    T& operator*() const { return **m_Wrapped; }
    T* operator->() const { return &**m_Wrapped; }
    NqXmlOwnedIterator& operator++() {
        ++m_Wrapped;
        return *this;
    }
    NqXmlOwnedIterator operator++(int) { return NqXmlOwnedIterator(m_Wrapped++); }
    friend bool operator==(const NqXmlOwnedIterator&, const NqXmlOwnedIterator&) = default;

private:
    Wrapped m_Wrapped{};
};
