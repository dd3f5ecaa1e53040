#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

/// Names that the XML framework itself gives to elements and attributes. They are unqualified, so that in a
/// file they stand in the namespace of the object that they help to write.
namespace NqXml {

inline constexpr NqToken NqAddLibrariesToken("addLibraries");
inline constexpr NqToken NqCountToken("count");
inline constexpr NqToken NqElementToken("element");
inline constexpr NqToken NqGroupToken("group");
inline constexpr NqToken NqKeyToken("key");
inline constexpr NqToken NqLibraryToken("library");
inline constexpr NqToken NqMapTypeToken("mapType");
inline constexpr NqToken NqSetTypeToken("setType");
inline constexpr NqToken NqValueToken("value");
inline constexpr NqToken NqVarMapTypeToken("varMapType");
inline constexpr NqToken NqVarVectorTypeToken("varVectorType");
inline constexpr NqToken NqVectorTypeToken("vectorType");

} // namespace NqXml
