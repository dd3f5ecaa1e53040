#pragma once

#include <nqControlCore/foundation/xml/NqXmlVectorBasicType.h>
#include <nqControlCore/xml/NqXmlVectorType.h>

#include <vector>

/// One vector per end-effector, in their order, and what makes the stacked vector of them.
namespace NqStackedVectors {

using Vectors = NqXmlVectorType<NqXmlRealVector>;

/// Sum of the lengths, the degrees of constraint.
unsigned doc(const Vectors& vectors);

/// The same over the listed vectors alone; one that is listed twice counts twice. Indices are not checked.
unsigned doc(const Vectors& vectors, const std::vector<unsigned int>& indices);

/// Resizes `result` and writes the vectors one after the other.
void stack(const Vectors& vectors, std::vector<double>& result);

/// The same for the listed vectors, in the order of the list.
void stack(const Vectors& vectors, const std::vector<unsigned int>& indices, std::vector<double>& result);

} // namespace NqStackedVectors
