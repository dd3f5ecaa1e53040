#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class NqXmlSchema;

/// Numbers that stand in a file as one text, separated by white space.
namespace NqXmlNumberList {

/// The text of the numbers; with so many on a line, unless `columns` is 0.
std::string toText(const double* numbers, std::size_t count, unsigned columns = 0);

/// Appends the numbers of a text. False where something else stands in it.
bool append(std::string_view text, std::vector<double>& numbers);

/// Takes exactly `count` numbers; false, and `numbers` untouched, for anything else.
bool take(std::string_view text, double* numbers, std::size_t count);

/// Describes a list; of exactly `count` numbers, unless that is 0.
bool writeSchemaType(NqXmlSchema& schema, std::size_t count = 0);

} // namespace NqXmlNumberList
