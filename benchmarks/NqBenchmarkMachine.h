#pragma once

#include <string>

/// Where and how the figures came about.
namespace NqBenchmarkMachine {

/// Processor, its load, compiler and date, for a reader.
std::string text();

/// The same as an object of JSON.
std::string json();

} // namespace NqBenchmarkMachine
