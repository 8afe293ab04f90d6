#include "InitializationSequence.h"
#include "BindTable.h"

#include "ConnectionState.h"
#include "InProc_AsmDasm.h"
#include "InProc_Break.h"
#include "InProc_Breakpoint.h"
#include "InProc_BreakpointManagement.h"
#include "InProc_Dma.h"
#include "InProc_Event.h"
#include "InProc_General.h"
#include "InProc_InterfacePins.h"
#include "InProc_InterfacePort.h"
#include "InProc_Memory.h"
#include "InProc_PlatformControl.h"
#include "InProc_Precondition.h"
#include "InProc_Register.h"
#include "InProc_RunControlConfiguration.h"
#include "InProc_StatePort.h"
#include "TargetManager.h"
#include "frame/InternalCodes.h"

namespace vxt {
namespace {

// The target's topology is complete once the TargetManager finishes, and the
// early RunControl start on a topology event is no longer needed.
uint32_t FinishTarget() {
  const TargetManagerComponent* targetManager = nullptr;
  if (const uint32_t code = Voxtrel_GetTargetManager(&targetManager); code != 0) return code;
  const uint32_t code = targetManager != nullptr ? targetManager->FinishInitialization() : code::kInvalidArgument;
  ConnectionState::Get().DropTopologySubscription();
  return code;
}

// The general service learns of departing clients from the "Client" events.
uint32_t BindGeneral() {
  InProc_General& general = InProc_General::Instance();
  if (general.closeCallbackSubscribed) return 0;
  const uint32_t commonCode = BindTable(&Voxtrel_GetCommon, general.common);
  const uint32_t brokerCode = BindTable(&Voxtrel_GetEventBroker, general.eventBroker);
  if (commonCode == 0 && brokerCode == 0 && general.eventBroker != nullptr)
    general.eventBroker->Subscribe("Client", &InProc_General::_ClientCloseCallback, nullptr, "InProc_General");
  general.closeCallbackSubscribed = true;
  return commonCode != 0 ? commonCode : brokerCode;
}

uint32_t BindRunControlConfiguration() {
  return BindTable(&Voxtrel_GetRunControl, InProc_RunControlConfiguration::Instance().runControl);
}

uint32_t BindBreak() {
  InProc_Break& service = InProc_Break::Instance();
  if (const uint32_t code = BindTable(&Voxtrel_GetPlatformControl, service.platformControl); code != 0) return code;
  if (const uint32_t code = BindTable(&Voxtrel_GetRunControl, service.runControl); code != 0) return code;
  return BindTable(&Voxtrel_GetTargetManager, service.targetManager);
}

uint32_t BindBreakpoint() { return BindTable(&Voxtrel_GetRunControl, InProc_Breakpoint::Instance().runControl); }
uint32_t BindBreakpointManagement() {
  return BindTable(&Voxtrel_GetRunControl, InProc_BreakpointManagement::Instance().runControl);
}
uint32_t BindMemory() { return BindTable(&Voxtrel_GetRunControl, InProc_Memory::Instance().runControl); }
uint32_t BindRegister() { return BindTable(&Voxtrel_GetRunControl, InProc_Register::Instance().runControl); }
uint32_t BindStatePort() { return InProc_StatePort::Instance().Initialize(); }
uint32_t BindPlatformControl() {
  return BindTable(&Voxtrel_GetPlatformControl, InProc_PlatformControl::Instance().platformControl);
}

// The interface port component reports its events through a callback.
uint32_t BindInterfacePort() {
  const InterfacePortComponent*& table = InProc_InterfacePort::Instance().interfacePort;
  if (const uint32_t code = BindTable(&Voxtrel_GetInterfacePort, table); code != 0) return code;
  if (table == nullptr) return code::kInvalidArgument;
  if (const uint32_t code = table->Initialize(); code != 0) return code;
  return table->SetEventCallback(&InterfacePortEventCallback);
}

uint32_t BindAsmDasm() { return BindTable(&Voxtrel_GetRunControl, InProc_AsmDasm::Instance().runControl); }

// The pins service copes with missing tables itself, so its getters never
// stop the sequence.
uint32_t BindInterfacePins() {
  InProc_InterfacePins& service = InProc_InterfacePins::Instance();
  BindTable(&Voxtrel_GetInterfacePins, service.interfacePins);
  BindTable(&Voxtrel_GetPlatformControl, service.platformControl);
  return 0;
}

uint32_t BindPrecondition() {
  return BindTable(&Voxtrel_GetPrecondition, InProc_Precondition::Instance().precondition);
}
uint32_t BindDma() { return BindTable(&Voxtrel_GetDma, InProc_Dma::Instance().dma); }

using Step = uint32_t (*)();

// The fixed order of the sequence.
constexpr Step kSequence[] = {
    &FinishTarget,
    &BindGeneral,
    &EnsureRunControlInitialized,
    &BindRunControlConfiguration,
    &BindBreak,
    &BindBreakpoint,
    &BindBreakpointManagement,
    &BindMemory,
    &BindRegister,
    &BindStatePort,
    &BindPlatformControl,
    &BindInterfacePort,
    &BindAsmDasm,
    &BindInterfacePins,
    &BindPrecondition,
    &BindDma,
};

}  // namespace

uint32_t RunInitializationSequence() {
  for (const Step step : kSequence) {
    if (const uint32_t code = step(); code != 0) return code;
  }
  return 0;
}

}  // namespace vxt
