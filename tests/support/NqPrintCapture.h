#pragma once

#include <nqControlCore/foundation/text/NqPrint.h>

#include <string>
#include <utility>
#include <vector>

/// Takes all messages while it lives, in place of standard error.
class NqPrintCapture {
public:
    NqPrintCapture() {
        Nq::Print::instance().setSink(
            [this](unsigned type, const std::string& text) { m_Lines.emplace_back(type, text); });
    }
    NqPrintCapture(const NqPrintCapture&) = delete;
    NqPrintCapture& operator=(const NqPrintCapture&) = delete;
    ~NqPrintCapture() { Nq::Print::instance().setSink({}); }

    /// Print type and text of each message, in order.
    const std::vector<std::pair<unsigned, std::string>>& lines() const { return m_Lines; }

    /// All texts, one after the other.
    std::string text() const {
        std::string all;
        for (const auto& line : m_Lines) {
            all += line.second;
        }
        return all;
    }

    bool contains(const std::string& fragment) const { return text().find(fragment) != std::string::npos; }
    void clear() { m_Lines.clear(); }

private:
    std::vector<std::pair<unsigned, std::string>> m_Lines;
};
