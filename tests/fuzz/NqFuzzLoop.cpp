#include "NqFuzzTarget.h"

#include "support/NqNamedRobot.h"
#include "support/NqStepCheck.h"

namespace {

void step(NqControlLoop& loop, unsigned steps) {
    for (unsigned i = 0; i < steps; ++i) {
        const std::vector<double> before = loop.positions();
        const std::string fault = nqFaultOf(loop, loop.step(), before, {}, 1.0e-9);
        nqHolds(fault.empty(), ("no fault: " + fault).c_str());
    }
}

NqControlTarget targetOf(NqFuzzInput& input, bool isSane, std::size_t entries) {
    const auto make = [&] {
        switch (input.below(5)) {
        case 0:
            return NqControlTarget::place(input.vector(isSane));
        case 1:
            return NqControlTarget::orientation(input.turn(isSane));
        case 2:
            return NqControlTarget::frame(input.frame(isSane));
        case 3:
            return NqControlTarget::number(input.number(isSane));
        default:
            return NqControlTarget::values(input.numbers(entries, isSane));
        }
    };
    NqControlTarget target = make();
    if (input.flag()) {
        target.withVelocity(input.numbers(entries, isSane));
    }
    return input.flag() ? target.inSystem() : target;
}

void addEndEffector(NqControlLoop& loop, NqFuzzInput& input) {
    const unsigned which = input.below(nqNamedEndEffectors().size());
    const std::unique_ptr<NqEndEffector> endEffector(
        dynamic_cast<NqEndEffector*>(nqNamedEndEffectors()[which]->clone()));
    NqEndEffectorRelativeLinkData relative;
    relative.setRelativeMode(static_cast<NqEndEffectorRelativeLinkData::RelativeMode>(input.below(3)));
    relative.setRelativeLinkID("table");
    endEffector->setRelativeLinkData(relative);
    endEffector->setIsHardConstraint(input.flag());
    const std::string name = std::to_string(input.below(6));
    const bool isTaken = loop.find(name) != loop.endEffectors();
    nqHolds(loop.addEndEffector(name, *endEffector, input.flag()) != isTaken, "a name is taken once");
    nqHolds(!isTaken || loop.removeEndEffector(name), "what is there can be taken out");
}

void setTarget(NqControlLoop& loop, NqFuzzInput& input, bool isSane) {
    const std::size_t e = loop.find(std::to_string(input.below(6)));
    if (e == loop.endEffectors()) {
        return;
    }
    const NqEndEffectorPlacement before = loop.target(e);
    const NqControlTarget target = targetOf(input, isSane, loop.endEffector(e).doc());
    if (!loop.setTarget(e, target)) {
        const bool isNumber = before == before; // where the arm is may be no place at all
        nqHolds(nqLinesPrinted() > 0 && (loop.target(e) == before || !isNumber),
                "a refused target leaves the one before");
    }
}

} // namespace

/// Calls of a loop in any order, with any end-effectors, targets and states.
void nqFuzzLoop(NqFuzzInput& input) {
    const NqIndividualManipulator& robot = nqNamedRobot();
    const unsigned joints = robot.numberOfJoints();
    const bool isSane = input.flag();
    NqControlLoop loop(robot);
    for (unsigned call = 0; call < 24 && !input.isEmpty(); ++call) {
        switch (input.below(8)) {
        case 0:
            addEndEffector(loop, input);
            break;
        case 1:
            setTarget(loop, input, isSane);
            break;
        case 2:
            loop.setPositions(input.numbers(input.below(8) == 0 ? input.below(20) : joints, isSane));
            break;
        case 3: {
            const NqPositionState position(NqXmlRealVector(input.numbers(joints, isSane)));
            loop.setState(position, NqVelocityState(NqXmlRealVector(input.numbers(joints, isSane))));
            break;
        }
        case 4: {
            NqControlLoopSettings settings = loop.settings();
            settings.setTimeStep(isSane ? 0.001 * (1 + input.below(20)) : input.any());
            settings.setPosture(NqXmlRealVector(input.numbers(input.flag() ? joints : 0, isSane)));
            settings.setIsBaseFixed(input.flag());
            settings.setBlocked(static_cast<NqControlLoopSettings::Blocked>(input.below(2)));
            settings.setDamping(isSane ? input.positive() : input.any());
            settings.setSingularityThreshold(isSane ? input.positive() : input.any());
            loop.setSettings(settings);
            break;
        }
        case 5:
            nqHolds(loop.goTo(input.numbers(joints, isSane)) || nqLinesPrinted() > 0,
                    "a refused posture is reported");
            break;
        case 6:
            loop.follow();
            break;
        default:
            step(loop, 1 + input.below(8));
        }
    }
    step(loop, 4);
    loop.condition();
}

/// A document of settings, then some steps with them: where nothing fatal is found in them each step is made.
void nqFuzzSettings(NqFuzzInput& input) {
    NqControlLoopSettings settings;
    nqReadAndCheck(input.rest(), settings);
    if (settings == NqControlLoopSettings()) {
        return; // those of a refused document; the other targets and tests have these
    }
    NqControlLoop loop(nqNamedRobot(), settings);
    for (const auto& sample : {nqNamedEndEffectors()[0], nqNamedEndEffectors()[3]}) {
        const std::unique_ptr<NqEndEffector> endEffector(dynamic_cast<NqEndEffector*>(sample->clone()));
        endEffector->setRelativeLinkData({});
        loop.addEndEffector(std::string(sample->token().localName()), *endEffector);
    }
    loop.setTarget(0, NqControlTarget::place({0.3, 0.4, 0.9}));
    const auto issues = loop.validate();
    const bool isRefused = std::ranges::any_of(issues, [](const auto& issue) { return issue.isFatal; });
    step(loop, 8);
    nqHolds(!isRefused || loop.status().kind == NqControlLoopStatus::BadInput,
            "what is refused makes no step");
}
