#pragma once

#include <nqControlLoop/NqControlLoop.h>

#include <vector>

/// Looks for a posture in which all hard end-effectors of a loop are at their targets, within the limits of
/// the joints: for an arm that limits keep from going on, though another elbow or wrist would do. Starts from
/// random postures, the same ones every time, first near the present one and then anywhere, and follows the
/// targets from there in long steps, which no arm could make. Joints that are held and the base, a free one
/// too, stay where they are. It allocates, and takes milliseconds; a thorough search that finds nothing takes
/// some tenths of a second.
class NqPostureSearch {
public:
    /// Takes over end-effectors, targets and state as they are.
    explicit NqPostureSearch(const NqControlLoop& loop);

    /// False when none was found. Of several the one that the joints get to soonest.
    bool find(std::vector<double>& posture, bool isThorough = false);

private:
    bool reach(const std::vector<double>& start, bool mayGiveUp);
    void turnNearest(std::vector<double>& posture);
    double travel(const std::vector<double>& posture);

    const NqIndividualManipulator& m_Manipulator;
    NqControlLoop m_Loop;
    std::vector<double> m_Present;
    std::vector<bool> m_Moves; ///< whether a joint moves any end-effector
    double m_Tolerance;
};
