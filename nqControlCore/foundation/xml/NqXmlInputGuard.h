#pragma once

#include <cstdint>
#include <deque>
#include <string_view>

/// Looks through the bytes of a document ahead of the parser, for what keeps a parser busy for hours all by
/// itself: document types with their entities, and masses of attributes in one tag. Only UTF-8 passes, since
/// other encodings could hide them.
class NqXmlInputGuard {
public:
    /// Looks through the next bytes. Null, or what is wrong with them; nothing behind that may reach the
    /// parser.
    const char* troubleIn(std::string_view bytes);

    /// Looks through a whole document, ahead of any other parser. Null, or what is wrong with it, in that
    /// line.
    static const char* troubleInDocument(std::string_view document, unsigned& line);

    /// The line in which the last byte stands that was looked at.
    unsigned line() const { return m_Line; }

    /// The lines in which the tags end that were looked at and not yet taken: the parser, which comes behind,
    /// takes one with each tag. 0 where there is none.
    unsigned takeTagLine();

private:
    enum class State { Start, Text, Opening, Declaration, Comment, Data, Instruction, Tag, Quotation };

    const char* step(char byte);

    State m_State = State::Start;
    std::uint64_t m_Recent = 0; ///< the last eight bytes since the state was entered
    unsigned m_Line = 1;
    char m_Quote = '\0';
    unsigned m_Attributes = 0; ///< of the present tag
    std::deque<unsigned> m_TagLines;
};
