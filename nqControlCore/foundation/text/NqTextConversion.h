#pragma once

#include <string>
#include <string_view>

/// Digits of `value` in `radix`, 2 to 36 (lower case); another radix gives the empty text.
std::string NqINT2STRING(unsigned int value, unsigned int radix);

/// The shortest text that reads back to the same bits, whatever the locale; "INF", "-INF" and "NaN".
std::string NqDOUBLE2STRING(double value);

/// The number that `text` stands for, in any locale; 0.0 when it is no number.
double NqSTRING2DOUBLE(const std::string& text);

/// Reads a real number: decimal or exponent form, "INF", "+INF", "-INF" or "NaN" (any case, "Infinity" too),
/// with white space around it. Numbers beyond the range become infinite or zero. False, and `value`
/// untouched, when the text is anything else.
bool nqParseReal(std::string_view text, double& value);

/// `text` without white space at its ends.
std::string_view nqTrimmed(std::string_view text);
