#include <nqControlCore/endeffector/NqEndEffectorTypes.h>

#include <nqControlCore/xml/NqXmlBaseVariableCompoundType.h>

#include <memory>

void nqRegisterEndEffectorTypes(NqXmlBaseVariableCompoundType& container) {
    NqEndEffectorTypes::forEach([&]<typename EndEffector>() {
        container.registerComponentCreator(EndEffector::classToken(), &EndEffector::creator);
    });
}

NqEndEffector* nqEndEffectorFromToken(const NqXmlBaseVariableCompoundType& container, const NqToken& token) {
    std::unique_ptr<NqXmlObject> object(container.newObjectFromToken(token));
    auto* endEffector = dynamic_cast<NqEndEffector*>(object.get());
    if (endEffector) {
        object.release();
    }
    return endEffector;
}
