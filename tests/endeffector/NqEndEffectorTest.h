#pragma once

#include "matrix/NqArrayTesting.h"

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

/// A manipulator in a state, and what end-effectors give there. What an operation leaves of a list shows if
/// it is handed over; else the list is new, but for errors, which are to replace all that is in theirs.
class NqEndEffectorTest : public testing::Test {
protected:
    using Reals = NqXmlRealVector;
    using Labels = NqLabelVector;
    using Placement = NqEndEffectorPlacement;
    using Pose = NqCoordinateSystemTransformation;
    using Row = std::vector<double>;
    using Relative = NqEndEffectorRelativeLinkData;
    using Sparsity = NqEndEffector::SparsityDescription;

    /// With all joints at 0.
    explicit NqEndEffectorTest(std::shared_ptr<const NqIndividualManipulator> on)
        : m_Manipulator(std::move(on)) {}
    /// In a state at random.
    NqEndEffectorTest(const NqTestModel& model, unsigned seed)
        : m_Manipulator(model.manipulator), random(seed) {
        state = nqRandomState(model, random);
    }

    void setJoints(const Reals& positions, const Reals& rates = {}) {
        state.setPositionState(NqPositionState(positions));
        if (!rates.empty()) {
            state.setVelocityState(NqVelocityState(rates));
        }
    }

    Placement placement(const NqEndEffector& e, Placement before = {}) {
        e.calculatePlacement(manipulator, state, before);
        return before;
    }
    /// The number that is kept in the placement.
    double number(const NqEndEffector& e) { return placement(e).coordSysXForm().translation().z(); }
    static Placement at(double number) { return Placement(NqVector::zVector(number)); }

    NqReArray rows(const NqEndEffector& e, const Relative& relative = {}, bool fixedBase = true) {
        NqReArray j;
        e.insertJacobianComponent(manipulator, 0, relative, fixedBase, state, j);
        return j;
    }
    Sparsity bits(const NqEndEffector& e, const Relative& relative = {}, bool fixedBase = true) {
        Sparsity result;
        e.insertSparsityComponent(manipulator, 0, relative, fixedBase, result);
        return result;
    }
    Reals velocity(const NqEndEffector& e, Reals before = {}, unsigned start = 0) {
        e.calculateVelocity(manipulator, state, before, start);
        return before;
    }
    Reals acceleration(const NqEndEffector& e, Reals before = {}, unsigned start = 0) {
        e.calculateAcceleration(manipulator, state, before, start);
        return before;
    }
    Reals error(const NqEndEffector& e, const Placement& target) {
        Reals error(9, 7.0);
        e.calculateEndEffectorError(manipulator, target, state, error);
        return error;
    }
    /// What is commanded towards a target.
    Reals filtered(const NqEndEffector& e, const Placement& target, const Reals& desired = {},
                   const Reals& previous = {}, double timeStep = 0.01, Reals before = {}) {
        e.filterEndEffectorVelocity(manipulator, target, desired, previous, timeStep, state, before);
        return before;
    }
    /// What is left of a velocity.
    static Reals limited(const NqEndEffector& e, const Reals& desired, const Reals& previous = {},
                         double timeStep = 0.1, Reals before = {}) {
        e.filterEndEffectorVelocity(desired, previous, timeStep, before);
        return before;
    }

    static Relative internalTo(const std::string& link) {
        Relative relative;
        relative.setRelativeMode(Relative::relativeModeInternal);
        relative.setRelativeLinkID(link);
        return relative;
    }

    /// What is shown of an editable value after it was set in a list that is too long.
    static std::string edited(NqEndEffector& e, unsigned index, const std::string& text) {
        Labels values = e.editableValues();
        values[index] = text;
        values.pushBack(std::string("more"));
        e.setEditableValues(values);
        return e.editableValues()[index].value();
    }

    /// That bits are set wherever there is something in a Jacobian.
    static void expectCovers(const Sparsity& set, const NqReArray& jacobian) {
        ASSERT_EQ(set.size(), jacobian.rows());
        for (unsigned r = 0; r < set.size(); ++r) {
            ASSERT_EQ(set[r].size(), jacobian[r].size());
            for (unsigned c = 0; c < set[r].size(); ++c) {
                EXPECT_TRUE(set[r][c] || jacobian[r][c] == 0.0) << "row " << r << ", column " << c;
            }
        }
    }
    static void expectNear(const Reals& actual, const Row& expected, double tolerance = 1e-12) {
        ASSERT_EQ(actual.size(), expected.size());
        for (unsigned i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(actual[i], expected[i], tolerance) << "entry " << i;
        }
    }
    static void expectNear(const NqVector& actual, const NqVector& expected, double tolerance = 1e-14) {
        EXPECT_LT((actual - expected).mag(), tolerance)
            << actual.x() << " " << actual.y() << " " << actual.z();
    }

private:
    std::shared_ptr<const NqIndividualManipulator> m_Manipulator;

protected:
    const NqIndividualManipulator& manipulator = *m_Manipulator;
    std::mt19937_64 random;
    NqManipulatorActiveState state{manipulator};
};
