#pragma once

#include <string>
#include <vector>

/// Takes over the library's messages for as long as it lives. The first few different ones are kept, each on
/// one line.
class NqMessageCollector {
public:
    NqMessageCollector();
    ~NqMessageCollector();
    NqMessageCollector(const NqMessageCollector&) = delete;
    NqMessageCollector& operator=(const NqMessageCollector&) = delete;

    const std::vector<std::string>& lines() const { return m_Lines; }
    /// The first message, or `otherwise` if there was none.
    std::string first(const std::string& otherwise) const {
        return m_Lines.empty() ? otherwise : m_Lines.front();
    }

private:
    static constexpr std::size_t kKept = 20;

    std::vector<std::string> m_Lines;
};
