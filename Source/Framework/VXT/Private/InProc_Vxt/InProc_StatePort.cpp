#include "InProc_StatePort.h"

#include "BindTable.h"

#include "Error.h"
#include "frame/InternalCodes.h"

namespace vxt {
namespace {
InProc_StatePort instance;
}  // namespace

InProc_StatePort& InProc_StatePort::Instance() { return instance; }

uint32_t InProc_StatePort::Initialize() {
  uint32_t result = BindTable(&Voxtrel_GetStatePort, statePort);
  if (result != 0)
    Voxtrel_ErrorPostError(result, "InProc_StatePort::Initialize - Error getting StatePort Interface", __FILE__,
                           __LINE__);
  if (statePort != nullptr) {
    result = statePort->Initialize();
  } else {
    Voxtrel_ErrorPostError(code::kInvalidArgument, "InProc_StatePort::Initialize - Error Null StatePort Interface",
                           __FILE__, __LINE__);
    if (result == 0) result = code::kInvalidArgument;
  }
  if (result != 0)
    Voxtrel_ErrorPostError(result, "InProc_StatePort::Initialize - Error Initializeing the StatePort Interface",
                           __FILE__, __LINE__);
  return result;
}

}  // namespace vxt
