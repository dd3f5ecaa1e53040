#pragma once

#include <nqControlCore/endeffector/NqFrameEndEffector.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>
#include <nqControlCore/xml/NqXmlMapType.h>

#include <array>

/// A frame end-effector whose limits depend on the direction of its way: a limit for each of the directions
/// +X, -X, +Y, -Y, +Z and -Z of a reference frame, for each of six quantities.
///
/// In every step with a target, the limits are scaled to the direction u of the way to it, and for turning to
/// that of the axis, and put into the motion filter, which does the rest. With (x, y, z) the unit vector u in
/// the reference frame, the limit is the length of
///
///     (x limit(+-X), y limit(+-Y), z limit(+-Z))
///
/// with that of the two directions that has the sign of the component. Along an axis it is exactly that
/// direction's limit. Where there is no way to go, u is the x axis of the system.
///
/// The reference frame is the primary frame of referenceLinkLabel(), or the system frame where that link is
/// not found, turned by referenceOffset(). Everything else is the frame end-effector's.
///
/// What is set in the motion filter lasts until the next such step. The filter without a target works with
/// the limits of the last one.
class NqDirectionalFrameEndEffector
    : public NqConcreteEndEffector<NqDirectionalFrameEndEffector, NqFrameEndEffector,
                                   NqEditableLength::AtLeast> {
public:
    enum ThresholdType : unsigned int {
        LinearVelocity,
        AngularVelocity,
        LinearAcceleration,
        AngularAcceleration,
        LinearDeceleration,
        AngularDeceleration
    };
    static constexpr unsigned m_theNumberOfThresholdTypes = 6;

    /// Limits by direction, which the key is: +X, -X, +Y, -Y, +Z, -Z from 0 on. Other keys are ignored.
    using ThresholdMap = NqXmlMapType<NqXmlBasicType<unsigned short>, NqXmlBasicType<double>>;
    static constexpr unsigned m_theNumberOfDirections = 6;

    NqDirectionalFrameEndEffector();

    static const NqToken& classToken() { return NqControlCore::NqDirectionalFrameEndEffectorToken; }
    static const NqEditableValueTable<NqDirectionalFrameEndEffector>& editableTable();

    /// The limits in force are made anew, also where the read fails. Of default limits or maps fewer than
    /// six, the missing ones are 1 and empty.
    bool read(NqXmlReader& reader) override;

    /// Registers the fields of all classes in an order of its own: the motion filter, whose limits each step
    /// takes from the other fields, stands behind them.
    void registerComponents() override;

    void filterFrameEndEffectorVelocity(const NqIndividualManipulator& manipulator,
                                        const NqEndEffectorPlacement& desiredPlacement,
                                        const NqGeneralMotion& desiredVelocity,
                                        const NqGeneralMotion& previousVelocity, double timeStep,
                                        NqManipulatorActiveState& state,
                                        NqGeneralMotion& filtered) const override;

    /// The difference over the default limit of linear velocity; directions and speed factor play no part.
    double minimumTime(const NqEndEffectorPlacement& from, const NqEndEffectorPlacement& to) const override;

    /// The default limits of linear velocity and linear acceleration; see setDefaultThreshold().
    double motionThreshold() const override { return defaultThreshold(LinearVelocity); }
    void setMotionThreshold(double threshold) override { setDefaultThreshold(LinearVelocity, threshold); }
    double accelerationThreshold() const override { return defaultThreshold(LinearAcceleration); }
    void setAccelerationThreshold(double threshold) override {
        setDefaultThreshold(LinearAcceleration, threshold);
    }

    /// Label of the link of the reference frame; empty for the system frame.
    virtual const std::string& referenceLinkLabel() const { return m_ReferenceLinkLabel; }
    virtual void setReferenceLinkLabel(const std::string& label) { m_ReferenceLinkLabel = label; }

    /// The reference frame's orientation in the primary frame of its link, or in the system.
    virtual const NqOrientation& referenceOffset() const { return m_ReferenceOffset.value(); }
    virtual void setReferenceOffset(const NqOrientation& offset) { m_ReferenceOffset = offset; }

    /// The limit of directions that have none of their own: m/s, rad/s and so on. A new one comes into force
    /// only with the next read, list of editable values or map of its type.
    virtual double defaultThreshold(ThresholdType type) const { return m_DefaultThresholds[type]; }
    virtual void setDefaultThreshold(ThresholdType type, double threshold) {
        m_DefaultThresholds[type] = threshold;
    }

    /// The limits of directions of a type. New ones are in force at once, with the type's default.
    virtual const ThresholdMap& directionalThresholdMap(ThresholdType type) const {
        return m_ThresholdMaps[type];
    }
    virtual void setDirectionalThresholdMap(ThresholdType type, const ThresholdMap& map);

protected:
    /// Makes the limits in force anew.
    void setThresholdsFromMaps();

private:
    using Directional = std::array<double, m_theNumberOfDirections>;

    friend struct NqXmlComponentAccess;
    static auto components() {
        using namespace NqControlCore;
        using E = NqDirectionalFrameEndEffector;
        return nqComponentList(nqComponent(NqReferenceLinkToken, &E::m_ReferenceLinkLabel),
                               nqComponent(NqOffsetToken, &E::m_ReferenceOffset),
                               nqComponent(NqDefaultThresholdsToken, &E::m_DefaultThresholds),
                               nqComponent(NqThresholdMapsToken, &E::m_ThresholdMaps));
    }

    void setThresholdsFromMap(ThresholdType type);

    /// The limit in a direction, a unit vector in the reference frame.
    double scale(const NqVector& direction, ThresholdType type) const;

    NqOrientation referenceOrientation(const NqIndividualManipulator& manipulator,
                                       NqManipulatorActiveState& state) const;

    /// The map of a type as a text: the limits of the six directions between commas, nothing where there is
    /// none. An empty map is an empty text. What is no number is left out.
    std::string mapText(ThresholdType type) const;
    void setMapText(ThresholdType type, const std::string& text);

    NqXmlBasicType<std::string> m_ReferenceLinkLabel;
    NqXmlOrientation m_ReferenceOffset;
    NqXmlRealVector m_DefaultThresholds = NqXmlRealVector(m_theNumberOfThresholdTypes, 1.0);
    NqXmlVectorType<ThresholdMap> m_ThresholdMaps =
        NqXmlVectorType<ThresholdMap>(m_theNumberOfThresholdTypes);

    /// The limits in force, by type.
    std::array<Directional, m_theNumberOfThresholdTypes> m_DirectionalThresholds{};
};
