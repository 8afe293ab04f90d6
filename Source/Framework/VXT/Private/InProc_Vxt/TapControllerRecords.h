// TAP controller records between the public form (VXT_TapController, with
// its structureSize) and the TargetManager's, and their trace form. Shared
// by the Device and Initialization services.
#pragma once

#include <cstring>
#include <ostream>
#include <vector>

#include "TargetManager.h"
#include "VXT_Topology.h"
#include "frame/Render.h"

namespace vxt {

// "{deviceType = CPU deviceSubType = Core stepping = B0 irLength = 8}": the
// texts without quotes, read no further than their fields.
struct TapControllerText {
  const VXT_TapController* record;
  friend std::ostream& operator<<(std::ostream& out, TapControllerText value) {
    const VXT_TapController& tap = *value.record;
    const auto field = [&out](const char* text) {
      out.write(text, static_cast<std::streamsize>(strnlen(text, VXT_TAP_CONTROLLER_TEXT_SIZE)));
    };
    out << "{deviceType = ";
    field(tap.deviceType);
    out << " deviceSubType = ";
    field(tap.deviceSubType);
    out << " stepping = ";
    field(tap.stepping);
    return out << " irLength = " << frame::Dec{tap.irLength} << "}";
  }
};

// Copies a text field into another of the same size, cut to size - 1 and
// terminated.
template <size_t Size>
void CopyField(char (&target)[Size], const char (&source)[Size]) {
  const size_t length = strnlen(source, Size - 1);
  std::memcpy(target, source, length);
  target[length] = '\0';
}

// The component's form of the caller's records, zero-filled first; their
// structureSize is not read.
inline std::vector<TargetManager_TapController> ComponentRecords(const VXT_TapController* tapControllers,
                                                                 uint32_t count) {
  std::vector<TargetManager_TapController> records(count, TargetManager_TapController{});
  for (uint32_t index = 0; index < count; ++index) {
    CopyField(records[index].deviceType, tapControllers[index].deviceType);
    CopyField(records[index].deviceSubType, tapControllers[index].deviceSubType);
    CopyField(records[index].stepping, tapControllers[index].stepping);
    records[index].irLength = tapControllers[index].irLength;
  }
  return records;
}

}  // namespace vxt
