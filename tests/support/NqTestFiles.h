#pragma once

#include <string>
#include <vector>

/// The folder of the project's models, with what names the file in it: "/arm7.urdf".
std::string nqModelFile(const std::string& name = {});
/// The same in the folder of models that only tests use.
std::string nqTestModelFile(const std::string& name = {});
/// The same in the folder of files whose form has to stay.
std::string nqGoldenFile(const std::string& name = {});
/// The same in the folder of the library's headers.
std::string nqHeaderFile(const std::string& name = {});
/// The folder of what fuzzing has found, with a folder for each target in it.
std::string nqCorpusFolder();

/// The names of the files in a folder that end in that, in order.
std::vector<std::string> nqFilesIn(const std::string& folder, const std::string& ending = {});

std::string nqContentOf(const std::string& fileName);
