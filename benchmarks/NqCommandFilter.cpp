#include "NqCommandFilter.h"

NqCommandFilter::NqCommandFilter(const NqBenchmarkCase& benchmarkCase)
    : m_Case(benchmarkCase), m_Command(benchmarkCase.rows()), m_Error(benchmarkCase.rows()) {}

void NqCommandFilter::filter(const std::vector<NqCoordinateSystemTransformation>& placements) {
    for (std::size_t e = 0; e < placements.size(); ++e) {
        const NqBenchmarkCase::Task& task = m_Case.tasks()[e];
        if (task.rows == 6) {
            filterFrame(task, placements[e]);
        } else {
            filterPoint(task, placements[e].translation());
        }
    }
}

void NqCommandFilter::filterFrame(const NqBenchmarkCase::Task& task,
                                  const NqCoordinateSystemTransformation& placement) {
    constexpr bool matchTimes = true;
    constexpr bool zAxisOnly = false;
    double* const command = m_Command.data() + task.row;
    double* const error = m_Error.data() + task.row;
    const NqGeneralMotion previous({command[0], command[1], command[2]},
                                   {command[3], command[4], command[5]});
    const NqCoordinateSystemTransformation& target = task.target.coordSysXForm();
    NqGeneralMotion filtered, way;
    task.frameFilter.calculateGeneralMotion(placement, target, {}, previous, NqBenchmarkCase::timeStep(),
                                            filtered, matchTimes, zAxisOnly, true);
    task.frameFilter.calculateGeneralMotion(placement, target, {}, {}, 1.0, way, matchTimes, zAxisOnly,
                                            false);
    for (unsigned i = 0; i < 6; ++i) {
        command[i] = filtered[i];
        error[i] = way[i];
    }
}

void NqCommandFilter::filterPoint(const NqBenchmarkCase::Task& task, const NqVector& position) {
    double* const command = m_Command.data() + task.row;
    const NqVector previous(command[0], command[1], command[2]);
    const NqVector& target = task.target.coordSysXForm().translation();
    NqVector filtered;
    task.pointFilter.calculate3DVelocity(position, target, {}, previous, NqBenchmarkCase::timeStep(),
                                         filtered);
    for (unsigned i = 0; i < 3; ++i) {
        command[i] = filtered[i];
        m_Error[task.row + i] = target[i] - position[i];
    }
}
