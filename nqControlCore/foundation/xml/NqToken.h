#pragma once

#include <string>
#include <string_view>

/// An XML name, possibly qualified by a namespace: the text of a qualified token is the namespace URI with
/// the local name behind it.
///
/// An unqualified token names an element in whatever namespace its parent has; names() says whether two
/// tokens can mean the same element, while operator== compares the whole texts.
class NqToken {
public:
    /// An unqualified name, or a namespace URI for operator+.
    NqToken(const char* text) : m_Text(text) {}

    /// A local name within a namespace; an empty namespace gives an unqualified name.
    NqToken(std::string_view namespaceUri, std::string_view localName)
        : m_Text(std::string(namespaceUri).append(localName)), m_LocalStart(namespaceUri.size()) {}

    const std::string& token() const { return m_Text; }
    operator const std::string&() const { return m_Text; }
    const char* c_str() const { return m_Text.c_str(); }

    std::string_view namespaceUri() const { return std::string_view(m_Text).substr(0, m_LocalStart); }
    std::string_view localName() const { return std::string_view(m_Text).substr(m_LocalStart); }
    bool isQualified() const { return m_LocalStart != 0; }

    /// Whether the two can mean the same element: equal, or alike in the local name where one has no
    /// namespace.
    bool names(const NqToken& other) const;

    friend bool operator==(const NqToken& a, const NqToken& b) { return a.m_Text == b.m_Text; }
    friend bool operator==(const NqToken& a, const std::string& b) { return a.m_Text == b; }
    friend bool operator==(const NqToken& a, const char* b) { return a.m_Text == b; }
    friend bool operator<(const NqToken& a, const NqToken& b) { return a.m_Text < b.m_Text; }

private:
    std::string m_Text;
    std::size_t m_LocalStart = 0;
};

/// The element `name` in the namespace `ns`.
NqToken operator+(const NqToken& ns, const char* name);
