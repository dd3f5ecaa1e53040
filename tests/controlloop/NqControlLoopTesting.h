#pragma once

#include "support/NqTestModels.h"

#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlLoop/NqControlLoop.h>

#include <string>
#include <vector>

template <typename EndEffector = NqPointEndEffector>
EndEffector nqOn(const std::string& link) {
    EndEffector endEffector;
    endEffector.setLinkIdentifier(link);
    return endEffector;
}

inline NqControlLoopSettings nqSettingsOf(double timeStep) {
    NqControlLoopSettings settings;
    settings.setTimeStep(timeStep);
    return settings;
}

/// Whether that many steps can be made.
inline bool nqMakesSteps(NqControlLoop& loop, unsigned count) {
    unsigned made = 0;
    while (made < count && loop.step()) {
        ++made;
    }
    return made == count;
}

/// The arm of 7 joints, bent, with a point on its hand.
struct NqArm7Loop {
    explicit NqArm7Loop(const NqControlLoopSettings& settings = nqSettingsOf(0.002)) : loop(robot, settings) {
        loop.addEndEffector("hand", nqOn("hand"));
        loop.setPositions({0.0, 0.3, 0.2, -1.8, 0.2, 2.0, 0.8});
    }

    const NqIndividualManipulator robot = nqTestManipulator("arm7");
    NqControlLoop loop;
};
