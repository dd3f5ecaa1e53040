#include "NqBenchmarkTable.h"

#include "NqBenchmarkText.h"

#include <algorithm>

double NqBenchmarkTable::Row::median() const {
    std::vector<double> sorted = times;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t half = sorted.size() / 2;
    return sorted.size() % 2 ? sorted[half] : 0.5 * (sorted[half - 1] + sorted[half]);
}

double NqBenchmarkTable::Row::least() const {
    return *std::min_element(times.begin(), times.end());
}

void NqBenchmarkTable::add(const std::string& task, const std::string& subject) {
    m_FirstOf.emplace(task, m_Rows.size());
    m_Rows.push_back({task, subject, {}});
}

double NqBenchmarkTable::ratio(const Row& row) const {
    return row.median() / m_Rows[m_FirstOf.at(row.task)].median();
}

std::string NqBenchmarkTable::text() const {
    using namespace NqBenchmarkText;
    std::string result;
    std::string task;
    for (const Row& row : m_Rows) {
        if (row.times.empty()) {
            continue;
        }
        if (row.task != task) {
            task = row.task;
            result += formatted("\n%-60s %11s %11s %7s\n", task.c_str(), "median, ns", "least, ns", "ratio");
        }
        result += formatted("  %-58s %11s %11s %7.2f\n", row.subject.c_str(), number(row.median()).c_str(),
                            number(row.least()).c_str(), ratio(row));
    }
    return result;
}

std::string NqBenchmarkTable::json() const {
    using namespace NqBenchmarkText;
    std::string result = "[";
    const char* separator = "\n";
    for (const Row& row : m_Rows) {
        if (!row.times.empty()) {
            result +=
                formatted("%s    {\"task\": %s, \"subject\": %s, \"median_ns\": %.2f, \"least_ns\": %.2f, "
                          "\"repetitions\": %zu, \"ratio\": %.4f}",
                          separator, quoted(row.task).c_str(), quoted(row.subject).c_str(), row.median(),
                          row.least(), row.times.size(), ratio(row));
            separator = ",\n";
        }
    }
    return result + "\n  ]";
}
