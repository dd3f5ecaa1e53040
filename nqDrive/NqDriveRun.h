#pragma once

#include "NqDriveRecord.h"
#include "NqDriveRecorder.h"
#include "NqDriveTask.h"

#include <nqControlLoop/NqControlLoop.h>

/// Drives a task to its end: way point after way point, until the last is reached, the time is over or
/// nothing moves on.
class NqDriveRun {
public:
    /// Is told of every step, and of every way point when it is reached.
    class Watcher {
    public:
        virtual ~Watcher() = default;
        virtual void stepDone(const NqDriveRun& run) = 0;
        virtual void wayPointReached(const NqDriveRun& run) = 0;
    };

    /// The task must outlive the run.
    explicit NqDriveRun(const NqDriveTask& task);

    /// Runs once. Nothing allocates while the arm moves.
    void execute(Watcher& watcher);

    const NqControlLoop& loop() const { return m_Loop; }
    const NqDriveTask& task() const { return m_Task; }
    const NqDriveRecorder& recorder() const { return m_Recorder; }
    const NqDriveRecord& record() const { return m_Record; }
    /// Which way point is being driven to, from 0.
    std::size_t wayPoint() const { return m_WayPoint; }
    /// The part with the largest error, among the hard end-effectors if there are any.
    std::size_t farthest() const;

private:
    bool isHard(std::size_t part) const;
    double hardError() const;
    double softError() const;
    bool isWayPointReached() const;
    bool isTimeOver() const;
    bool isStalled();
    bool isMoving() const;
    bool isTooSlow();
    bool isHeldAtRest();
    void startWayPoint();
    void watchFromHere();
    bool beginDetour(bool isThorough);
    void endDetour();
    void noteStep();
    void noteSample(bool isKept);
    void conclude(NqDriveRecord::Outcome outcome);
    std::string verdict() const;
    std::string outcomeText() const;
    std::string chatter() const;
    std::string cause() const;
    std::string inVain() const;
    std::string closeToLimits() const;
    std::string slowedBy() const;
    std::string jointNames(const std::vector<std::size_t>& joints) const;
    std::string distanceText(std::size_t part) const;
    std::string softRemainder() const;
    std::string idleDirection() const;
    void sketch();

    const NqDriveTask& m_Task;
    NqControlLoop m_Loop;
    NqDriveRecorder m_Recorder;
    NqDriveRecord m_Record;
    std::size_t m_WayPoint = 0;
    double m_BestError = 0.0;
    double m_BestTime = 0.0;
    double m_BestSoftError = 0.0;
    double m_BestSoftTime = 0.0;
    double m_PaceError = 0.0;
    double m_PaceTime = 0.0;
    double m_RestTime = 0.0;           ///< since when the arm stands still
    bool m_HasSearchedHere = false;    ///< thoroughly, for another posture, since it moved
    std::string m_DetourCause;         ///< what asked for the last one
    unsigned m_Searches = 0;           ///< for other postures, on the way to this way point
    double m_LeastSingularValue = 0.0; ///< at the end
};
