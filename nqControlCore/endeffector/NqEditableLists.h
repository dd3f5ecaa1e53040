#pragma once

#include <nqControlCore/foundation/xml/NqXmlBasicType.h>
#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

#include <string>

/// A list of texts: link labels, editing labels, editable values.
using NqLabelVector = NqXmlVectorType<NqXmlBasicType<std::string>>;

/// The plain lists of editable values: entries between commas, taken as they stand. An empty text is an empty
/// list.
class NqEditableLists {
public:
    static std::string join(const NqLabelVector& labels);
    static std::string join(const NqXmlRealVector& numbers);

    static void split(const std::string& text, NqLabelVector& labels);

    /// What is no number reads as 0.
    static void split(const std::string& text, NqXmlRealVector& numbers);
};
