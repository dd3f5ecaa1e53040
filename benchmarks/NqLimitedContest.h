#pragma once

#include "NqBenchmarkRun.h"

#include <nqControlLoop/NqLimitedVelocityTool.h>

#include <memory>
#include <string>
#include <vector>

/// The solver under bounds, on random Jacobians of one size: with no bound met, and with some rates held.
class NqLimitedContest {
public:
    NqLimitedContest(unsigned rows, unsigned columns);

    void addTo(NqBenchmarkRun& run);

private:
    /// Bounds for a Jacobian under which so many rates are held.
    struct Bounds {
        std::vector<double> lower;
        std::vector<double> upper;
    };

    Bounds holding(std::size_t jacobian, unsigned rates);
    void add(NqBenchmarkRun& run, const std::string& subject, unsigned rates);

    std::string m_Title;
    std::vector<NqReArray> m_Jacobians;
    NqReArray m_Metric;
    std::vector<double> m_Gradient;
    std::vector<double> m_Velocity;
    std::shared_ptr<NqLimitedVelocityTool> m_Tool;
    std::vector<std::vector<Bounds>> m_Bounds; ///< of each subject, for each Jacobian
};
