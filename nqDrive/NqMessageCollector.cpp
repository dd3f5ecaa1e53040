#include "NqMessageCollector.h"

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

namespace {

std::string withoutNames(const std::string& line) {
    std::string pattern;
    bool isInside = false;
    for (const char c : line) {
        isInside = c == '"' ? !isInside : isInside;
        pattern += isInside ? "" : std::string(1, c);
    }
    return pattern;
}

} // namespace

std::vector<std::string> NqMessageCollector::counted() const {
    std::vector<std::string> lines = m_Lines;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        lines[i] += m_More[i] == 0 ? "" : " (and " + std::to_string(m_More[i]) + " more like this)";
    }
    return lines;
}

std::string NqMessageCollector::joined(const std::string& otherwise, std::size_t seen) const {
    std::string text;
    for (std::size_t i = seen; i < m_Lines.size(); ++i) {
        text += (text.empty() ? "" : "; ") + m_Lines[i];
    }
    return text.empty() ? otherwise : text;
}

NqMessageCollector::NqMessageCollector() {
    Nq::Print::instance().setSink([this](unsigned, const std::string& text) {
        std::string line;
        for (const char c : text) {
            const bool isBlank = c == '\n' || c == '\r' || c == '\t' || c == ' ';
            if (!isBlank) {
                line += c;
            } else if (!line.empty() && line.back() != ' ') {
                line += ' ';
            }
        }
        line.erase(line.find_last_not_of(' ') + 1);
        if (const std::size_t end = line.find("]: "); end != std::string::npos && line.find('(') < end) {
            line.erase(0, end + 3); // the signature of a template's function
        }
        m_Last = line;
        ++m_Count;
        const std::string pattern = withoutNames(line);
        const auto known = std::find(m_Patterns.begin(), m_Patterns.end(), pattern);
        if (known != m_Patterns.end()) {
            const auto number = static_cast<std::size_t>(known - m_Patterns.begin());
            m_More[number] += line != m_Lines[number];
        } else if (m_Lines.size() < kKept) {
            m_Lines.push_back(line);
            m_Patterns.push_back(pattern);
            m_More.push_back(0);
        }
    });
}

NqMessageCollector::~NqMessageCollector() {
    Nq::Print::instance().setSink({});
}
