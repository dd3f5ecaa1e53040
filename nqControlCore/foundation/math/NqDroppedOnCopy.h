#pragma once

#include <nqControlCore/foundation/math/NqUncopied.h>

/// What an object has looked up and remembers, and copies never take along: a copied object starts with
/// nothing remembered, and so does an assigned one, since what it remembered was of its old value. Comparison
/// passes over it.
template <typename T>
class NqDroppedOnCopy : public NqUncopied<T> {
public:
    NqDroppedOnCopy() = default;
    NqDroppedOnCopy(const NqDroppedOnCopy&) : NqUncopied<T>() {}
    NqDroppedOnCopy& operator=(const NqDroppedOnCopy&) {
        this->get() = T();
        return *this;
    }
    ~NqDroppedOnCopy() = default;
    bool operator==(const NqDroppedOnCopy&) const { return true; }
};
