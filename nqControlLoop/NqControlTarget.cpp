#include <nqControlLoop/NqControlTarget.h>

#include <nqControlLoop/NqTargetKind.h>

#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <algorithm>
#include <cmath>

namespace {

bool isFinite(const NqVector& vector) {
    return std::isfinite(vector.x()) && std::isfinite(vector.y()) && std::isfinite(vector.z());
}

bool areFinite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

bool isFinite(const NqOrientation& orientation) {
    double q[4];
    orientation.getQuaternion(q[0], q[1], q[2], q[3]);
    return std::isfinite(q[0] + q[1] + q[2] + q[3]);
}

} // namespace

NqControlTarget NqControlTarget::place(const NqVector& place) {
    NqControlTarget target;
    target.m_Place = place;
    return target;
}

NqControlTarget NqControlTarget::orientation(const NqOrientation& orientation) {
    NqControlTarget target;
    target.m_Orientation = orientation;
    return target;
}

NqControlTarget NqControlTarget::frame(const NqCoordinateSystemTransformation& frame) {
    NqControlTarget target;
    target.m_Place = frame.translation();
    target.m_Orientation = frame.orientation();
    return target;
}

NqControlTarget NqControlTarget::number(double number) {
    NqControlTarget target;
    target.m_Number = number;
    return target;
}

NqControlTarget NqControlTarget::values(const std::vector<double>& values) {
    NqControlTarget target;
    target.m_Values = values;
    return target;
}

std::string NqControlTarget::objection(const NqTargetKind& kind, std::size_t rows) const {
    if ((m_Place && !isFinite(*m_Place)) || (m_Orientation && !isFinite(*m_Orientation)) ||
        (m_Number && !std::isfinite(*m_Number)) || !areFinite(m_Values) || !areFinite(m_Velocity)) {
        return "is not finite";
    }
    const NqTargetForm& form = kind.form();
    const bool isGeometry = m_Place || m_Orientation;
    bool suits = (!m_Place || form.hasPlace()) && (!m_Orientation || form.hasOrientation());
    switch (form.content) {
    case NqTargetForm::Number:
        suits = suits && m_Number && m_Values.empty();
        break;
    case NqTargetForm::Values:
        suits = suits && m_Values.size() >= kind.values() && !m_Values.empty() && !m_Number;
        break;
    default:
        suits = suits && isGeometry && !m_Number && m_Values.empty();
        break;
    }
    if (!suits) {
        return "needs " + std::string(form.syntax);
    }
    if (m_Number && (*m_Number < kind.leastNumber() || *m_Number > kind.greatestNumber())) {
        return "cannot be " + NqDOUBLE2STRING(*m_Number) + ": it lies between " +
               NqDOUBLE2STRING(kind.leastNumber()) + " and " + NqDOUBLE2STRING(kind.greatestNumber());
    }
    if (!m_Velocity.empty() && m_Velocity.size() != rows) {
        return "has a velocity of " + std::to_string(m_Velocity.size()) + " entries for " +
               std::to_string(rows) + " rows";
    }
    return {};
}

void NqControlTarget::apply(NqEndEffectorPlacement& placement) const {
    NqCoordinateSystemTransformation& frame = placement.coordSysXForm();
    if (m_Place) {
        frame.setTranslation(*m_Place);
    }
    if (m_Orientation) {
        frame.setOrientation(*m_Orientation);
    }
    if (m_Number) {
        frame.setTranslationZ(*m_Number);
    }
    if (!m_Values.empty()) {
        placement.dataVector() = m_Values;
    }
}
