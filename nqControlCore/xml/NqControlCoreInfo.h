#pragma once

#include <string>

/// Who the library is.
namespace Nq::controlCoreInfo {

std::string pluginLibraryFileName(); ///< empty: the library is no plug-in
bool projectIsPlugin();
std::string projectName();
std::string repositoryName();
std::string solutionName();

/// The URI of the library itself. Elements in files are qualified by NqControlCore::ns instead.
std::string xmlNamespace();

/// The version of the build, "major.minor.patch".
std::string version();

} // namespace Nq::controlCoreInfo
