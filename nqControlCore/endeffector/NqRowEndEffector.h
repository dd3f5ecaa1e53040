#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/endeffector/NqErrorWeights.h>
#include <nqControlCore/endeffector/NqJacobianRows.h>
#include <nqControlCore/endeffector/NqSparsityBits.h>
#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>

/// The layer between an end-effector class and its base that right-sizes the rows before the class fills
/// them. Derived offers
///
///     void insertRows(const NqRowRequest&, NqManipulatorActiveState&, NqReArray& jacobian) const
///     void insertBits(const NqRowRequest&, SparsityDescription& sparsity) const
///     errorWeight(), the weight of each row, or else rowWeight(i)
///     static constexpr const char* theTooltip, the one line that tells of the class
///
template <typename Derived, typename Base>
class NqRowEndEffector : public Base {
public:
    using SparsityDescription = typename Base::SparsityDescription;

    NqRowEndEffector() {
        static const auto theDescription = Derived::editableTable().description(Derived::theTooltip);
        this->describe(theDescription);
    }

    void insertJacobianComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 NqManipulatorActiveState& state, NqReArray& jacobian) const override {
        const NqRowRequest request{manipulator, row, relativeLink, fixedBase};
        this->rightSizeJacobian(row, request.width(), jacobian);
        self().insertRows(request, state, jacobian);
    }

    void insertSparsityComponent(const NqIndividualManipulator& manipulator, unsigned row,
                                 const NqEndEffectorRelativeLinkData& relativeLink, bool fixedBase,
                                 SparsityDescription& sparsity) const override {
        const NqRowRequest request{manipulator, row, relativeLink, fixedBase};
        this->rightSizeSparsity(request, sparsity);
        self().insertBits(request, sparsity);
    }

    void insertErrorWeightComponent(unsigned row, NqReArray& weights) const override {
        NqErrorWeights::insert(row, this->doc(), weights, [&](unsigned i) { return self().rowWeight(i); });
    }

    /// The weight of the i-th row.
    double rowWeight(unsigned) const { return self().errorWeight(); }

private:
    const Derived& self() const { return static_cast<const Derived&>(*this); }
};
