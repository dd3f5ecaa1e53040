// Two ways to a manipulator, by code and from a URDF text, and what its links tell about a state.
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <cstdio>

namespace {

NqIndividualManipulator madeByCode() {
    NqIndividualManipulator arm("swingingRod", "base");
    NqJointDescription lift(NqJointDescription::Prismatic, "lift");
    lift.setPositionLimits(0.0, 1.5);
    arm.addLink("base", "carriage", lift, NqVector(0.0, 0.0, 0.2));
    // The axis is given in the new link's frame; the frame, in that of its parent.
    arm.addLink("carriage", "rod", NqJointDescription(NqJointDescription::Revolute, "swing"),
                NqVector(0.1, 0.0, 0.0), NqVector::yVector(1.0));
    arm.addLink("rod", "tip", NqJointDescription(), NqVector(0.5, 0.0, 0.0)); // a fixed joint: no column
    return arm;
}

constexpr const char* urdf = R"(
<robot name="swingingRod">
  <link name="base"/> <link name="carriage"/> <link name="rod"/> <link name="tip"/>
  <joint name="lift" type="prismatic">
    <parent link="base"/> <child link="carriage"/>
    <origin xyz="0 0 0.2"/> <axis xyz="0 0 1"/>
    <limit lower="0" upper="1.5" velocity="0.5" effort="200"/>
  </joint>
  <joint name="swing" type="continuous">
    <parent link="carriage"/> <child link="rod"/> <origin xyz="0.1 0 0"/> <axis xyz="0 1 0"/>
  </joint>
  <joint name="tip" type="fixed">
    <parent link="rod"/> <child link="tip"/> <origin xyz="0.5 0 0"/>
  </joint>
</robot>)";

/// Prints where the tip is and how it moves, in the system frame.
NqVector tell(const char* how, const NqIndividualManipulator& arm) {
    NqManipulatorActiveState state(arm);
    state.setPositionState(NqPositionState(NqXmlRealVector{0.3, -0.5}));
    state.setVelocityState(NqVelocityState(NqXmlRealVector{0.1, 2.0}));

    const NqManipulatorLink* tip = arm.linkByLabel("tip");
    const NqVector& p = tip->primaryFrameInSystem(state.activePositionState()).translation();
    const NqGeneralMotion& v = tip->primaryFrameVelocity(state);
    std::printf("%s: %u joints, tip at (%.3f, %.3f, %.3f), moving at (%.3f, %.3f, %.3f)\n", how,
                arm.numberOfJoints(), p.x(), p.y(), p.z(), v.linear().x(), v.linear().y(), v.linear().z());
    return p;
}

} // namespace

int main() {
    NqIndividualManipulator fromText;
    if (!NqUrdfReader::readString(urdf, fromText)) {
        return 1; // the reason has been printed
    }
    const NqVector difference = tell("by code  ", madeByCode()) - tell("from URDF", fromText);
    return difference.mag() < 1e-12 ? 0 : 1;
}
