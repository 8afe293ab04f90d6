#include "InProc_General.h"

#include <cstring>
#include <vector>

#include "Logging.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

InProc_General instance;

constexpr VXT_Version kVersion{VXT_VERSION_SIZE, 1, 2011, 4508, 100};
constexpr char kImplementationIdentifier[] = "Voxtrel:Main (rev 650678)";
static_assert(sizeof kImplementationIdentifier <= VXT_IMPLEMENTATION_IDENTIFIER_SIZE);
static_assert(VXT_LOGGING_PRESET_NAME_SIZE == VOXTREL_LOGGING_PRESET_NAME_SIZE);

using namespace frame;

// The preset and client operations word their argument errors
// "InProc_General::<Op>(): argument error (<argument>) : <what>".
Call& ArgumentErrorAfterColon(Call& call, uint32_t failure, const char* argument, const char* what) {
  return call.Fail(failure, call.prefix(), ": argument error (", argument, ") : ", what);
}

Call& NotNULL(Call& call, const void* pointer, const char* argument) {
  if (pointer == nullptr) ArgumentErrorAfterColon(call, code::kInvalidArgument, argument, "NULL pointer");
  return call;
}

// "{major = 1 minor = 2011 build = 4508 classification = 100}"
struct VersionText {
  const VXT_Version* version;
  friend std::ostream& operator<<(std::ostream& out, const VersionText& text) {
    if (text.version == nullptr) return out << "<NULL>";
    return out << "{major = " << Dec{text.version->major} << " minor = " << Dec{text.version->minor}
               << " build = " << Dec{text.version->build} << " classification = " << Dec{text.version->classification}
               << "}";
  }
};

// Copies the Common component's full records into the caller's array, whose
// records may be of either size.
uint32_t CopyClientRecords(Call& call, const std::vector<VXT_Client>& records, uint32_t count,
                           VXT_Client* connectedClients) {
  auto* target = reinterpret_cast<unsigned char*>(connectedClients);
  for (uint32_t i = 0; i < count && i < records.size(); ++i) {
    uint32_t structureSize = 0;
    std::memcpy(&structureSize, target, sizeof structureSize);
    if (structureSize == VXT_CLIENT_SIZE) {
      std::memcpy(target, &records[i], VXT_CLIENT_SIZE);
    } else if (structureSize == VXT_CLIENT_SHORT_SIZE || structureSize == 0) {
      auto* shortRecord = reinterpret_cast<VXT_Client*>(target);
      shortRecord->clientId = records[i].clientId;
      const size_t length = strnlen(records[i].identifier, VXT_CLIENT_TEXT_SIZE - 1);
      std::memcpy(shortRecord->identifier, records[i].identifier, length);
      shortRecord->identifier[length] = '\0';
      structureSize = VXT_CLIENT_SHORT_SIZE;
    } else {
      call.Fail(code::kStructureSize, "InProc_General::GetConnectedClients(): connectedClients[", i,
                "] structureSize is: ", structureSize);
      return call.code();
    }
    target += structureSize;
  }
  return 0;
}

}  // namespace

InProc_General& InProc_General::Instance() { return instance; }

VXT_Result InProc_General::GetImplementationVersion(VXT_Version* version) {
  return RunOperation(
      logger, VXT_OPERATION(General, GetImplementationVersion), NoArgs{}, TraceArgs("version", VersionText{version}),
      [&](Call& call) {
        return call.NotNull(version, "version").StructureSize(version, VXT_VERSION_SIZE, "version").Core([&] {
          *version = kVersion;
          return code::kSuccess;
        });
      });
}

VXT_Result InProc_General::GetImplementationIdentifier(char* identifier) {
  return RunOperation(logger, VXT_OPERATION(General, GetImplementationIdentifier), NoArgs{},
                      TraceArgs("identifier", Quoted{identifier, VXT_IMPLEMENTATION_IDENTIFIER_SIZE}), [&](Call& call) {
                        return call.NotNull(identifier, "identifier").Core([&] {
                          std::memset(identifier, 0, VXT_IMPLEMENTATION_IDENTIFIER_SIZE);
                          std::memcpy(identifier, kImplementationIdentifier, sizeof kImplementationIdentifier - 1);
                          return code::kSuccess;
                        });
                      });
}

VXT_Result InProc_General::GetLoggingPresetNamesCount(uint32_t* numPresetNames) {
  return RunOperation(logger, VXT_OPERATION(General, GetLoggingPresetNamesCount), NoArgs{},
                      ArgsBehindParentheses(TraceArgs("numPresetNames", Out<Dec>(numPresetNames))), [&](Call& call) {
                        return NotNULL(call, numPresetNames, "numPresetNames").Core([&] {
                          return Voxtrel_LoggingGetLoggingPresetNamesCount(numPresetNames);
                        });
                      });
}

