#pragma once

#include <map>
#include <string>
#include <vector>

/// What was measured: for each task the times of all who did it, with the first of them as measure.
class NqBenchmarkTable {
public:
    struct Row {
        std::string task;
        std::string subject;
        std::string stage;         ///< what of the subject is timed, where there are several
        std::vector<double> times; ///< ns, of each repetition

        double median() const;
        double least() const;
    };

    /// Rows of a task stand together in the order in which they come, as do the stages of a subject.
    void add(const std::string& task, const std::string& subject, const std::string& stage = {});
    /// Enters a repetition in row `index`.
    void enter(std::size_t index, double nanoseconds) { m_Rows[index].times.push_back(nanoseconds); }

    const std::vector<Row>& rows() const { return m_Rows; }

    /// As text: nanoseconds, and how many times the median of the first of the task; medians alone, side by
    /// side, where subjects have stages.
    std::string text() const;
    /// The same as an array of JSON.
    std::string json() const;

private:
    double ratio(const Row& row) const;

    std::vector<Row> m_Rows;
    std::map<std::string, std::size_t> m_FirstOf; ///< by task
};
