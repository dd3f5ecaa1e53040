#pragma once

#include "NqBenchmarkCase.h"

/// Commanded velocity and error for peers: motion filters are no part of their libraries, so they take ours,
/// on the placements that they have found themselves.
class NqCommandFilter {
public:
    explicit NqCommandFilter(const NqBenchmarkCase& benchmarkCase);

    /// For present placements, one for each constraint.
    void filter(const std::vector<NqCoordinateSystemTransformation>& placements);

    const std::vector<double>& command() const { return m_Command; }
    const std::vector<double>& error() const { return m_Error; }

private:
    void filterFrame(const NqBenchmarkCase::Task& task, const NqCoordinateSystemTransformation& placement);
    void filterPoint(const NqBenchmarkCase::Task& task, const NqVector& position);

    const NqBenchmarkCase& m_Case;
    std::vector<double> m_Command; ///< of this step, row by row; while filtering still that of the last
    std::vector<double> m_Error;
};
