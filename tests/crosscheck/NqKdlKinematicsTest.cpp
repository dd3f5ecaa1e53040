#include <crosscheck/NqKdlModel.h>

#include <nqControlCore/endeffector/NqPointEndEffector.h>

#include <gtest/gtest.h>

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

TEST_P(KdlKinematics, JacobianOfAPointOnEachLink) {
    NqPointEndEffector endEffector;
    endEffector.setPoint({0.1, -0.2, 0.3});
    NqReArray rows;
    expectAgreement("Jacobian", [&](const std::string& label) {
        endEffector.setLinkIdentifier(label);
        endEffector.insertJacobianComponent(m_Model.manipulator(), 0, {}, true, m_Model.state(), rows);
        const std::vector<NqGeneralMotion> reference = m_Model.jacobian(label, endEffector.point());
        double largest = 0.0;
        for (unsigned j = 0; j < reference.size(); ++j) {
            const NqVector column(rows[0][j], rows[1][j], rows[2][j]);
            const double scale = std::max(1.0, reference[j].linear().mag());
            largest = std::max(largest, (column - reference[j].linear()).mag() / scale);
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
