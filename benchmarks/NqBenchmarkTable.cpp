#include "NqBenchmarkTable.h"

#include "NqBenchmarkText.h"

#include <algorithm>
#include <utility>

double NqBenchmarkTable::Row::median() const {
    std::vector<double> sorted = times;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t half = sorted.size() / 2;
    return sorted.size() % 2 ? sorted[half] : 0.5 * (sorted[half - 1] + sorted[half]);
}

double NqBenchmarkTable::Row::least() const {
    return *std::min_element(times.begin(), times.end());
}

void NqBenchmarkTable::add(const std::string& task, const std::string& subject, const std::string& stage) {
    m_FirstOf.emplace(task, m_Rows.size());
    m_Rows.push_back({task, subject, stage, {}});
}

double NqBenchmarkTable::ratio(const Row& row) const {
    return row.median() / m_Rows[m_FirstOf.at(row.task)].median();
}

std::string NqBenchmarkTable::text() const {
    using namespace NqBenchmarkText;
    std::string result;
    std::string task;
    for (auto row = m_Rows.begin(); row != m_Rows.end();) {
        const auto end = std::find_if(row, m_Rows.end(), [&first = *row](const Row& next) {
            return next.stage.empty() || next.task != first.task || next.subject != first.subject;
        });
        const auto begin = std::exchange(row, std::max(end, row + 1));
        if (begin->times.empty()) {
            continue;
        }
        const bool isFirst = std::exchange(task, begin->task) != begin->task;
        if (begin == end) {
            if (isFirst) {
                result +=
                    formatted("\n%-60s %11s %11s %7s\n", task.c_str(), "median, ns", "least, ns", "ratio");
            }
            result +=
                formatted("  %-58s %11s %11s %7.2f\n", begin->subject.c_str(),
                          number(begin->median()).c_str(), number(begin->least()).c_str(), ratio(*begin));
            continue;
        }
        std::string names, medians;
        for (auto stage = begin; stage != end; ++stage) {
            names += formatted(" %15s", (stage->stage + ", ns").c_str());
            medians += formatted(" %15s", number(stage->median()).c_str());
        }
        result += isFirst ? formatted("\n%-43s%s\n", task.c_str(), names.c_str()) : std::string();
        result += formatted("  %-41s%s\n", begin->subject.c_str(), medians.c_str());
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
                formatted("%s    {\"task\": %s, \"subject\": %s, \"stage\": %s, \"median_ns\": %.2f, "
                          "\"least_ns\": %.2f, "
                          "\"repetitions\": %zu, \"ratio\": %.4f}",
                          separator, quoted(row.task).c_str(), quoted(row.subject).c_str(),
                          quoted(row.stage).c_str(), row.median(), row.least(), row.times.size(), ratio(row));
            separator = ",\n";
        }
    }
    return result + "\n  ]";
}
