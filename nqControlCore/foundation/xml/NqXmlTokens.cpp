#include <nqControlCore/foundation/xml/NqXmlTokens.h>

namespace NqXml {

const NqToken NqAddLibrariesToken("addLibraries");
const NqToken NqCountToken("count");
const NqToken NqElementToken("element");
const NqToken NqGroupToken("group");
const NqToken NqKeyToken("key");
const NqToken NqLibraryToken("library");
const NqToken NqMapTypeToken("mapType");
const NqToken NqSetTypeToken("setType");
const NqToken NqValueToken("value");
const NqToken NqVarMapTypeToken("varMapType");
const NqToken NqVarVectorTypeToken("varVectorType");
const NqToken NqVectorTypeToken("vectorType");

} // namespace NqXml
