#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class NqXmlSchema;

/// Numbers separated by white space, as one text; with so many on a line, unless `columns` is 0.
std::string nqToText(const double* numbers, std::size_t count, unsigned columns = 0);

/// Appends the numbers of such a text. False where something else stands in it.
bool nqAppendNumbers(std::string_view text, std::vector<double>& numbers);

/// Takes exactly `count` numbers; false, and `numbers` untouched, for anything else.
bool nqTakeNumbers(std::string_view text, double* numbers, std::size_t count);

/// Describes such a text; of exactly `count` numbers, unless that is 0.
bool nqWriteNumbersSchema(NqXmlSchema& schema, std::size_t count = 0);
