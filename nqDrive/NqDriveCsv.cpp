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
    std::string units = "# s,,,";
    const auto column = [&](const std::string& name, const std::string& quantity, const std::string& unit) {
        out.append(1, ',').append(named(name, quantity));
        units.append(1, ',').append(unit);
    };
    for (const auto& joint : m_Record.joints) {
        column(joint.description.name(), "position", nqPositionUnit(joint.description));
    }
    for (const auto& joint : m_Record.joints) {
        column(joint.description.name(), "rate", nqRateUnit(joint.description));
    }
    for (const auto& endEffector : m_Record.endEffectors) {
        for (const std::string_view quantity : endEffector.kind.columns()) {
            column(endEffector.name, std::string(quantity),
                   quantity == "value"         ? endEffector.kind.parts()[0].unit
                   : quantity.starts_with("q") ? ""
                                               : "m");
        }
    }
    if (m_Record.options.isBaseFree) {
        for (const char* quantity : {"x", "y", "z", "qw", "qx", "qy", "qz"}) {
            column("base", quantity, *quantity == 'q' ? "" : "m");
        }
    }
    for (const auto& part : m_Record.parts) {
        const std::string& name = m_Record.endEffectors[part.endEffector].name;
        const std::string before = part.limits.isAngular ? "angular." : "";
        const std::string& unit = part.limits.unit;
        column(name, before + "error", unit);
        column(name, before + "speed", unit.empty() ? "" : unit + "/s");
        column(name, before + "acceleration", unit.empty() ? "" : unit + "/s^2");
    }
    out += "\n" + units + "\n";
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
        if (m_Record.options.isBaseFree) {
            const NqCoordinateSystemTransformation base = m_Recorder.base(row);
            double q[4];
            base.orientation().getQuaternion(q[0], q[1], q[2], q[3]);
            for (const double number : {base.translation().x(), base.translation().y(),
                                        base.translation().z(), q[0], q[1], q[2], q[3]}) {
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
