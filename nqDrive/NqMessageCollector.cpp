#include "NqMessageCollector.h"

#include <nqControlCore/foundation/text/NqPrint.h>

#include <algorithm>

NqMessageCollector::NqMessageCollector() {
    Nq::Print::instance().setSink([this](unsigned, const std::string& text) {
        if (m_Lines.size() >= kKept) {
            return;
        }
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
        if (std::find(m_Lines.begin(), m_Lines.end(), line) == m_Lines.end()) {
            m_Lines.push_back(line);
        }
    });
}

NqMessageCollector::~NqMessageCollector() {
    Nq::Print::instance().setSink({});
}
