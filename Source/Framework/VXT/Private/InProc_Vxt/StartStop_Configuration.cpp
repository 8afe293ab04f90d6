// The entry points by which a client selects its target configuration and
// brings the platform up.
#include <mutex>

#include "Configuration.h"
#include "ConnectionState.h"
#include "InitializationSequence.h"
#include "TargetManager.h"
#include "Telemetry.h"
#include "VXT_Exports.h"
#include "frame/CatchAll.h"
#include "frame/ErrorContext.h"
#include "frame/Frame.h"
#include "frame/LastError.h"
#include "frame/Render.h"

namespace vxt {
namespace {

using frame::OperationSite;

#define VXT_ENTRY(Function) VXT_OPERATION(Vxt, Function)

// The form shared by the configuration calls: trace, serialise on
// initializationMutex, refuse null pointers with the call's own text, and
// otherwise pass the call to the Configuration component unchanged.
template <class InArgs, class OutArgs, class Forward>
VXT_Result ForwardToConfiguration(const OperationSite& site, const InArgs& in, const OutArgs& out, bool pointersGiven,
                                  const char* nullPointerText, Forward forward) {
  ConnectionState& state = ConnectionState::Get();
  const frame::ServiceLogger& logger = state.connectionLogger;
  frame::TraceLine(logger, 1, frame::InLine<InArgs>{site, in}, frame::kTrailer);
  std::lock_guard lock(state.initializationMutex);

  VXT_Result publicCode = 0;
  if (!pointersGiven) {
    publicCode = VXT_E_INVALID_ARGUMENT;
    frame::ReportErrorMessage(nullptr, nullPointerText);
  } else {
    const frame::ErrorContextScope context;
    const uint32_t code = frame::CatchAll(site.file, site.line, [&]() -> uint32_t {
      const ConfigurationComponent* configuration = nullptr;
      if (const uint32_t got = Voxtrel_GetConfiguration(&configuration); got != 0) return got;
      return configuration != nullptr ? forward(*configuration) : code::kInvalidArgument;
    });
    if (code != 0) publicCode = frame::ReportFailure(context.id(), code).publicCode;
  }
  frame::TraceLine(logger, 1, frame::OutLine<OutArgs>{site, out, publicCode}, frame::kTrailer);
  return publicCode;
}

// The dynamic initialization calls go to the TargetManager without a lock.
template <class Forward>
VXT_Result ForwardToTargetManager(const OperationSite& site, Forward forward) {
  const frame::ServiceLogger& logger = ConnectionState::Get().connectionLogger;
  frame::TraceLine(logger, 2, "In InProc_Vxt::", site.operation, "()", frame::kTrailer);
  const frame::ErrorContextScope context;
  const uint32_t code = frame::CatchAll(site.file, site.line, [&]() -> uint32_t {
    const TargetManagerComponent* targetManager = nullptr;
    if (const uint32_t got = Voxtrel_GetTargetManager(&targetManager); got != 0) return got;
    return targetManager != nullptr ? forward(*targetManager) : code::kInvalidArgument;
  });
  VXT_Result publicCode = 0;
  if (code != 0) publicCode = frame::ReportFailure(context.id(), code).publicCode;
  frame::TraceLine(logger, 1, "Out InProc_Vxt::", site.operation, "() ErrorCode = ", frame::Hex8{publicCode},
                   frame::kTrailer);
  return publicCode;
}

}  // namespace
}  // namespace vxt

using namespace vxt;
using namespace vxt::frame;

extern "C" VXT_Result SelectConfigurationByFileName(const char* fileName) {
  return ForwardToConfiguration(
      VXT_ENTRY(SelectConfigurationByFileName), TraceArgs("fileName", Quoted{fileName}), NoArgs{}, fileName != nullptr,
      "VXT_SelectConfigurationByFileName was passed a null pointer",
      [&](const ConfigurationComponent& c) { return c.SelectConfigurationByFileName(fileName); });
}

extern "C" VXT_Result SelectConfigurationByName(const char* configurationName) {
  return ForwardToConfiguration(
      VXT_ENTRY(SelectConfigurationByName), TraceArgs("configurationName", Quoted{configurationName}), NoArgs{},
      configurationName != nullptr, "VXT_SelectConfigurationByName was passed a null pointer",
      [&](const ConfigurationComponent& c) { return c.SelectConfigurationByName(configurationName); });
}

