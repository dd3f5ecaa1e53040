#include <crosscheck/NqKdlModel.h>

#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <kdl/treefksolverpos_recursive.hpp>
#include <kdl/treejnttojacsolver.hpp>
#include <kdl_parser/kdl_parser.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <numbers>

namespace {

NqVector vector(const KDL::Vector& v) {
    return {v.x(), v.y(), v.z()};
}

double deviation(const NqVector& reference, const NqVector& actual) {
    return (actual - reference).mag() / std::max(1.0, reference.mag());
}

} // namespace

std::vector<std::string> NqKdlModel::files() {
    std::vector<std::string> result;
    const char* further = std::getenv("NQ_CROSSCHECK_MODELS");
    for (const char* folder : {NQ_MODELS, NQ_TEST_MODELS, further}) {
        if (folder) {
            for (const auto& entry : std::filesystem::directory_iterator(folder)) {
                if (entry.path().extension() == ".urdf") {
                    result.push_back(entry.path().string());
                }
            }
        }
    }
    std::ranges::sort(result);
    return result;
}

bool NqKdlModel::read(const std::string& fileName) {
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

void NqKdlModel::setRandomPose(std::mt19937_64& generator) {
    std::uniform_real_distribution<double> position(-std::numbers::pi, std::numbers::pi);
    NqPositionState positions(m_KdlIndices.size());
    for (unsigned i = 0; i < m_KdlIndices.size(); ++i) {
        positions.setJointPosition(i, m_Positions(m_KdlIndices[i]) = position(generator));
    }
    m_State.setPositionState(positions);
}

KDL::Frame NqKdlModel::frame(const std::string& label) const {
    KDL::Frame result;
    KDL::TreeFkSolverPos_recursive(m_Tree).JntToCart(m_Positions, result, label);
    return result;
}

std::vector<NqGeneralMotion> NqKdlModel::jacobian(const std::string& label, const NqVector& point) const {
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

double nqDeviation(const KDL::Frame& reference, const NqCoordinateSystemTransformation& actual) {
    NqVector x, y, z;
    actual.orientation().getDcmColumns(x, y, z);
    return std::max({deviation(vector(reference.p), actual.translation()),
                     deviation(vector(reference.M.UnitX()), x), deviation(vector(reference.M.UnitY()), y),
                     deviation(vector(reference.M.UnitZ()), z)});
}
