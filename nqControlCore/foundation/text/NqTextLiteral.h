#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

/// A text that can be an argument of a template.
template <std::size_t Size>
struct NqTextLiteral {
    char text[Size]{};

    constexpr NqTextLiteral(const char (&literal)[Size]) { std::copy_n(literal, Size, text); }
};

/// Two texts as one, joined by the compiler: the messages of classes that differ by their name alone.
template <NqTextLiteral First, NqTextLiteral Second>
struct NqJoinedText {
    static constexpr const char* text() { return theText.data(); }

private:
    static constexpr auto theText = [] {
        std::array<char, sizeof First.text + sizeof Second.text - 1> joined{};
        std::copy_n(Second.text, sizeof Second.text,
                    std::copy_n(First.text, sizeof First.text - 1, joined.begin()));
        return joined;
    }();
};
