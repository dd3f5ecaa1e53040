#include "NqDriveCsv.h"

#include <nqControlCore/foundation/text/NqTextConversion.h>

namespace {

/// A column name: quoted where it needs to be.
std::string named(const std::string& name, const std::string& quantity) {
    const std::string whole = name + "." + quantity;
    if (whole.find_first_of(",\"\r\n") == std::string::npos) {
        return whole;
    }
    std::string quoted = "\"";
    for (const char c : whole) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + "\"";
}

} // namespace

std::string NqDriveCsv::text() const {
    std::string out = "time,wayPoint,determinant,slowing";
    const auto column = [&](const std::string& name, const std::string& quantity) {
        out.append(1, ',').append(named(name, quantity));
    };
    for (const auto& joint : m_Record.joints) {
        column(joint.description.name(), "position");
    }
    for (const auto& joint : m_Record.joints) {
        column(joint.description.name(), "rate");
    }
    for (const auto& endEffector : m_Record.endEffectors) {
        for (const char* quantity : {"x", "y", "z", "error", "speed"}) {
            column(endEffector.name, quantity);
        }
    }
    out += "\n";
    const auto append = [&](double value) { out.append(1, ',').append(NqDOUBLE2STRING(value)); };
    for (std::size_t row = 0; row < m_Recorder.rows(); ++row) {
        out += NqDOUBLE2STRING(m_Recorder.time(row));
        append(m_Recorder.wayPoint(row));
        append(m_Recorder.determinant(row));
        append(m_Recorder.slowing(row));
        for (std::size_t joint = 0; joint < m_Recorder.joints(); ++joint) {
            append(m_Recorder.position(row, joint));
        }
        for (std::size_t joint = 0; joint < m_Recorder.joints(); ++joint) {
            append(m_Recorder.rate(row, joint));
        }
        for (std::size_t e = 0; e < m_Recorder.endEffectors(); ++e) {
            const NqVector point = m_Recorder.point(row, e);
            for (const double value :
                 {point.x(), point.y(), point.z(), m_Recorder.error(row, e), m_Recorder.speed(row, e)}) {
                append(value);
            }
        }
        out += "\n";
    }
    return out;
}
