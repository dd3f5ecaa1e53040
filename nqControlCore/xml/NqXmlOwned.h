#pragma once

#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <cstddef>
#include <iterator>
#include <new>
#include <type_traits>
#include <utility>

/// Owns one object of a class derived from T, or none. A copy owns a clone, and two are equal when their
/// objects are of one class and equal, or both have none.
template <typename T>
class NqXmlOwned {
public:
    NqXmlOwned() = default;
    explicit NqXmlOwned(T* object) noexcept : m_Object(object) {}
    explicit NqXmlOwned(const T& object) : m_Object(static_cast<T*>(object.clone())) {
        if (!m_Object) {
            throw std::bad_alloc(); // as any container does when there is no memory for a copy
        }
    }
    NqXmlOwned(const NqXmlOwned& other) : NqXmlOwned(other ? NqXmlOwned(*other) : NqXmlOwned()) {}
    NqXmlOwned(NqXmlOwned&& other) noexcept : m_Object(std::exchange(other.m_Object, nullptr)) {}
    NqXmlOwned& operator=(NqXmlOwned other) noexcept {
        std::swap(m_Object, other.m_Object);
        return *this;
    }
    ~NqXmlOwned() { delete m_Object; }

    explicit operator bool() const { return m_Object != nullptr; }

    /// Hands the object to the caller.
    T* release() { return std::exchange(m_Object, nullptr); }
    T& operator*() { return *m_Object; }
    const T& operator*() const { return *m_Object; }
    T* get() { return m_Object; }
    const T* get() const { return m_Object; }
    T* operator->() { return m_Object; }
    const T* operator->() const { return m_Object; }

    friend bool operator==(const NqXmlOwned& a, const NqXmlOwned& b) {
        return a && b ? a->equality(b.get()) : !a && !b;
    }

private:
    T* m_Object = nullptr;
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
