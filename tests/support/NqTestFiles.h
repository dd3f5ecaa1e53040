#pragma once

#include <string>

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

std::string nqContentOf(const std::string& fileName);
