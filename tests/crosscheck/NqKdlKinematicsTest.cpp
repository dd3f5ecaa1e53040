#include <crosscheck/NqKdlModel.h>

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/endeffector/NqOrientationEndEffector.h>
#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr double kTolerance = 1.0e-12;
constexpr unsigned kSeed = 20240;
constexpr int kPoses = 20;

class KdlKinematics : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override { ASSERT_TRUE(m_Model.read(GetParam())); }

    /// Calls `check` with each link's label at each of the poses, and takes the largest deviation that it
    /// gives.
    template <typename Check>
    void expectAgreement(const char* what, Check check) {
        std::mt19937_64 generator(kSeed);
        double largest = 0.0;
        for (int pose = 0; pose < kPoses; ++pose) {
            m_Model.setRandomPose(generator);
            for (const auto& [label, element] : m_Model.tree().getSegments()) {
                const double deviation = check(label);
                EXPECT_LE(deviation, kTolerance)
                    << what << " of " << label << ", pose " << pose << ", seed " << kSeed;
                largest = std::max(largest, deviation);
            }
        }
        std::printf("%s: %s within %.1e\n", GetParam().c_str(), what, largest);
    }

    const NqManipulatorLink& link(const std::string& label) {
        const NqManipulatorLink* found = m_Model.manipulator().linkByLabel(label);
        return found ? *found : m_Model.manipulator();
    }

    NqKdlModel m_Model;
};

TEST_P(KdlKinematics, FramesOfAllLinks) {
    expectAgreement("frames", [&](const std::string& label) {
        return nqDeviation(m_Model.frame(label),
                           link(label).primaryFrameInSystem(m_Model.state().activePositionState()));
    });
}

TEST_P(KdlKinematics, JacobiansOnEachLink) {
    const NqVector offset(0.1, -0.2, 0.3);
    NqPointEndEffector point;
    point.setPoint(offset);
    NqFrameEndEffector frame;
    frame.setFrame({offset, NqOrientation(0.7, {0.3, -0.4, 0.5})});
    NqOrientationEndEffector orientation;
    const auto rowsOf = [&](NqEndEffector& endEffector, const std::string& label) {
        NqReArray rows;
        endEffector.setLinkIdentifier(label);
        endEffector.insertJacobianComponent(m_Model.manipulator(), 0, {}, true, m_Model.state(), rows);
        return rows;
    };
    expectAgreement("Jacobians", [&](const std::string& label) {
        const std::vector<NqGeneralMotion> reference = m_Model.jacobian(label, offset);
        const NqReArray ofPoint = rowsOf(point, label);
        const NqReArray ofFrame = rowsOf(frame, label);
        const NqReArray ofOrientation = rowsOf(orientation, label);
        double largest = 0.0;
        for (unsigned j = 0; j < reference.size(); ++j) {
            for (unsigned i = 0; i < 6; ++i) {
                const double scale = std::max(1.0, reference[j].linear().mag());
                const double expected = reference[j][i];
                const double partial = i < 3 ? ofPoint[i][j] : ofOrientation[i - 3][j];
                largest = std::max({largest, std::fabs(ofFrame[i][j] - expected) / scale,
                                    std::fabs(partial - expected) / scale});
            }
        }
        return largest;
    });
}

// KDL leaves out the mass of the root, and so what is fixed to it is left out here.
TEST_P(KdlKinematics, MassOfAllThatMoves) {
    std::mt19937_64 generator(kSeed);
    m_Model.setRandomPose(generator);
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

std::string modelName(const testing::TestParamInfo<std::string>& info) {
    const std::string stem = info.param.substr(info.param.find_last_of('/') + 1);
    return stem.substr(0, stem.find('.'));
}

INSTANTIATE_TEST_SUITE_P(Models, KdlKinematics, testing::ValuesIn(NqKdlModel::files()), modelName);

} // namespace
