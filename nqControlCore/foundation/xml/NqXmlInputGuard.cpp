#include <nqControlCore/foundation/xml/NqXmlInputGuard.h>

namespace {

constexpr unsigned kMostAttributes = 256;

/// Whether the recent bytes end in `text`, of at most eight.
bool endsIn(std::uint64_t recent, std::string_view text) {
    for (std::size_t i = text.size(); i > 0; --i, recent >>= 8) {
        if (static_cast<char>(recent & 0xFF) != text[i - 1]) {
            return false;
        }
    }
    return true;
}

} // namespace

const char* NqXmlInputGuard::troubleIn(std::string_view bytes) {
    if (m_State == State::Start && !bytes.empty()) {
        constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
        if (!bytes.starts_with(kByteOrderMark) && bytes.find_first_of("< \t\r\n") != 0) {
            return "no XML document in UTF-8";
        }
        m_State = State::Text;
    }
    for (const char byte : bytes) {
        if (const char* trouble = step(byte)) {
            return trouble;
        }
    }
    return nullptr;
}

const char* NqXmlInputGuard::troubleInDocument(std::string_view document, unsigned& line) {
    NqXmlInputGuard guard;
    const char* trouble = guard.troubleIn(document);
    line = guard.line();
    return trouble;
}

unsigned NqXmlInputGuard::takeTagLine() {
    if (m_TagLines.empty()) {
        return 0;
    }
    const unsigned line = m_TagLines.front();
    m_TagLines.pop_front();
    return line;
}

const char* NqXmlInputGuard::step(char byte) {
    if (byte == '\0') {
        return "no XML document in UTF-8";
    }
    if (byte == '\n') {
        ++m_Line;
    }
    m_Recent = m_Recent << 8 | static_cast<unsigned char>(byte);
    const auto enter = [&](State state) {
        m_State = state;
        m_Recent = 0;
    };
    switch (m_State) {
    case State::Start:
    case State::Text:
        if (byte == '<') {
            enter(State::Opening);
        }
        break;
    case State::Opening:
        m_Attributes = 0;
        enter(byte == '!' ? State::Declaration : byte == '?' ? State::Instruction : State::Tag);
        break;
    case State::Declaration:
        if (endsIn(m_Recent, "--")) {
            enter(State::Comment);
        } else if (endsIn(m_Recent, "[CDATA[")) {
            enter(State::Data);
        } else if (m_Recent == 'D') {
            return "document types and entities are refused";
        }
        break;
    case State::Comment:
    case State::Data:
    case State::Instruction:
        if (endsIn(m_Recent, m_State == State::Comment ? "-->" : m_State == State::Data ? "]]>" : "?>")) {
            enter(State::Text);
        }
        break;
    case State::Tag:
        if (byte == '>') {
            m_TagLines.push_back(m_Line);
            enter(State::Text);
        } else if (byte == '"' || byte == '\'') {
            m_Quote = byte;
            enter(State::Quotation);
            if (++m_Attributes > kMostAttributes) {
                return "too many attributes in one tag";
            }
        }
        break;
    case State::Quotation:
        if (byte == m_Quote) {
            enter(State::Tag);
        }
        break;
    }
    return nullptr;
}
