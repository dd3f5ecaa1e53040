#include <nqControlCore/foundation/text/NqTextConversion.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <version>

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

/// Whether `text` is `word`, which is in lower case.
bool isWord(std::string_view text, std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

#ifdef __cpp_lib_to_chars

/// Whether a decimal number that left the range of double was too small, not too large.
bool isTiny(std::string_view number) {
    const std::size_t e = std::min(number.find_first_of("eE"), number.size());
    const std::string_view digits = number.substr(0, e);
    const auto point = static_cast<long long>(std::min(digits.find('.'), digits.size()));
    const auto leading = static_cast<long long>(std::min(digits.find_first_of("123456789"), digits.size()));

    std::string_view exponentText = number.substr(std::min(e + 1, number.size()));
    if (!exponentText.empty() && exponentText[0] == '+') {
        exponentText.remove_prefix(1);
    }
    int exponent = 0;
    const auto end = exponentText.data() + exponentText.size();
    if (std::from_chars(exponentText.data(), end, exponent).ec == std::errc::result_out_of_range) {
        return exponentText[0] == '-';
    }
    return point - leading + exponent < 0;
}

/// Of a decimal number without a sign the nearest double, which is 0 or infinite where it leaves the range.
bool readDecimal(std::string_view number, double& value) {
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        value = isTiny(number) ? 0.0 : std::numeric_limits<double>::infinity();
    } else if (result.ec != std::errc()) {
        return false;
    }
    return result.ptr == number.data() + number.size();
}

#else // libc++ 16 reads no real numbers: the C library does, in the locale whose point is known

bool readDecimal(std::string_view number, double& value) {
    static const locale_t theLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    if (number.find_first_not_of("0123456789.eE+-") != std::string_view::npos) {
        return false; // no hexadecimal number
    }
    const std::string terminated(number);
    char* end = nullptr;
    value = strtod_l(terminated.c_str(), &end, theLocale);
    return end != terminated.c_str() && end == terminated.c_str() + terminated.size();
}

#endif

} // namespace

std::string NqINT2STRING(unsigned int value, unsigned int radix) {
    if (radix < 2 || radix > 36) {
        return {};
    }
    char buffer[std::numeric_limits<unsigned int>::digits];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, static_cast<int>(radix)).ptr;
    return {buffer, end};
}

std::string NqDOUBLE2STRING(double value) {
    if (std::isnan(value)) {
        return "NaN";
    }
    if (std::isinf(value)) {
        return value > 0.0 ? "INF" : "-INF";
    }
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return {buffer, end};
}

double NqSTRING2DOUBLE(const std::string& text) {
    double value = 0.0;
    return nqParseReal(text, value) ? value : 0.0;
}

bool nqParseReal(std::string_view text, double& value) {
    text = nqTrimmed(text);
    const bool isSigned = !text.empty() && (text[0] == '-' || text[0] == '+');
    const double sign = isSigned && text[0] == '-' ? -1.0 : 1.0;
    const std::string_view number = text.substr(isSigned ? 1 : 0);
    if (isWord(number, "inf") || isWord(number, "infinity")) {
        value = sign * std::numeric_limits<double>::infinity();
        return true;
    }
    if (isWord(number, "nan")) {
        value = std::numeric_limits<double>::quiet_NaN();
        return true;
    }
    if (number.empty() || std::string_view("0123456789.").find(number[0]) == std::string_view::npos) {
        return false;
    }
    double parsed = 0.0;
    if (!readDecimal(number, parsed)) {
        return false;
    }
    value = sign * parsed;
    return true;
}

std::string_view nqTrimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}
