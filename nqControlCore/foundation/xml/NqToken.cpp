#include <nqControlCore/foundation/xml/NqToken.h>

#include <mutex>
#include <set>

void NqToken::ownText() {
    auto* text = new std::string(m_Namespace);
    text->append(m_Local);
    m_OwnText = text;
    m_Namespace = std::string_view(*text).substr(0, m_Namespace.size());
    m_Local = std::string_view(*text).substr(m_Namespace.size());
}

const std::string& NqToken::textOfConstant() const {
    // As many as there are constants in the program. Never destroyed, as other constants may still be in use
    // when static objects go.
    static auto& theTexts = *new std::set<std::string>;
    static std::mutex theMutex;
    const std::scoped_lock lock(theMutex);
    return *theTexts.emplace(std::string(m_Namespace).append(m_Local)).first;
}
