#include "NqCrossCheck.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <gtest/gtest.h>
#include <kdl/treefksolverpos_recursive.hpp>
#include <kdl/treejnttojacsolver.hpp>
#include <kdl_parser/kdl_parser.hpp>

#include <numbers>

namespace {

NqVector vector(const KDL::Vector& v) {
    return {v.x(), v.y(), v.z()};
}

/// The largest of the distances between two frames' origins and axes, relative to the size of the first (at
/// least 1).
double deviation(const KDL::Frame& reference, const NqCoordinateSystemTransformation& actual) {
    NqVector x, y, z;
    actual.orientation().getDcmColumns(x, y, z);
    return std::max({nqDeviation(vector(reference.p), actual.translation()),
                     nqDeviation(vector(reference.M.UnitX()), x), nqDeviation(vector(reference.M.UnitY()), y),
                     nqDeviation(vector(reference.M.UnitZ()), z)});
}

/// One robot description read twice, by this library and by Orocos KDL, at one pose in both.
class NqKdlModel {
public:
    /// False where one of the two can't read the file.
    bool read(const std::string& fileName) {
        if (!NqUrdfReader::readFile(fileName, m_Manipulator) || !kdl_parser::treeFromFile(fileName, m_Tree)) {
            return false;
        }
        m_State = NqManipulatorActiveState(m_Manipulator);
        m_Positions.resize(m_Tree.getNrOfJoints());
        m_KdlIndices.assign(m_Manipulator.numberOfJoints(), ~0u);
        for (const auto& [label, element] : m_Tree.getSegments()) {
            const NqManipulatorLink* link = m_Manipulator.linkByLabel(label);
            if (link && element.segment.getJoint().getType() != KDL::Joint::None) {
                m_KdlIndices[link->jointIndex()] = element.q_nr;
            }
        }
        return m_Positions.rows() == m_KdlIndices.size();
    }

    /// Gives all joints random positions in [-pi, pi], metres or radians.
    void setRandomPose(std::mt19937_64& generator) {
        std::uniform_real_distribution<double> position(-std::numbers::pi, std::numbers::pi);
        NqPositionState positions(m_KdlIndices.size());
        for (unsigned i = 0; i < m_KdlIndices.size(); ++i) {
            positions.setJointPosition(i, m_Positions(m_KdlIndices[i]) = position(generator));
        }
        m_State.setPositionState(positions);
    }

    const NqIndividualManipulator& manipulator() const { return m_Manipulator; }
    NqManipulatorActiveState& state() { return m_State; }

    const KDL::Tree& tree() const { return m_Tree; }

    /// Frame of a link in the base frame, as KDL has it.
    KDL::Frame frame(const std::string& label) const {
        KDL::Frame result;
        KDL::TreeFkSolverPos_recursive(m_Tree).JntToCart(m_Positions, result, label);
        return result;
    }

    /// Columns, by our joint index, of the Jacobian of a point given in a link's frame, in the axes of the
    /// base frame, as KDL has them.
    std::vector<NqGeneralMotion> jacobian(const std::string& label, const NqVector& point) const {
        KDL::Jacobian columns(m_Tree.getNrOfJoints());
        KDL::TreeJntToJacSolver(m_Tree).JntToJac(m_Positions, columns, label);
        columns.changeRefPoint(frame(label).M * KDL::Vector(point[0], point[1], point[2]));
        std::vector<NqGeneralMotion> result;
        for (const unsigned index : m_KdlIndices) {
            const KDL::Twist column = columns.getColumn(index);
            result.emplace_back(vector(column.vel), vector(column.rot));
        }
        return result;
    }

private:
    NqIndividualManipulator m_Manipulator;
    NqManipulatorActiveState m_State;
    KDL::Tree m_Tree;
    KDL::JntArray m_Positions;
    std::vector<unsigned> m_KdlIndices; ///< by our joint index
};

class KdlKinematics : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_TRUE(m_Model.read(GetParam())); }

    /// Of what `check` gives for the label of each link in random poses.
    template <typename Check>
    void expectAgreement(const char* what, Check check) {
        nqExpectAgreement(GetParam() + ": " + what, 1.0e-12, [&](std::mt19937_64& random) {
            m_Model.setRandomPose(random);
            double largest = 0.0;
            for (const auto& [label, element] : m_Model.tree().getSegments()) {
                largest = std::max(largest, check(label));
            }
            return largest;
        });
    }

    const NqManipulatorLink& link(const std::string& label) {
        const NqManipulatorLink* found = m_Model.manipulator().linkByLabel(label);
        return found ? *found : m_Model.manipulator();
    }

    NqKdlModel m_Model;
};

TEST_P(KdlKinematics, FramesOfAllLinks) {
    expectAgreement("frames", [&](const std::string& label) {
        return deviation(m_Model.frame(label),
                         link(label).primaryFrameInSystem(m_Model.state().activePositionState()));
    });
}

/// Of a frame on the link, from which other constraints take their rows.
TEST_P(KdlKinematics, JacobiansOnEachLink) {
    const NqVector point(0.1, -0.2, 0.3);
    NqFrameEndEffector frame;
    frame.setFrame({point, NqOrientation(0.7, {0.3, -0.4, 0.5})});
    expectAgreement("Jacobians", [&](const std::string& label) {
        NqReArray rows;
        frame.setLinkIdentifier(label);
        frame.insertJacobianComponent(m_Model.manipulator(), 0, {}, true, m_Model.state(), rows);
        const std::vector<NqGeneralMotion> reference = m_Model.jacobian(label, point);
        double largest = 0.0;
        for (unsigned j = 0; j < reference.size(); ++j) {
            const NqVector linear(rows[0][j], rows[1][j], rows[2][j]);
            const NqVector angular(rows[3][j], rows[4][j], rows[5][j]);
            largest = std::max({largest, nqDeviation(reference[j].linear(), linear),
                                nqDeviation(reference[j].angular(), angular)});
        }
        return largest;
    });
}

INSTANTIATE_TEST_SUITE_P(Models, KdlKinematics, testing::ValuesIn(nqCrossCheckFiles()), nqCrossCheckName);

} // namespace
