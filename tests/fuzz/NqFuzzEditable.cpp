#include "NqFuzzTarget.h"

#include "support/NqNamedRobot.h"

#include <nqControlCore/foundation/manipulator/NqManipulatorActiveState.h>
#include <nqControlCore/foundation/text/NqTextConversion.h>
#include <nqControlCore/foundation/xml/NqXmlDocument.h>

#include <memory>

namespace {

std::string textOf(const NqXmlObject& object) {
    std::string text;
    return NqXmlDocument::writeString(text, object) ? text : std::string();
}

/// Whether two lists show the same; the angle and the axis of an orientation may differ by rounding.
bool showSame(const NqLabelVector& one, const NqLabelVector& other) {
    return std::ranges::equal(one, other, [](const auto& a, const auto& b) {
        const double x = NqSTRING2DOUBLE(a), y = NqSTRING2DOUBLE(b);
        return a == b || std::fabs(x - y) <= 1.0e-15 * (1.0 + std::fabs(x));
    });
}

/// All that a control step asks, with results of the sizes that are promised.
void step(const NqEndEffector& endEffector, bool isBaseFixed, NqFuzzInput& input) {
    const NqIndividualManipulator& robot = nqNamedRobot();
    const unsigned joints = robot.numberOfJoints();
    const unsigned columns = joints + (isBaseFixed ? 0 : NqEndEffector::m_theBaseDof);
    NqManipulatorActiveState state(robot);
    state.setPositionState(NqPositionState(NqXmlRealVector(input.numbers(joints, true))));
    state.setVelocityState(NqVelocityState(NqXmlRealVector(input.numbers(joints, true))));

    NqEndEffectorPlacement placement;
    endEffector.calculatePlacement(robot, state, placement);
    const unsigned rows = endEffector.doc();
    NqReArray jacobian;
    NqEndEffector::SparsityDescription bits;
    const NqEndEffectorRelativeLinkData& relative = endEffector.relativeLinkData();
    endEffector.insertJacobianComponent(robot, 1, relative, isBaseFixed, state, jacobian);
    endEffector.insertSparsityComponent(robot, 1, relative, isBaseFixed, bits);
    nqHolds(jacobian.size() == rows + 1 && bits.size() == rows + 1, "there are as many rows as are promised");
    for (unsigned i = 1; i <= rows; ++i) {
        nqHolds(jacobian[i].size() == columns && bits[i].size() == columns,
                "rows are as wide as they are to be");
        for (unsigned j = 0; j < columns; ++j) {
            const double element = jacobian[i][j];
            nqHolds(bits[i][j] || element == 0.0 || !std::isfinite(element), "no element lacks its bit");
        }
    }
    NqReArray weights;
    endEffector.insertErrorWeightComponent(0, weights);
    NqXmlRealVector result;
    endEffector.calculateVelocity(robot, state, result, 2);
    nqHolds(result.size() >= 2 && result.size() <= rows + 2U, "a velocity has its place"); // links may lack
    endEffector.calculateAcceleration(robot, state, result, 0);
    endEffector.calculateEndEffectorError(robot, placement, state, result);
    const NqXmlRealVector desired(input.numbers(rows, true)), previous(input.numbers(rows, true));
    NqXmlRealVector filtered(rows);
    endEffector.filterEndEffectorVelocity(desired, previous, 0.01, filtered);
    endEffector.filterEndEffectorVelocity(robot, placement, desired, previous, 0.01, state, filtered);
    nqHolds(filtered.size() <= rows, "a command has its size");
    bool isWeighed = true;
    for (unsigned i = 0; i < weights.size(); ++i) {
        isWeighed = isWeighed && std::ranges::none_of(weights[i], [](double w) { return w < 0.0; });
    }
    nqHolds(!isWeighed || !(endEffector.difference(placement, placement) < 0.0), "no difference is negative");
}

} // namespace

/// Any texts as editable values of any type, then a control step.
void nqFuzzEditable(NqFuzzInput& input) {
    const NqEndEffectorVector& all = nqNamedEndEffectors();
    const std::unique_ptr<NqEndEffector> endEffector(
        dynamic_cast<NqEndEffector*>(all[input.below(all.size())]->clone()));
    const bool isBaseFixed = input.flag();
    const std::size_t count = endEffector->editingLabels().size();
    nqHolds(endEffector->editableValues().size() == count && endEffector->tooltipLabels().size() == count,
            "each value has its label and its tooltip");
    NqLabelVector values;
    for (unsigned i = input.below(2 * count + 1); i > 0; --i) {
        values.pushBack(input.line());
    }
    if (input.flag()) { // as many as there are to be
        values.resize(static_cast<unsigned>(count));
    }
    const std::string before = values.size() < count ? textOf(*endEffector) : "";
    endEffector->setEditableValues(values);
    nqHolds(values.size() >= count || textOf(*endEffector) == before, "a list that is too short is ignored");
    const NqLabelVector shown = endEffector->editableValues();
    endEffector->setEditableValues(shown);
    nqHolds(showSame(endEffector->editableValues(), shown), "what is shown sets the same");
    const std::string text = textOf(*endEffector);
    if (!text.empty()) { // no label holds what XML can't; reading may complete lists
        NqXmlDocument::readString(text, *endEffector);
        nqWrittenAndReadBack(*endEffector);
    }
    step(*endEffector, isBaseFixed, input);
}
