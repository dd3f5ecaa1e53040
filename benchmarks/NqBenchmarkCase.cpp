#include "NqBenchmarkCase.h"

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>
#include <nqControlCore/foundation/manipulator/NqUrdfReader.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <random>
#include <sstream>

std::unique_ptr<NqBenchmarkCase> NqBenchmarkCase::make(const std::string& title, const std::string& urdf,
                                                       const std::vector<std::string>& links,
                                                       const std::optional<NqVector>& point, unsigned steps) {
    auto made = std::make_unique<NqBenchmarkCase>();
    made->m_Title = title;
    if (!made->read(urdf) || !made->constrain(links, point)) {
        return nullptr;
    }
    made->move(steps);
    return made;
}

std::unique_ptr<NqBenchmarkCase> NqBenchmarkCase::makeFromFile(const std::string& title,
                                                               const std::string& fileName,
                                                               const std::vector<std::string>& links,
                                                               const std::optional<NqVector>& point,
                                                               unsigned steps) {
    std::ifstream file(fileName);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file) {
        std::fprintf(stderr, "cannot read '%s'\n", fileName.c_str());
        return nullptr;
    }
    return make(title, text.str(), links, point, steps);
}

/// Axes take turns, so that the chain reaches everywhere; the whole is 1 m long.
std::unique_ptr<NqBenchmarkCase> NqBenchmarkCase::makeChain(unsigned joints, unsigned steps) {
    constexpr const char* axes[] = {"0 0 1", "0 1 0", "1 0 0"};
    std::ostringstream urdf;
    urdf << "<robot name=\"chain\"><link name=\"link0\"/>";
    for (unsigned j = 1; j <= joints; ++j) {
        urdf << "<link name=\"link" << j << "\"/><joint name=\"joint" << j << "\" type=\"revolute\">"
             << "<parent link=\"link" << j - 1 << "\"/><child link=\"link" << j << "\"/>"
             << "<origin xyz=\"0.02 0 " << 1.0 / joints << "\" rpy=\"0.1 0 0\"/>"
             << "<axis xyz=\"" << axes[j % 3] << "\"/>"
             << "<limit lower=\"-2\" upper=\"2.2\" velocity=\"2\" effort=\"50\"/></joint>";
    }
    urdf << "</robot>";
    return make("chain of " + std::to_string(joints) + " joints", urdf.str(),
                {"link" + std::to_string(joints)}, std::nullopt, steps);
}

bool NqBenchmarkCase::read(const std::string& urdf) {
    m_Urdf = urdf;
    return NqUrdfReader::readString(urdf, m_Manipulator);
}

bool NqBenchmarkCase::constrain(const std::vector<std::string>& links, const std::optional<NqVector>& point) {
    for (const std::string& link : links) {
        if (!m_Manipulator.linkByLabel(link)) {
            std::fprintf(stderr, "%s: there is no link '%s'\n", m_Title.c_str(), link.c_str());
            return false;
        }
        Task task;
        task.link = link;
        task.row = m_Rows;
        if (point) {
            NqPointEndEffector endEffector;
            endEffector.setLinkIdentifier(link);
            endEffector.setPoint(*point);
            m_EndEffectors.pushBack(endEffector);
            task.offset = *point;
            task.rows = 3;
            task.pointFilter = endEffector.pointMotionFilter();
        } else {
            NqFrameEndEffector endEffector;
            endEffector.setLinkIdentifier(link);
            m_EndEffectors.pushBack(endEffector);
            task.frameFilter = endEffector.motionFilter();
        }
        m_Rows += task.rows;
        m_Tasks.push_back(task);
    }
    if (m_Rows == 0 || m_Rows > joints()) {
        std::fprintf(stderr, "%s: %u rows for %u joints\n", m_Title.c_str(), m_Rows, joints());
        return false;
    }
    return true;
}

void NqBenchmarkCase::move(unsigned steps) {
    std::mt19937_64 random(20241);
    const auto draw = [&random] { return static_cast<double>(random() >> 11) * 0x1p-53; };
    m_Poses.assign(steps, {std::vector<double>(joints()), std::vector<double>(joints())});
    NqPositionState home(joints());
    for (unsigned j = 0; j < joints(); ++j) {
        const NqJointDescription& joint = m_Manipulator.linkByIndex(j)->joint();
        const bool isBounded = joint.hasPositionLimits();
        const double middle =
            isBounded ? 0.5 * (joint.lowerPositionLimit() + joint.upperPositionLimit()) : 0.0;
        const double reach =
            isBounded ? 0.5 * (joint.upperPositionLimit() - joint.lowerPositionLimit()) : 1.0;
        const double center = middle + 0.3 * reach;
        const double swing = 0.2 * reach;
        const double phase = 2.0 * std::numbers::pi * draw();
        const double turn = 2.0 * std::numbers::pi / steps;
        home.setJointPosition(j, center);
        m_Gradient.push_back(2.0 * draw() - 1.0);
        for (unsigned k = 0; k < steps; ++k) {
            m_Poses[k].positions[j] = center + swing * std::sin(phase + turn * k);
            m_Poses[k].velocities[j] = swing * std::cos(phase + turn * k);
        }
    }
    NqManipulatorActiveState state(m_Manipulator);
    state.setPositionState(home);
    for (unsigned e = 0; e < m_Tasks.size(); ++e) {
        m_EndEffectors[e]->calculatePlacement(m_Manipulator, state, m_Tasks[e].target);
    }
}
