#pragma once

#include <nqControlLoop/NqControlLoopSettings.h>
#include <nqControlLoop/NqTargetKind.h>

#include <string>
#include <vector>

/// Looks for what is wrong with the parts of a control loop, and puts it into words.
class NqControlLoopCheck {
public:
    /// Something that is wrong.
    struct Issue {
        bool isFatal = true; ///< no step can be made; otherwise only advice
        std::string text;
    };

    explicit NqControlLoopCheck(const NqIndividualManipulator& manipulator) : m_Manipulator(manipulator) {}

    void checkJoints();
    void checkSettings(const NqControlLoopSettings& settings);
    void checkEndEffector(const std::string& name, const NqEndEffector& endEffector, const NqTargetKind& kind,
                          bool hasTarget);
    /// Whether the columns of a free base are the end-effector's motion with the base.
    void checkBaseColumns(const std::string& name, const NqEndEffector& endEffector);
    void checkRows(unsigned rows, unsigned unknowns);

    void add(bool isFatal, std::string text) { m_Issues.push_back({isFatal, std::move(text)}); }
    const std::vector<Issue>& issues() const { return m_Issues; }

private:
    void checkLabel(const std::string& name, const std::string& label);
    void checkList(const char* what, const NqXmlRealVector& list, std::size_t entries, double least,
                   bool mayBeLeast);
    void checkNumber(const char* what, double value, double least, bool mayBeLeast);

    const NqIndividualManipulator& m_Manipulator;
    std::vector<Issue> m_Issues;
};
