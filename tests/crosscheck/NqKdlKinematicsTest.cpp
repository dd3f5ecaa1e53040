#include "NqCrossCheck.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

#include <kdl/treefksolverpos_recursive.hpp>
#include <kdl/treejnttojacsolver.hpp>
#include <kdl_parser/kdl_parser.hpp>

#include <cstdio>

namespace {

NqVector vector(const KDL::Vector& v) {
    return {v.x(), v.y(), v.z()};
}

KDL::Rotation rotation(const NqOrientation& orientation) {
    double q[4];
    orientation.getQuaternion(q[0], q[1], q[2], q[3]);
    return KDL::Rotation::Quaternion(q[1], q[2], q[3], q[0]);
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
    void setRandomState(std::mt19937_64& generator) {
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

    /// Columns, by our joint index, of the Jacobian of a point given in a link's frame, in axes that are
    /// turned against the base frame, as KDL has them.
    std::vector<NqGeneralMotion> jacobian(const std::string& label, const NqVector& point,
                                          const KDL::Rotation& axes) const {
        KDL::Jacobian columns(m_Tree.getNrOfJoints());
        KDL::TreeJntToJacSolver(m_Tree).JntToJac(m_Positions, columns, label);
        columns.changeRefPoint(frame(label).M * KDL::Vector(point[0], point[1], point[2]));
        columns.changeBase(axes.Inverse());
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

constexpr double kTolerance = 1.0e-12;

class KdlKinematics : public NqCrossCheckTest<NqKdlModel> {
protected:
    /// Calls `check` with each link's label at each of the poses, and takes the largest deviation that it
    /// gives.
    void expectAgreementOnLinks(const char* what, auto check) {
        expectAgreement(what, kTolerance, [&] {
            double largest = 0.0;
            for (const auto& [label, element] : m_Model.tree().getSegments()) {
                const double deviation = check(label);
                EXPECT_LE(deviation, kTolerance) << label;
                largest = std::max(largest, deviation);
            }
            return largest;
        });
    }

    NqReArray rowsOf(NqEndEffector& endEffector, const std::string& label) {
        NqReArray rows;
        endEffector.setLinkIdentifier(label);
        endEffector.insertJacobianComponent(m_Model.manipulator(), 0, {}, true, m_Model.state(), rows);
        return rows;
    }

    const NqManipulatorLink& link(const std::string& label) {
        const NqManipulatorLink* found = m_Model.manipulator().linkByLabel(label);
        return found ? *found : m_Model.manipulator();
    }
};

TEST_P(KdlKinematics, FramesOfAllLinks) {
    expectAgreementOnLinks("frames", [&](const std::string& label) {
        return deviation(m_Model.frame(label),
                         link(label).primaryFrameInSystem(m_Model.state().activePositionState()));
    });
}

/// A constraint on some components of the motion of a point, in the axes of the system, in others that are
/// turned against these, or in those of the frame.
struct NqRowsCase {
    enum Axes { System, Turned, Frame };
    NqEndEffector& endEffector;
    std::vector<unsigned> components;
    NqVector point;
    Axes axes;
};

TEST_P(KdlKinematics, JacobiansOnEachLink) {
    using enum NqRowsCase::Axes;
    const NqVector origin(0.1, -0.2, 0.3);
    const NqOrientation orientation(0.7, {0.3, -0.4, 0.5});
    NqPointEndEffector point;
    NqOrientationEndEffector turn;
    NqXEndEffector x;
    NqXyEndEffector xy;
    NqFrameEndEffector frame;
    NqPlanarEndEffector planar;
    NqSlidingEndEffector sliding;
    NqSlideXSpinZEndEffector slideSpin;
    NqFreeSpinInZEndEffector freeSpin;
    NqRCMEndEffector rcm;
    NqLookAtEndEffector lookAt;
    for (NqFrameBasedEndEffector* each : std::initializer_list<NqFrameBasedEndEffector*>{
             &frame, &planar, &sliding, &slideSpin, &freeSpin, &rcm, &lookAt}) {
        each->setFrame({origin, orientation});
    }
    point.setPoint(origin);
    x.setPoint(origin);
    x.setXOrientation(orientation);
    xy.setPoint(origin);
    xy.setXyOrientation(orientation);
    const NqVector focus = origin + orientation * NqVector(lookAt.focusDistance(), 0.0, 0.0);
    const std::vector<NqRowsCase> cases{{point, {0, 1, 2}, origin, System},
                                        {frame, {0, 1, 2, 3, 4, 5}, origin, System},
                                        {turn, {3, 4, 5}, origin, System},
                                        {x, {0}, origin, Turned},
                                        {xy, {0, 1}, origin, Turned},
                                        {planar, {2, 3, 4}, origin, Frame},
                                        {sliding, {1, 2, 3, 4, 5}, origin, Frame},
                                        {slideSpin, {1, 2, 3, 4}, origin, Frame},
                                        {freeSpin, {0, 1, 2, 3, 4}, origin, Frame},
                                        {rcm, {1, 2}, origin, Frame},
                                        {lookAt, {1, 2}, focus, Frame}};
    expectAgreementOnLinks("Jacobians", [&](const std::string& label) {
        const KDL::Rotation turned = rotation(orientation);
        const KDL::Rotation axes[] = {KDL::Rotation::Identity(), turned, m_Model.frame(label).M * turned};
        double largest = 0.0;
        for (const NqRowsCase& each : cases) {
            const std::vector<NqGeneralMotion> reference =
                m_Model.jacobian(label, each.point, axes[each.axes]);
            const NqReArray rows = rowsOf(each.endEffector, label);
            for (unsigned j = 0; j < reference.size(); ++j) {
                const double scale = std::max(1.0, reference[j].linear().mag());
                for (unsigned i = 0; i < each.components.size(); ++i) {
                    const double expected = reference[j][each.components[i]];
                    largest = std::max(largest, std::fabs(rows[i][j] - expected) / scale);
                }
            }
        }
        return largest;
    });
}

// KDL leaves out the mass of the root, and so what is fixed to it is left out here.
TEST_P(KdlKinematics, MassOfAllThatMoves) {
    std::mt19937_64 generator(kCrossCheckSeed);
    m_Model.setRandomState(generator);
    KDL::RigidBodyInertia reference;
    for (const auto& [label, element] : m_Model.tree().getSegments()) {
        if (link(label).parentLink()) {
            reference = reference + m_Model.frame(label) * element.segment.getInertia();
        }
    }
    const NqRigidBodyMassProperties& all = m_Model.manipulator().compositeMassProperties(m_Model.state());
    const NqRigidBodyMassProperties& root = m_Model.manipulator().massProperties();
    const double tolerance = kTolerance * std::max(1.0, reference.getMass());
    EXPECT_NEAR(reference.getMass(), all.mass() - root.mass(), tolerance);
    for (unsigned i = 0; i < 3; ++i) {
        const double firstMoment = reference.getMass() * reference.getCOG()(static_cast<int>(i));
        EXPECT_NEAR(firstMoment, all.firstMoment()[i] - root.firstMoment()[i], tolerance);
        for (unsigned j = 0; j < 3; ++j) {
            EXPECT_NEAR(reference.getRotationalInertia().data[3 * i + j],
                        all.secondMoment()(i, j) - root.secondMoment()(i, j), tolerance);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, KdlKinematics, testing::ValuesIn(nqCrossCheckFiles()), nqCrossCheckName);

} // namespace
