#pragma once

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlEnumType.h>
#include <nqControlCore/foundation/xml/NqXmlPersistent.h>
#include <nqControlCore/xml/NqControlCoreTokens.h>

/// In which frame an end-effector's placement is meant: the system frame, or the primary frame of another
/// link.
class NqEndEffectorRelativeLinkData
    : public NqXmlPersistent<NqEndEffectorRelativeLinkData, NqXmlCompoundType> {
public:
    enum RelativeMode : unsigned int {
        relativeModeNone = 0,     ///< the system frame
        relativeModeInternal = 1, ///< a link of the same manipulator, whose joints count in the Jacobian
        relativeModeExternal = 2  ///< a link of the manipulator with index relativeManipulatorIndex()
    };

    static const NqToken& classToken();

    NqEndEffectorRelativeLinkData() = default;
    NqEndEffectorRelativeLinkData(const NqEndEffectorRelativeLinkData&) = default;

    /// Takes mode, link and manipulator; the flag of old files stays.
    NqEndEffectorRelativeLinkData& operator=(const NqEndEffectorRelativeLinkData& other);

    bool xmlInit() override;

    /// A file that has no mode, but the flag that stood for it in old files, reads as internal mode.
    bool read(NqXmlReader& reader) override;

    virtual RelativeMode relativeMode() const { return static_cast<RelativeMode>(m_RelativeMode.value()); }
    virtual void setRelativeMode(RelativeMode mode) { m_RelativeMode = mode; }

    /// Label of the link that the placement is relative to.
    virtual const std::string& relativeLinkID() const { return m_RelativeLinkID; }
    virtual void setRelativeLinkID(const std::string& label) { m_RelativeLinkID = label; }

    virtual unsigned int relativeManipulatorIndex() const { return m_RelativeManipulatorIndex; }
    virtual void setRelativeManipulatorIndex(unsigned int index) { m_RelativeManipulatorIndex = index; }

    static NqEndEffectorRelativeLinkData nullObject() { return referenceObject(); }

    /// The one default-constructed object that nullObject() copies.
    static const NqEndEffectorRelativeLinkData& referenceObject();

protected:
    virtual void registerRelativeModeEnumerations();

private:
    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using Data = NqEndEffectorRelativeLinkData;
        return nqComponentList(
            nqComponent(NqRelativeModeToken, &Data::m_RelativeMode),
            nqComponent(NqRelativeLinkIdToken, &Data::m_RelativeLinkID),
            nqComponent(NqManipulatorIndexToken, &Data::m_RelativeManipulatorIndex),
            nqComponent(NqIsRelativeLinkToken, &Data::m_IsRelativeLink, NqXmlComponentKind::Legacy));
    }

    NqXmlEnumType<unsigned int> m_RelativeMode = relativeModeNone;
    NqXmlBasicType<std::string> m_RelativeLinkID;
    NqXmlBasicType<unsigned int> m_RelativeManipulatorIndex = 0u;
    NqXmlBasicType<bool> m_IsRelativeLink = false;
};
