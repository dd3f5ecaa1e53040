#pragma once

#include <nqControlCore/foundation/xml/NqToken.h>

/// Names that the XML framework itself gives to elements and attributes. They are unqualified, so that in a
/// file they stand in the namespace of the object that they help to write.
namespace NqXml {

extern const NqToken NqAddLibrariesToken;
extern const NqToken NqCountToken;
extern const NqToken NqElementToken;
extern const NqToken NqGroupToken;
extern const NqToken NqKeyToken;
extern const NqToken NqLibraryToken;
extern const NqToken NqMapTypeToken;
extern const NqToken NqSetTypeToken;
extern const NqToken NqValueToken;
extern const NqToken NqVarMapTypeToken;
extern const NqToken NqVarVectorTypeToken;
extern const NqToken NqVectorTypeToken;

} // namespace NqXml
