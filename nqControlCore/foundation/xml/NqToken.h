#pragma once

#include <string>
#include <string_view>
#include <type_traits>

/// An XML name, possibly qualified by a namespace: the text of a qualified token is the namespace URI with
/// the local name behind it.
///
/// An unqualified token names an element in whatever namespace its parent has; names() says whether two
/// tokens can mean the same element, while operator== compares the whole texts.
///
/// A token that can be a constant is one: `const NqToken mine = ns + "mine";` at namespace scope views its
/// literals and is ready before anything else is initialised. Copies of it view them too. Any other token
/// keeps a copy of its text.
class NqToken {
public:
    /// An unqualified name, or a namespace URI for operator+.
    constexpr NqToken(const char* text) : NqToken(std::string_view(), text) {}

    /// A local name within a namespace; an empty namespace gives an unqualified name.
    constexpr NqToken(std::string_view namespaceUri, std::string_view localName)
        : m_Namespace(namespaceUri), m_Local(localName) {
        if (!std::is_constant_evaluated()) {
            ownText();
        }
    }

    constexpr NqToken(const NqToken& other) : m_Namespace(other.m_Namespace), m_Local(other.m_Local) {
        if (other.m_OwnText) {
            ownText();
        }
    }
    constexpr NqToken(NqToken&& other) noexcept { swap(other); }
    constexpr NqToken& operator=(NqToken other) noexcept {
        swap(other);
        return *this;
    }
    constexpr ~NqToken() { delete m_OwnText; }

    /// The whole text. That of a constant is put together when it is first asked for, and kept.
    const std::string& token() const { return m_OwnText ? *m_OwnText : textOfConstant(); }
    operator const std::string&() const { return token(); }
    const char* c_str() const { return token().c_str(); }

    constexpr std::string_view namespaceUri() const { return m_Namespace; }
    constexpr std::string_view localName() const { return m_Local; }
    constexpr bool isQualified() const { return !m_Namespace.empty(); }

    /// Whether the two can mean the same element: equal, or alike in the local name where one has no
    /// namespace.
    constexpr bool names(const NqToken& other) const {
        return isQualified() && other.isQualified() ? *this == other : m_Local == other.m_Local;
    }

    friend constexpr bool operator==(const NqToken& a, const NqToken& b) {
        return a.m_Namespace.size() == b.m_Namespace.size()
                   ? a.m_Local == b.m_Local && a.m_Namespace == b.m_Namespace
                   : a.compare(b) == 0;
    }
    friend bool operator==(const NqToken& a, const std::string& b) { return a.token() == b; }
    friend bool operator==(const NqToken& a, const char* b) { return a.token() == b; }
    friend constexpr bool operator<(const NqToken& a, const NqToken& b) { return a.compare(b) < 0; }

    /// The element `name` in the namespace `ns`.
    friend constexpr NqToken operator+(const NqToken& ns, const char* name) {
        return {ns.isQualified() ? std::string_view(ns.token()) : ns.m_Local, name};
    }

private:
    constexpr void swap(NqToken& other) noexcept {
        std::swap(m_Namespace, other.m_Namespace);
        std::swap(m_Local, other.m_Local);
        std::swap(m_OwnText, other.m_OwnText);
    }

    constexpr int compare(const NqToken& other) const {
        for (std::size_t i = 0; i < size() && i < other.size(); ++i) {
            if (at(i) != other.at(i)) {
                return static_cast<unsigned char>(at(i)) < static_cast<unsigned char>(other.at(i)) ? -1 : 1;
            }
        }
        return size() == other.size() ? 0 : size() < other.size() ? -1 : 1;
    }
    constexpr std::size_t size() const { return m_Namespace.size() + m_Local.size(); }
    constexpr char at(std::size_t i) const {
        return i < m_Namespace.size() ? m_Namespace[i] : m_Local[i - m_Namespace.size()];
    }

    void ownText();
    const std::string& textOfConstant() const;

    std::string_view m_Namespace;
    std::string_view m_Local;
    const std::string* m_OwnText = nullptr; ///< what the two view, where they don't view literals
};