VXT_Result InProc_General::GetLoggingPresetNames(uint32_t numPresetNames, char** presetNames) {
  return RunOperation(
      logger, VXT_OPERATION(General, GetLoggingPresetNames), TraceArgs("numPresetNames", Dec{numPresetNames}), NoArgs{},
      [&](Call& call) {
        uint32_t available = 0;
        Voxtrel_LoggingGetLoggingPresetNamesCount(&available);
        NotNULL(call, presetNames, "presetNames");
        if (numPresetNames > available)
          ArgumentErrorAfterColon(call, code::kOutOfRange, "numPresetNames",
                                  "value is greater than the available number of names");
        return call.Core([&] { return Voxtrel_LoggingGetLoggingPresetNames(presetNames, numPresetNames); });
      });
}

VXT_Result InProc_General::LoadLoggingPreset(const char* presetName) {
  return RunOperation(logger, VXT_OPERATION(General, LoadLoggingPreset).Counted(),
                      TraceArgs("presetName", Quoted{presetName}), NoArgs{}, [&](Call& call) {
                        NotNULL(call, presetName, "presetName");
                        if (!call.failed() && !Voxtrel_LoggingLoadLoggingPreset(presetName))
                          ArgumentErrorAfterColon(call, 0x260001, "presetName", "an unknown preset name was specified");
                        return call.code();
                      });
}

VXT_Result InProc_General::WriteLogMessage(const char* message) {
  return RunOperation(logger, VXT_OPERATION(General, WriteLogMessage).Counted(), TraceArgs("message", Quoted{message}),
                      NoArgs{}, [&](Call& call) {
                        return NotNULL(call, message, "message").Core([&] {
                          TraceLine(logger, 2, "USER MESSAGE: ", Quoted{message}, kTrailer);
                          return code::kSuccess;
                        });
                      });
}

VXT_Result InProc_General::GetNumConnectedClients(uint32_t* numConnectedClients) {
  return RunOperation(
      logger, VXT_OPERATION(General, GetNumConnectedClients), NoArgs{},
      TraceArgs("numConnectedClients", Out<Dec>(numConnectedClients)), [&](Call& call) {
        return NotNULL(call, numConnectedClients, "numConnectedClients").Core(common, [&](const CommonComponent& c) {
          return c.GetNumConnectedClients(numConnectedClients);
        });
      });
}

VXT_Result InProc_General::GetConnectedClients(uint32_t maxNumConnectedClients, uint32_t* numConnectedClients,
                                               VXT_Client* connectedClients) {
  return RunOperation(
      logger, VXT_OPERATION(General, GetConnectedClients),
      TraceArgs("maxNumConnectedClients", Dec{maxNumConnectedClients}),
      TraceArgs("numConnectedClients", Out<Dec>(numConnectedClients)), [&](Call& call) {
        NotNULL(call, numConnectedClients, "numConnectedClients");
        NotNULL(call, connectedClients, "connectedClients");
        return call.Core(common, [&](const CommonComponent& c) {
          std::vector<VXT_Client> records(maxNumConnectedClients, VXT_Client{});
          if (const uint32_t code = c.GetConnectedClients(maxNumConnectedClients, numConnectedClients, records.data());
              code != 0)
            return code;
          return CopyClientRecords(call, records, *numConnectedClients, connectedClients);
        });
      });
}

VXT_Result InProc_General::FlushLogs() {
  return RunOperation(logger, VXT_OPERATION(General, FlushLogs).Counted(), NoArgs{}, NoArgs{}, [&](Call& call) {
    return call.Core(common, [](const CommonComponent& c) { return c.FlushLogs(); });
  });
}

VXT_Result InProc_General::ClearLogs() {
  return RunOperation(logger, VXT_OPERATION(General, ClearLogs).Counted(), NoArgs{}, NoArgs{}, [&](Call& call) {
    return call.Core(common, [](const CommonComponent& c) { return c.ClearLogs(); });
  });
}

VXT_Result InProc_General::ArchiveLogs() {
  return RunOperation(logger, VXT_OPERATION(General, ArchiveLogs).Counted(), NoArgs{}, NoArgs{}, [&](Call& call) {
    return call.Core(common, [](const CommonComponent& c) { return c.ArchiveLogs(); });
  });
}

VXT_Result InProc_General::GetLoadedLoggingPreset(char* presetName) {
  return RunOperation(logger, VXT_OPERATION(General, GetLoadedLoggingPreset), NoArgs{}, NoArgs{}, [&](Call& call) {
    return NotNULL(call, presetName, "presetName").Core([&] {
      return Voxtrel_LoggingGetLoadedLoggingPreset(presetName);
    });
  });
}

}  // namespace vxt
