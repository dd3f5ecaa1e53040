#pragma once

#include <nqControlLoop/NqJointBounds.h>

#include <string>
#include <string_view>
#include <vector>

/// Text helpers of the program, independent of the locale.
namespace NqDriveText {

/// `value` with a fixed number of decimals; "inf", "-inf" and "nan" for what is no number.
std::string fixed(double value, int decimals);

/// `value` with a number of significant digits, in the shorter of fixed and exponent form.
std::string significant(double value, int digits);

/// Three coordinates, "0.300, 0.000, 0.500".
std::string triple(double x, double y, double z);

/// Which limit it is, in a word.
const char* limitName(NqJointBounds::Cause cause);

/// A name in a message: in single quotes.
std::string inQuotes(std::string_view name);

/// Safe as XML text and as an attribute's value: the five characters escaped, control characters and broken
/// UTF-8 replaced by a question mark.
std::string escaped(std::string_view text);

/// Reads one finite number; false, and `value` untouched, for anything else.
bool parseFinite(std::string_view text, double& value);

/// Reads finite numbers separated by commas; at least one.
bool parseFiniteList(std::string_view text, std::vector<double>& values);

/// The pieces of `text` between separators; always at least one piece.
std::vector<std::string_view> split(std::string_view text, char separator);

/// `text` without blanks, tabs and carriage returns at its ends.
std::string_view trimmed(std::string_view text);

/// `text` for a message: in one line, printable, and cut off after a number of characters.
std::string printable(std::string_view text, std::size_t longest);

/// `text` filled up with blanks to a width, counted in characters, on the right or on the left.
std::string padded(std::string_view text, std::size_t width, bool toTheRight = false);

} // namespace NqDriveText
