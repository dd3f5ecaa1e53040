#pragma once

#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>

#include <string>

/// Conversions between comma-separated text and vectors, as editing interfaces use them. Those of texts and
/// matrices stand in NqFoundCommonCollections.h.
namespace NqFoundCommon {

/// Reads numbers separated by commas, with white space around them or not; a blank text gives the empty
/// vector. False, and `vector` untouched, where anything else stands between two commas.
bool csvString2RealVector(const std::string& text, NqXmlRealVector& vector);

/// The text that reads back to the same bits.
std::string realVector2CSVString(const NqXmlRealVector& vector);

} // namespace NqFoundCommon
