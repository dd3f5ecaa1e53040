#pragma once

/// A working value that copies never take along: a copied object starts with an empty one, an assigned object
/// keeps its own, and comparison passes over it. With it as a member, an owner's copying and comparison can
/// stay defaulted.
template <typename T>
class NqUncopied {
public:
    NqUncopied() = default;
    NqUncopied(const NqUncopied&) : m_Value() {}
    NqUncopied& operator=(const NqUncopied&) { return *this; }
    ~NqUncopied() = default;
    bool operator==(const NqUncopied&) const { return true; }

    T& get() { return m_Value; }
    const T& get() const { return m_Value; }
    T& operator*() { return m_Value; }
    const T& operator*() const { return m_Value; }
    T* operator->() { return &m_Value; }
    const T* operator->() const { return &m_Value; }

private:
    T m_Value = T();
};
