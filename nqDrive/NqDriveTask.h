#pragma once

#include "NqDriveOptions.h"

#include <nqControlLoop/NqControlLoop.h>

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>

#include <string>
#include <vector>

/// The user's wishes made good: robot and end-effectors read, and all that the options say fitted to them.
class NqDriveTask {
public:
    /// False when something doesn't fit; complaint() then says what, in one line.
    bool load(const NqDriveOptions& options);

    const std::string& complaint() const { return m_Complaint; }
    /// What the files' reading remarked that isn't fatal.
    const std::vector<std::string>& notes() const { return m_Notes; }

    const NqDriveOptions& options() const { return m_Options; }
    const NqIndividualManipulator& manipulator() const { return m_Manipulator; }
    const NqEndEffectorVector& endEffectors() const { return m_EndEffectors; }
    /// Labels of the end-effectors' links, or their types, numbered where several are the same.
    const std::vector<std::string>& endEffectorNames() const { return m_Names; }
    const std::vector<NqTargetKind>& kinds() const { return m_Kinds; }
    const std::vector<double>& start() const { return m_Start; }
    const std::vector<double>& posture() const { return m_Posture; } ///< empty: none
    const std::vector<double>& metric() const { return m_Metric; }
    const NqControlLoopSettings& settings() const { return m_Settings; }
    /// The loop at the start.
    NqControlLoop loop() const;
    /// For each way point the target of each end-effector, as NqControlLoop::setTarget takes it.
    const std::vector<std::vector<NqEndEffectorPlacement>>& targets() const { return m_Targets; }

    /// A target that lies beyond the arm stretched out, in one sentence; empty if there is none that shows so
    /// simply.
    std::string unreachableTarget() const;

private:
    bool readFiles();
    bool checkEndEffectors();
    bool setStart();
    bool setPosture();
    bool setMetric();
    bool setByLabel(const std::vector<std::pair<std::string, double>>& byLabel, const char* option,
                    std::vector<double>& values);
    bool checkConstraints();
    bool setTargets();
    bool refuse(std::string complaint);
    bool hasJointCount(const std::vector<double>& values, const char* option);
    bool setSettings();
    double reach(const std::string& label, const NqVector& point, NqVector& centre) const;

    NqDriveOptions m_Options;
    std::string m_Complaint;
    std::vector<std::string> m_Notes;
    NqIndividualManipulator m_Manipulator;
    NqEndEffectorVector m_EndEffectors;
    std::vector<std::string> m_Names;
    std::vector<NqTargetKind> m_Kinds;
    NqControlLoopSettings m_Settings;
    std::vector<double> m_Start;
    std::vector<double> m_Posture;
    std::vector<double> m_Metric;
    std::vector<std::vector<NqEndEffectorPlacement>> m_Targets;
};
