#include <nqControlCore/xml/NqControlCoreInfo.h>

namespace Nq::controlCoreInfo {

std::string pluginLibraryFileName() {
    return {};
}

bool projectIsPlugin() {
    return false;
}

std::string projectName() {
    return "controlCore";
}

std::string repositoryName() {
    return "toolkits";
}

std::string solutionName() {
    return "tarvo";
}

std::string xmlNamespace() {
    return "http://nq.example/toolkits/tarvo/controlCore/nq#";
}

std::string version() {
    return NQ_VERSION_STRING;
}

} // namespace Nq::controlCoreInfo