extern "C" VXT_Result GetAvailableConfigurationCount(uint32_t* configurationCount) {
  return ForwardToConfiguration(
      VXT_ENTRY(GetAvailableConfigurationCount), NoArgs{},
      TraceArgs("configurationCount", Out<Dec>(configurationCount)), configurationCount != nullptr,
      "VXT_GetAvailableConfigurationCount was passed a null pointer",
      [&](const ConfigurationComponent& c) { return c.GetAvailableConfigurationCount(configurationCount); });
}

extern "C" VXT_Result GetAvailableConfigurations(uint32_t maxConfigurationCount,
                                                 VXT_ConfigurationName* configurations) {
  return ForwardToConfiguration(VXT_ENTRY(GetAvailableConfigurations),
                                TraceArgs("maxConfigurationCount", Dec{maxConfigurationCount}), NoArgs{},
                                configurations != nullptr, "VXT_GetAvailableConfigurations was passed a null pointer",
                                [&](const ConfigurationComponent& c) {
                                  return c.GetAvailableConfigurations(maxConfigurationCount, configurations);
                                });
}

extern "C" VXT_Result SetConfigurationParameters(uint32_t parameterCount, const char* const* parameterNames,
                                                 const char* const* parameterValues) {
  return ForwardToConfiguration(
      VXT_ENTRY(SetConfigurationParameters),
      TraceArgs("parameterCount", Dec{parameterCount}, "parameterNames", List<Quoted>(parameterNames, parameterCount),
                "parameterValues", List<Quoted>(parameterValues, parameterCount)),
      NoArgs{}, parameterNames != nullptr && parameterValues != nullptr,
      "VXT_SetConfigurationParameters was passed a null pointer", [&](const ConfigurationComponent& c) {
        return c.SetConfigurationParameters(parameterCount, parameterNames, parameterValues);
      });
}

extern "C" VXT_Result SetClientInfo(const char* key, const char* value) {
  const OperationSite site = VXT_ENTRY(SetClientInfo);
  ConnectionState& state = ConnectionState::Get();
  const auto in = TraceArgs("key", Quoted{key}, "value", Quoted{value});
  TraceLine(state.connectionLogger, 1, InLine<decltype(in)>{site, in}, kTrailer);
  std::lock_guard lock(state.initializationMutex);

  VXT_Result publicCode = 0;
  if (key == nullptr || value == nullptr) {
    publicCode = VXT_E_INVALID_ARGUMENT;
    ReportErrorMessage(nullptr, "VXT_SetClienInfo was passed a null pointer");
  } else {
    Telemetry_BuildDataSet("Client_Info", key, value, 0);
    Telemetry_SendEvent("Client_Lifespan", "Client_Info");
  }
  TraceLine(state.connectionLogger, 1, OutLine<NoArgs>{site, NoArgs{}, publicCode}, kTrailer);
  return publicCode;
}

extern "C" VXT_Result FinishInitialization(void) {
  const OperationSite site = VXT_ENTRY(FinishInitialization);
  ConnectionState& state = ConnectionState::Get();
  NestedTraceLine(state.connectionLogger, 2, 1, "In InProc_Vxt::FinishInitialization()", kTrailer);

  VXT_Result publicCode = 0;
  {
    std::lock_guard lock(state.initializationMutex);
    const ErrorContextScope context;
    if (!state.isInitialized) {
      const uint32_t code = CatchAll(site.file, site.line, [] { return RunInitializationSequence(); });
      if (code == 0) {
        state.isInitialized = true;
      } else {
        publicCode = ReportFailure(context.id(), code).publicCode;
      }
    }
    // Sent on every call, also when there was nothing to do or it failed.
    Telemetry_SendEvent("Client_Lifespan", "Client_Info");
    Telemetry_SendEvent("Server_Lifespan", "Server_Initialization");
  }
  NestedTraceLine(state.connectionLogger, 2, -1,
                  "Out InProc_Vxt::FinishInitialization() ErrorCode = ", Hex8{publicCode}, kTrailer);
  return publicCode;
}

extern "C" VXT_Result BeginDynamicInitialization(void) {
  return ForwardToTargetManager(VXT_ENTRY(BeginDynamicInitialization),
                                [](const TargetManagerComponent& t) { return t.BeginDynamicInitialization(); });
}

extern "C" VXT_Result CancelDynamicInitialization(void) {
  return ForwardToTargetManager(VXT_ENTRY(CancelDynamicInitialization),
                                [](const TargetManagerComponent& t) { return t.CancelDynamicInitialization(); });
}
