#pragma once

#include <nqControlCore/foundation/text/NqFoundCommon.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

class NqReArray;

namespace NqFoundCommon {

/// Reads fields separated by commas; a blank text gives the empty vector. White space around a field is left
/// out, unless the field stands in quotation marks; within them a comma is a comma, and a doubled mark stands
/// for one. False, and `vector` untouched, where a quotation doesn't end, or text follows on it.
bool csvString2StringVector(const NqXmlBasicType<std::string>& text,
                            NqXmlVectorType<NqXmlBasicType<std::string>>& vector);

/// The text that reads back to the same fields; only those that need it stand in quotation marks.
std::string stringVector2CSVString(const NqXmlVectorType<NqXmlBasicType<std::string>>& vector);

/// Makes each inner vector a row. False, with a message and `array` untouched, where they differ in length.
bool toReArray(const NqXmlVectorType<NqXmlRealVector>& rows, NqReArray& array);

} // namespace NqFoundCommon
