// Where configurations live and which exist. A configuration is a target
// description file "<name>.json" in the configurations directory, plus the
// built-in "Default".
//
// The directory is, in this order: the environment variable
// VXT_CONFIGURATIONS_DIR when set and not empty; share/InProc_Vxt/Configurations
// of the prefix this library is installed in, wherever that prefix now is;
// the source tree's Configurations/ when it exists (a build that runs where
// it was built); the configured prefix's share/InProc_Vxt/Configurations.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Target/Failure.h"

namespace voxtrel::platform::configuration {

std::filesystem::path ConfigurationsDirectory();

// "Default" first, then the stems of the directory's *.json files in byte
// order. A file named Default.json is the built-in default's source and is
// not listed twice; hidden files are not listed.
std::vector<std::string> AvailableConfigurationNames();

struct DescriptionFile {
  std::filesystem::path path;
  std::string text;
};

// Reads a description file. kConfigurationNotFound when there is no such
// file, kInvalidDescription when it cannot be read or is too large.
std::variant<DescriptionFile, target::Failure> ReadDescriptionFile(const std::filesystem::path& path);

}  // namespace voxtrel::platform::configuration
