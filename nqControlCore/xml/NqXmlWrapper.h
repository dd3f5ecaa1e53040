#pragma once

#include <nqControlCore/foundation/xml/NqXmlCoordinateSystemTransformation.h>
#include <nqControlCore/foundation/xml/NqXmlOrientation.h>
#include <nqControlCore/foundation/xml/NqXmlVector.h>

/// The XML object that reads and writes a T for a collection: T itself, or the wrapper of a plain value.
template <typename T>
struct NqXmlWrapper {
    using Type = T;
};

template <>
struct NqXmlWrapper<NqVector> {
    using Type = NqXmlVector;
};

template <>
struct NqXmlWrapper<NqOrientation> {
    using Type = NqXmlOrientation;
};

template <>
struct NqXmlWrapper<NqCoordinateSystemTransformation> {
    using Type = NqXmlCoordinateSystemTransformation;
};
