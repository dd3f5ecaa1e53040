#pragma once

#include <nqControlCore/foundation/manipulator/NqIndividualManipulator.h>

#include <kdl/jntarray.hpp>
#include <kdl/tree.hpp>

#include <random>
#include <string>
#include <vector>

/// One robot description read twice, by this library and by Orocos KDL, at one pose in both.
class NqKdlModel {
public:
    /// Descriptions to compare on: the models of the project, those of its tests, and the files in the folder
    /// that the environment variable NQ_CROSSCHECK_MODELS names.
    static std::vector<std::string> files();

    /// False where one of the two can't read the file.
    bool read(const std::string& fileName);

    /// Gives all joints random positions in [-pi, pi], metres or radians.
    void setRandomPose(std::mt19937_64& generator);

    const NqIndividualManipulator& manipulator() const { return m_Manipulator; }
    NqManipulatorActiveState& state() { return m_State; }

    const KDL::Tree& tree() const { return m_Tree; }

    /// Frame of a link in the base frame, as KDL has it.
    KDL::Frame frame(const std::string& label) const;

    /// Columns, by our joint index, of the Jacobian of a point given in a link's frame, in the base frame, as
    /// KDL has them.
    std::vector<NqGeneralMotion> jacobian(const std::string& label, const NqVector& point) const;

private:
    NqIndividualManipulator m_Manipulator;
    NqManipulatorActiveState m_State;
    KDL::Tree m_Tree;
    KDL::JntArray m_Positions;
    std::vector<unsigned> m_KdlIndices; ///< by our joint index
};

/// The largest of the distances between two frames' origins and axes, relative to the size of the first (at
/// least 1).
double nqDeviation(const KDL::Frame& reference, const NqCoordinateSystemTransformation& actual);
