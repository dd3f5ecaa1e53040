#include "NqFuzzTarget.h"
#include "filter/NqFilterTesting.h"

#include <nqControlCore/core/NqControlParameters.h>
#include <nqControlCore/core/NqCoreResult.h>
#include <nqControlCore/core/NqManipulatorEndEffectorAcceleration.h>
#include <nqControlCore/core/NqManipulatorEndEffectorForce.h>
#include <nqControlCore/core/NqManipulatorEndEffectorVelocity.h>
#include <nqControlCore/endeffector/NqEndEffectorMap.h>
#include <nqControlCore/endeffector/NqEndEffectorTypes.h>
#include <nqControlCore/endeffector/NqEndEffectorVector.h>
#include <nqControlCore/foundation/manipulator/NqAccelerationState.h>
#include <nqControlCore/foundation/manipulator/NqPositionState.h>
#include <nqControlCore/foundation/manipulator/NqVelocityState.h>
#include <nqControlCore/xml/NqXmlMapType.h>
#include <nqControlCore/xml/NqXmlSetType.h>
#include <nqControlLoop/NqControlLoopSettings.h>

namespace {

using Text = NqXmlBasicType<std::string>;

/// An object of each persistent class and of each kind of collection.
const std::vector<std::unique_ptr<NqXmlObject>>& prototypes() {
    static const std::vector<std::unique_ptr<NqXmlObject>> thePrototypes = [] {
        std::vector<std::unique_ptr<NqXmlObject>> all;
        NqEndEffectorTypes::forEach([&]<typename T>() { all.push_back(std::make_unique<T>()); });
        NqTypeList<NqEndEffectorVector, NqEndEffectorMap, NqControlLoopSettings,
                   NqEndEffectorRelativeLinkData, NqPointMotionFilter, NqRotationMotionFilter,
                   NqGeneralMotionFilter, NqScalarMotionFilter, NqGeneralMotionAccFilter, NqControlParameters,
                   NqCoreResult, NqManipulatorEndEffectorVelocity, NqManipulatorEndEffectorAcceleration,
                   NqManipulatorEndEffectorForce, NqPositionState, NqVelocityState, NqAccelerationState,
                   NqXmlVectorType<Text>, NqXmlVectorType<NqXmlRealVector>,
                   NqXmlVectorType<NqCoordinateSystemTransformation>, NqXmlVectorType<NqPointMotionFilter>,
                   NqXmlMapType<NqXmlBasicType<unsigned short>, NqXmlBasicType<double>>,
                   NqXmlMapType<Text, NqXmlBasicType<int>>, NqXmlSetType<Text>,
                   NqXmlSetType<NqXmlBasicType<double>>>::forEach([&]<typename T>() {
            all.push_back(std::make_unique<T>());
        });
        return all;
    }();
    return thePrototypes;
}

} // namespace

/// A document, read as each class that has the name of its first element. Elements that no class is named for
/// don't count.
void nqFuzzPersistent(NqFuzzInput& input) {
    const std::string_view text = input.rest();
    bool isKnown = false;
    for (std::size_t at = text.find('<'); at != std::string_view::npos && !isKnown;
         at = text.find('<', at + 1)) {
        for (const auto& prototype : prototypes()) {
            if (text.substr(at + 1).starts_with(prototype->token().localName())) {
                isKnown = true;
                nqReadAndCheck(text, *std::unique_ptr<NqXmlObject>(prototype->newObject()));
            }
        }
    }
}
