// The control loop of the library: an end-effector under a name, a target for it, and steps that keep the
// limits of the joints.
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>
#include <nqControlLoop/NqControlLoop.h>

#include <cstdio>

int main() {
    // [README
    NqIndividualManipulator arm;
    if (!NqUrdfReader::readFile("models/arm7.urdf", arm)) {
        return 1;
    }
    NqPointEndEffector hand; // the constraint: this point of that link follows a target
    hand.setLinkIdentifier("flange");
    hand.setPoint(NqVector(0.0, 0.0, 0.1)); // m, in the link's frame

    NqControlLoop loop(arm);
    loop.addEndEffector("hand", hand);
    loop.setPositions({0.0, -0.5, 0.0, -2.2, 0.0, 1.8, 0.8}); // rad
    loop.setTarget("hand", NqControlTarget::place({0.45, 0.25, 0.40}));
    while (loop.step() && !loop.status().isStuck() && loop.largestError() > 1e-6) {
        // A millisecond has passed: loop.rates() is what the joints are to do in it.
    }
    // README]

    const NqVector& point = loop.placements()[0].translation();
    std::printf("after %.3f s the point is at (%.6f, %.6f, %.6f), %.1e m from its target\n", loop.time(),
                point.x(), point.y(), point.z(), loop.largestError());
    return loop.status().kind == NqControlLoopStatus::Reached ? 0 : 1;
}
