#include "NqDriveText.h"

#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace NqDriveText {

namespace {

std::string formatted(double value, std::chars_format format, int precision) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? "nan" : value > 0.0 ? "inf" : "-inf";
    }
    char buffer[400];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, format, precision).ptr;
    std::string text(buffer, end);
    if (text.starts_with('-') && text.find_first_of("123456789") == std::string::npos) {
        text.erase(0, 1);
    }
    return text;
}

/// Length of the well-formed UTF-8 sequence at the start of `text`; 0 if there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

} // namespace

std::string fixed(double value, int decimals) {
    return formatted(value, std::chars_format::fixed, decimals);
}

std::string significant(double value, int digits) {
    return formatted(value, std::chars_format::general, digits);
}

std::string triple(double x, double y, double z) {
    return fixed(x, 3) + ", " + fixed(y, 3) + ", " + fixed(z, 3);
}

const char* limitName(NqJointBounds::Cause cause) {
    switch (cause) {
    case NqJointBounds::Cause::Rate:
        return "rate";
    case NqJointBounds::Cause::Range:
        return "range";
    case NqJointBounds::Cause::Acceleration:
        break;
    }
    return "acceleration";
}

std::string inQuotes(std::string_view name) {
    return std::string(1, '\'').append(name).append(1, '\'');
}

std::string escaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const char c = text.front();
        const std::size_t length = sequenceLength(text);
        if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else if (c == '"') {
            out += "&quot;";
        } else if (c == '\'') {
            out += "&#39;";
        } else if (length == 0 || static_cast<unsigned char>(c) < 0x20) {
            out += '?';
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

bool parseFinite(std::string_view text, double& value) {
    double parsed = 0.0;
    if (!nqParseReal(text, parsed) || !std::isfinite(parsed)) {
        return false;
    }
    value = parsed;
    return true;
}

bool parseFiniteList(std::string_view text, std::vector<double>& values) {
    std::vector<double> parsed;
    for (const std::string_view piece : split(text, ',')) {
        if (!parseFinite(piece, parsed.emplace_back())) {
            return false;
        }
    }
    values = std::move(parsed);
    return true;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (std::size_t end; (end = text.find(separator)) != std::string_view::npos;
         text.remove_prefix(end + 1)) {
        pieces.push_back(text.substr(0, end));
    }
    pieces.push_back(text);
    return pieces;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string printable(std::string_view text, std::size_t longest) {
    std::string out;
    for (const char c : text.substr(0, longest)) {
        out += c >= 0x20 && c < 0x7F ? c : '?';
    }
    return text.size() > longest ? out + "..." : out;
}

std::string padded(std::string_view text, std::size_t width, bool toTheRight) {
    const auto characters = static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
    const std::string blanks(width > characters ? width - characters : 0, ' ');
    return toTheRight ? blanks + std::string(text) : std::string(text) + blanks;
}

} // namespace NqDriveText
