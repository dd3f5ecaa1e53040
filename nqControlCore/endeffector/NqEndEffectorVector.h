#pragma once

#include <nqControlCore/endeffector/NqEndEffector.h>
#include <nqControlCore/xml/NqXmlVariableVectorType.h>

/// A list of end-effectors of any type, owned by value. In a file each stands under the element name of its
/// class.
class NqEndEffectorVector
    : public NqXmlConcrete<NqEndEffectorVector, NqXmlVariableVectorType<NqEndEffector>> {
public:
    static const NqToken& classToken();

    void registerComponentCreators() override;

    /// Does nothing: a list has elements, and no components.
    virtual void registerComponents();

    /// Sets the relative link of one end-effector. False for an index past the end.
    virtual bool setRelativeLinkData(unsigned index, NqEndEffectorRelativeLinkData data);

    /// A new end-effector of the class with that element name, owned by the caller; null if there is none.
    virtual NqEndEffector* endEffectorFromToken(const NqToken& token);
};
