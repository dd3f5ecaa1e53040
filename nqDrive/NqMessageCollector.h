#pragma once

#include <string>
#include <vector>

/// Takes over the library's messages for as long as it lives. The first few different ones are kept, each on
/// one line, and the last one always. Messages that differ but in names, which stand in quotes, are one line
/// with a count.
class NqMessageCollector {
public:
    NqMessageCollector();
    ~NqMessageCollector();
    NqMessageCollector(const NqMessageCollector&) = delete;
    NqMessageCollector& operator=(const NqMessageCollector&) = delete;

    const std::vector<std::string>& lines() const { return m_Lines; }
    /// The kept messages, with how many more there were like each.
    std::vector<std::string> counted() const;
    /// The last message, kept or not; `otherwise` if there was none.
    std::string last(const std::string& otherwise) const { return m_Count == 0 ? otherwise : m_Last; }
    /// The kept messages after the first `seen`, one behind the other; `otherwise` if there are none.
    std::string joined(const std::string& otherwise, std::size_t seen) const;
    std::size_t count() const { return m_Count; }

private:
    static constexpr std::size_t kKept = 20;

    std::vector<std::string> m_Lines;
    std::vector<std::string> m_Patterns; ///< of the lines: without what stands in quotes
    std::vector<std::size_t> m_More;     ///< further lines of the same pattern
    std::string m_Last;
    std::size_t m_Count = 0;
};
