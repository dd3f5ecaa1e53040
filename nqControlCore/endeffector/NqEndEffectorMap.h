#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/xml/NqXmlVariableMapType.h>

/// End-effectors of any type by a key that the owner chooses, owned by value.
class NqEndEffectorMap
    : public NqXmlConcrete<NqEndEffectorMap,
                           NqXmlVariableMapType<NqXmlBasicType<std::string>, NqEndEffector>> {
public:
    static const NqToken& classToken();

    void registerComponentCreators() override;

    /// Sets the relative link of one end-effector. False for a key that is not there.
    virtual bool setRelativeLinkData(const NqXmlBasicType<std::string>& key,
                                     NqEndEffectorRelativeLinkData data);

    /// A new end-effector of the class with that element name, owned by the caller; null if there is none.
    virtual NqEndEffector* endEffectorFromToken(const NqToken& token);
};
