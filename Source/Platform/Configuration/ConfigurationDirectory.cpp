#include "Configuration/ConfigurationDirectory.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "Target/DefaultDescription.h"
#include "Target/TargetDescription.h"

namespace voxtrel::platform::configuration {

namespace fs = std::filesystem;
using target::Failure;

namespace {

// The installed configurations as seen from where this library really is,
// so that a prefix that was moved or chosen at install time still finds
// them; empty when the library does not sit in an installed prefix.
fs::path ConfigurationsBesideThisLibrary() {
  Dl_info library{};
  if (dladdr(reinterpret_cast<const void*>(&ConfigurationsDirectory), &library) == 0 ||
      library.dli_fname == nullptr)
    return {};
  std::error_code error;
  const fs::path directory =
      fs::weakly_canonical(fs::path(library.dli_fname).parent_path() / VOXTREL_CONFIGURATIONS_FROM_LIBRARY, error);
  return !error && fs::is_directory(directory, error) ? directory : fs::path();
}

}  // namespace

fs::path ConfigurationsDirectory() {
  if (const char* overridden = std::getenv("VXT_CONFIGURATIONS_DIR"); overridden && *overridden) return overridden;
  if (fs::path installed = ConfigurationsBesideThisLibrary(); !installed.empty()) return installed;
  std::error_code error;
  if (fs::is_directory(VOXTREL_CONFIGURATIONS_DIR, error)) return VOXTREL_CONFIGURATIONS_DIR;
  return VOXTREL_INSTALLED_CONFIGURATIONS_DIR;
}

std::vector<std::string> AvailableConfigurationNames() {
  std::vector<std::string> files;
  std::error_code error;
  for (fs::directory_iterator entry(ConfigurationsDirectory(), error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code statusError;
    if (!entry->is_regular_file(statusError) || entry->path().extension() != ".json") continue;
    std::string name = entry->path().stem().string();
    if (name.empty() || name.front() == '.' || name == target::kDefaultConfigurationName) continue;
    files.push_back(std::move(name));
  }
  std::sort(files.begin(), files.end());
  std::vector<std::string> names{std::string(target::kDefaultConfigurationName)};
  names.insert(names.end(), files.begin(), files.end());
  return names;
}

std::variant<DescriptionFile, Failure> ReadDescriptionFile(const fs::path& path) {
  const std::string shown = path.string();
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status))
    return Failure{target::kConfigurationNotFound, "Target description file '" + shown + "' does not exist"};
  if (!fs::is_regular_file(status))
    return Failure{target::kInvalidDescription, "Target description file '" + shown + "' is not a regular file"};
  const uintmax_t size = fs::file_size(path, error);
  if (!error && size > target::kMaxDescriptionSize)
    return Failure{target::kInvalidDescription, "Target description file '" + shown + "' is larger than " +
                                                    std::to_string(target::kMaxDescriptionSize) + " bytes"};
  std::ifstream stream(path, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(stream), {});
  if (!stream.is_open() || stream.bad())
    return Failure{target::kInvalidDescription, "Target description file '" + shown + "' cannot be read"};
  return DescriptionFile{path, std::move(text)};
}

}  // namespace voxtrel::platform::configuration
