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
        for (const std::string_view quantity : endEffector.kind.columns()) {
            column(endEffector.name, std::string(quantity));
        }
    }
    for (const auto& part : m_Record.parts) {
        const std::string& name = m_Record.endEffectors[part.endEffector].name;
        for (const char* quantity : {"error", "speed", "acceleration"}) {
            column(name, part.limits.isAngular ? "angular." + std::string(quantity) : quantity);
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
            for (const double number : m_Record.endEffectors[e].kind.numbers(m_Recorder.placement(row, e))) {
                append(number);
            }
        }
        for (std::size_t p = 0; p < m_Record.parts.size(); ++p) {
            append(m_Recorder.error(row, p));
            append(m_Recorder.speed(row, p));
            append(m_Recorder.acceleration(row, p));
        }
        out += "\n";
    }
    return out;
}
