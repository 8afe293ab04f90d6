// The Configuration component: lists the configurations, selects one for the
// TargetManager to build, and sets the parameters of the selected one.
#include <algorithm>
#include <cstring>

#include "Configuration.h"
#include "Configuration/ConfigurationDirectory.h"
#include "Support/ComponentCall.h"
#include "Target/CallArguments.h"
#include "Target/DefaultDescription.h"
#include "Target/PostFailure.h"
#include "Target/TargetModel.h"

namespace voxtrel::platform::configuration {

namespace {

namespace fs = std::filesystem;
using target::Failure;
using target::QuotedArgument;
using target::TargetModel;

uint32_t NullArgument(const char* operation, const char* argument) {
  return VOXTREL_POST_FAILURE(
      (Failure{target::kNullArgument, std::string(operation) + " was given a null " + argument}));
}

uint32_t SelectFile(const fs::path& path, std::string name) {
  auto file = ReadDescriptionFile(path);
  if (const Failure* failure = std::get_if<Failure>(&file)) return VOXTREL_POST_FAILURE(*failure);
  DescriptionFile& read = std::get<DescriptionFile>(file);
  target::Outcome outcome = TargetModel::Instance().Select({std::move(name), read.path.string()}, std::move(read.text));
  return outcome ? VOXTREL_POST_FAILURE(*outcome) : 0;
}

std::string JoinNames(const std::vector<std::string>& names) {
  std::string joined;
  for (const std::string& name : names) joined += (joined.empty() ? "" : ", ") + name;
  return joined;
}

uint32_t SelectConfigurationByFileName(const char* fileName) {
  VOXTREL_COMPONENT_CALL("Configuration.SelectConfigurationByFileName", "fileName=", QuotedArgument(fileName));
  if (!fileName) return NullArgument("Configuration.SelectConfigurationByFileName", "fileName");
  fs::path path(fileName);
  // A relative name that is not found where the process runs may name a
  // file of the configurations directory.
  std::error_code error;
  if (path.is_relative() && !fs::exists(path, error)) {
    const fs::path inDirectory = ConfigurationsDirectory() / path;
    if (fs::exists(inDirectory, error)) path = inDirectory;
  }
  return SelectFile(path, path.stem().string());
}

uint32_t SelectConfigurationByName(const char* configurationName) {
  VOXTREL_COMPONENT_CALL("Configuration.SelectConfigurationByName",
                         "configurationName=", QuotedArgument(configurationName));
  if (!configurationName) return NullArgument("Configuration.SelectConfigurationByName", "configurationName");
  const std::string name(configurationName);
  if (name == target::kDefaultConfigurationName) {
    target::Outcome outcome = TargetModel::Instance().Select({name, std::string(target::kDefaultDescriptionOrigin)},
                                                             std::string(target::DefaultDescriptionText()));
    return outcome ? VOXTREL_POST_FAILURE(*outcome) : 0;
  }
  const std::vector<std::string> names = AvailableConfigurationNames();
  if (std::find(names.begin(), names.end(), name) == names.end())
    return VOXTREL_POST_FAILURE(
        (Failure{target::kConfigurationNotFound, "No configuration is named '" + name + "' in '" +
                                                     ConfigurationsDirectory().string() +
                                                     "' (available: " + JoinNames(names) + ")"}));
  return SelectFile(ConfigurationsDirectory() / (name + ".json"), name);
}

uint32_t GetAvailableConfigurationCount(uint32_t* configurationCount) {
  VOXTREL_COMPONENT_CALL("Configuration.GetAvailableConfigurationCount");
  if (!configurationCount) return NullArgument("Configuration.GetAvailableConfigurationCount", "configurationCount");
  *configurationCount = static_cast<uint32_t>(AvailableConfigurationNames().size());
  return 0;
}

// Fills at most maxConfigurationCount records: the names that fit, each cut
// to the record and terminated, then empty names for the records left.
uint32_t GetAvailableConfigurations(uint32_t maxConfigurationCount, VXT_ConfigurationName* configurations) {
  VOXTREL_COMPONENT_CALL("Configuration.GetAvailableConfigurations", "maxConfigurationCount=", maxConfigurationCount);
  if (!configurations) return NullArgument("Configuration.GetAvailableConfigurations", "configurations");
  const std::vector<std::string> names = AvailableConfigurationNames();
  for (uint32_t index = 0; index < maxConfigurationCount; ++index) {
    char* record = configurations[index].name;
    const std::string_view name = index < names.size() ? std::string_view(names[index]) : std::string_view("");
    const size_t length = std::min<size_t>(name.size(), VXT_CONFIGURATION_NAME_SIZE - 1);
    std::memcpy(record, name.data(), length);
    record[length] = '\0';
  }
  return 0;
}

uint32_t SetConfigurationParameters(uint32_t parameterCount, const char* const* parameterNames,
                                    const char* const* parameterValues) {
  VOXTREL_COMPONENT_CALL("Configuration.SetConfigurationParameters", "parameterCount=", parameterCount);
  if (parameterCount == 0) return 0;
  if (!parameterNames) return NullArgument("Configuration.SetConfigurationParameters", "parameterNames");
  if (!parameterValues) return NullArgument("Configuration.SetConfigurationParameters", "parameterValues");
  target::ParameterValues values;
  for (uint32_t index = 0; index < parameterCount; ++index) {
    const std::string position = std::to_string(index);
    if (!parameterNames[index])
      return NullArgument("Configuration.SetConfigurationParameters", ("parameter name " + position).c_str());
    if (!parameterValues[index])
      return NullArgument("Configuration.SetConfigurationParameters", ("parameter value " + position).c_str());
    if (!values.emplace(parameterNames[index], parameterValues[index]).second)
      return VOXTREL_POST_FAILURE(
          (Failure{target::kUnknownParameter,
                   "Configuration parameter '" + std::string(parameterNames[index]) + "' is given more than once"}));
  }
  target::Outcome outcome = TargetModel::Instance().SetParameters(values);
  return outcome ? VOXTREL_POST_FAILURE(*outcome) : 0;
}

constexpr ConfigurationComponent kConfiguration{
    &SelectConfigurationByFileName, &SelectConfigurationByName,  &GetAvailableConfigurationCount,
    &GetAvailableConfigurations,    &SetConfigurationParameters,
};

}  // namespace

}  // namespace voxtrel::platform::configuration

uint32_t Voxtrel_GetConfiguration(const ConfigurationComponent** table) {
  VOXTREL_COMPONENT_CALL("Voxtrel_GetConfiguration");
  if (!table) return voxtrel::platform::target::kNullArgument;
  *table = &voxtrel::platform::configuration::kConfiguration;
  return 0;
}
