#pragma once

#include <string>

/// Text helpers of the program.
namespace NqBenchmarkText {

/// As printf() would write it.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);

/// A time, with three digits or more.
std::string number(double value);

/// As a string of JSON.
std::string quoted(const std::string& text);

} // namespace NqBenchmarkText
