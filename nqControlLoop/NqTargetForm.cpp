#include <nqControlLoop/NqTargetForm.h>

#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/endeffector/NqFrameBasedEndEffector.h>
#include <nqControlCore/endeffector/NqPointBasedEndEffector.h>
#include <nqControlCore/endeffector/NqPointDistanceEndEffector.h>
#include <nqControlCore/endeffector/NqRotationBasedEndEffector.h>
#include <nqControlCore/endeffector/NqScalarBasedEndEffector.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

#include <algorithm>
#include <array>
#include <limits>
#include <numbers>

namespace {

using Form = NqTargetForm;
using Type = NqTargetType;

constexpr double kUnlimited = std::numeric_limits<double>::infinity();
constexpr double kHalfTurn = std::numbers::pi;

constexpr std::array kForms{
    Form{Form::Place, "X,Y,Z", "a place, in m"},
    Form{Form::Frame, "X,Y,Z@RX,RY,RZ",
         "a frame: the place, and behind the \"@\" its orientation as a rotation about the axis (RX,RY,RZ) "
         "by as "
         "many degrees as it is long: @0,90,0 is turned by 90 degrees about y. One of the two may be left "
         "out: it "
         "then stays as it was at the start."},
    Form{Form::Orientation, "@RX,RY,RZ", "an orientation"},
    Form{Form::Number, "NUMBER", "a distance in m, an angle in rad, a joint position or a sum of them"},
    Form{Form::Values, "Q1,Q2,...", "positions of the listed joints, in rad or m"},
    Form{Form::Nothing, "hold", "no target: what it is to meet stands in its file"},
};

struct Line {
    const NqToken& token;
    Type type;
};

/// The one table of types; what others take is guessed.
const std::vector<Line>& lines() {
    using namespace NqControlCore;
    constexpr auto number = [](std::string_view unit, double least = -kUnlimited,
                               double greatest = kUnlimited) {
        return Type{Form::Number, Type::ByPlacement, 1, 0, unit, least, greatest};
    };
    constexpr auto geometry = [](Form::Content content, Type::Measure measure, unsigned linear,
                                 unsigned angular) {
        return Type{content, measure, linear, angular, "", -kUnlimited, kUnlimited};
    };
    constexpr auto ofAllMass = [](Type type) {
        type.isOfAllMass = true;
        return type;
    };
    constexpr auto whole = Type::ByPlacement;
    constexpr auto part = Type::ByRows;
    static const std::vector<Line> table{
        {NqPointEndEffectorToken, geometry(Form::Place, whole, 3, 0)},
        {NqCenterOfMassEndEffectorToken, ofAllMass(geometry(Form::Place, whole, 3, 0))},
        {NqProjectedCenterOfMassEndEffectorToken, ofAllMass(geometry(Form::Place, part, 2, 0))},
        {NqXEndEffectorToken, geometry(Form::Place, part, 1, 0)},
        {NqXyEndEffectorToken, geometry(Form::Place, part, 2, 0)},
        {NqLookAtEndEffectorToken, geometry(Form::Place, part, 2, 0)},
        {NqRCMEndEffectorToken, geometry(Form::Place, part, 2, 0)},
        {NqFrameEndEffectorToken, geometry(Form::Frame, whole, 3, 3)},
        {NqDirectionalFrameEndEffectorToken, geometry(Form::Frame, whole, 3, 3)},
        {NqFreeSpinInZEndEffectorToken, geometry(Form::Frame, part, 3, 2)},
        {NqSlidingEndEffectorToken, geometry(Form::Frame, part, 2, 3)},
        {NqSlideXSpinZEndEffectorToken, geometry(Form::Frame, part, 2, 2)},
        {NqPlanarEndEffectorToken, geometry(Form::Frame, part, 1, 2)},
        {NqOrientationEndEffectorToken, geometry(Form::Orientation, whole, 0, 3)},
        {NqPointDistanceEndEffectorToken, number("m", NqPointDistanceEndEffector::m_theMinimumDistance)},
        {NqAxisRotateEndEffectorToken, number("rad", -0.5 * kHalfTurn, 0.5 * kHalfTurn)},
        {NqSewAngleEndEffectorToken, number("rad", -kHalfTurn, kHalfTurn)},
        {NqLinearConstraintEndEffectorToken, number("")},
        {NqOneDofGripperEndEffectorToken, number("")},
        {NqCoordinatedJointEndEffectorToken, geometry(Form::Values, whole, 0, 0)},
        {NqSagEndEffectorToken, geometry(Form::Nothing, Type::ByResidual, 0, 0)},
        {NqAccelerometerEndEffectorToken, geometry(Form::Nothing, whole, 0, 0)},
        {NqSpatialMomentumEndEffectorToken, geometry(Form::Nothing, whole, 0, 0)},
    };
    return table;
}

/// For a type without a line: what its base class says or, where that says nothing, its number of rows.
Type guessed(const NqEndEffector& endEffector) {
    const unsigned rows = endEffector.doc();
    Type type{Form::Nothing, Type::ByRows, rows, 0, "", -kUnlimited, kUnlimited};
    if (dynamic_cast<const NqPointBasedEndEffector*>(&endEffector)) {
        type.content = Form::Place;
    } else if (dynamic_cast<const NqFrameBasedEndEffector*>(&endEffector) || rows == 6) {
        type.content = Form::Frame;
        type.linearRows = std::min(rows, 3u);
        type.angularRows = rows - type.linearRows;
    } else if (dynamic_cast<const NqRotationBasedEndEffector*>(&endEffector)) {
        type.content = Form::Orientation;
        std::swap(type.linearRows, type.angularRows);
    } else if (dynamic_cast<const NqScalarBasedEndEffector*>(&endEffector) || rows == 1) {
        type.content = Form::Number;
        type.measure = Type::ByPlacement;
    } else if (rows == 3) {
        type.content = Form::Place;
    } else {
        type.content = Form::Values;
        type.measure = Type::ByPlacement;
    }
    return type;
}

} // namespace

const NqTargetForm& NqTargetForm::of(Content content) {
    return *std::find_if(kForms.begin(), kForms.end(),
                         [&](const NqTargetForm& form) { return form.content == content; });
}

std::span<const NqTargetForm> NqTargetForm::all() {
    return kForms;
}

NqTargetType NqTargetType::of(const NqEndEffector& endEffector) {
    for (const Line& line : lines()) {
        if (line.token == endEffector.token()) {
            return line.type;
        }
    }
    return guessed(endEffector);
}

std::string NqTargetType::names(NqTargetForm::Content content) {
    constexpr std::string_view ending = "EndEffector";
    std::string names;
    const auto add = [&](const NqToken& token) {
        const std::string_view name = token.localName();
        names.append(names.empty() ? "" : ", ").append(name.substr(0, name.size() - ending.size()));
    };
    for (const Line& line : lines()) {
        if (line.type.content == content) {
            add(line.token);
        }
    }
    NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
        const NqToken& token = EndEffector::classToken();
        const bool hasLine =
            std::ranges::any_of(lines(), [&](const Line& line) { return line.token == token; });
        if (!hasLine && guessed(EndEffector()).content == content) {
            add(token);
        }
    });
    return names;
}
