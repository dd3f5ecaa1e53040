#pragma once

#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/filter/NqGeneralMotionFilter.h>
#include <nqControlCore/filter/NqPointMotionFilter.h>
#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>
#include <nqControlCore/foundation/math/NqEndEffectorPlacement.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What a control step is measured on: a robot, constraints on some of its links, and a motion that comes
/// back to its start. All who are measured get the same.
///
/// In the motion every joint swings about a place off the middle of its range, with a phase of its own drawn
/// from a fixed seed. Targets are where the constrained links are when all joints are at these places.
class NqBenchmarkCase {
public:
    /// A constraint in terms that any library understands: a frame, or only its origin, fixed in a link.
    struct Task {
        std::string link;
        NqCoordinateSystemTransformation offset;
        unsigned row = 0;
        unsigned rows = 6; ///< 6 for a frame, 3 for a point
        NqGeneralMotionFilter frameFilter;
        NqPointMotionFilter pointFilter;
        NqEndEffectorPlacement target;
    };

    /// A step of the motion, by joint index.
    struct Pose {
        std::vector<double> positions;
        std::vector<double> velocities;
    };

    /// Frames, or points `*point` from the origins, on the links of a robot given as URDF text. Null, with a
    /// line on what is wrong, if it can't be read or lacks a link.
    static std::unique_ptr<NqBenchmarkCase> make(const std::string& title, const std::string& urdf,
                                                 const std::vector<std::string>& links,
                                                 const std::optional<NqVector>& point, unsigned steps);

    /// The same with the URDF in a file.
    static std::unique_ptr<NqBenchmarkCase>
    makeFromFile(const std::string& title, const std::string& fileName, const std::vector<std::string>& links,
                 const std::optional<NqVector>& point, unsigned steps);

    /// A frame at the end of a serial chain of revolute joints.
    static std::unique_ptr<NqBenchmarkCase> makeChain(unsigned joints, unsigned steps);

    const std::string& title() const { return m_Title; }
    const std::string& urdf() const { return m_Urdf; }
    const NqIndividualManipulator& manipulator() const { return m_Manipulator; }
    const NqEndEffectorVector& endEffectors() const { return m_EndEffectors; }
    const std::vector<Task>& tasks() const { return m_Tasks; }
    unsigned joints() const { return m_Manipulator.numberOfJoints(); }
    unsigned rows() const { return m_Rows; }

    unsigned steps() const { return static_cast<unsigned>(m_Poses.size()); }
    const Pose& pose(unsigned step) const { return m_Poses[step % m_Poses.size()]; }

    /// What the null space is used for.
    const std::vector<double>& gradient() const { return m_Gradient; }
    static constexpr double alpha() { return 0.5; }
    static constexpr double timeStep() { return 0.001; } ///< s

private:
    bool read(const std::string& urdf);
    bool constrain(const std::vector<std::string>& links, const std::optional<NqVector>& point);
    void move(unsigned steps);

    std::string m_Title;
    std::string m_Urdf;
    NqIndividualManipulator m_Manipulator;
    NqEndEffectorVector m_EndEffectors;
    std::vector<Task> m_Tasks;
    unsigned m_Rows = 0;
    std::vector<Pose> m_Poses;
    std::vector<double> m_Gradient;
};
