// A transfer through a client's shared memory region: the region's handle
// turned into an address, the transfer kept inside the region.
#pragma once

#include <cstdint>

#include "InProc_General.h"
#include "frame/Frame.h"

namespace vxt {

// Runs `transfer(table, regionAddress + bufferOffset)` for `byteCount`
// bytes, or ends the call: with the lookup's own public code when the handle
// is unknown (its frame has told the client), or with an argument error
// when the transfer would leave the region.
template <class Table, class Transfer>
uint32_t ThroughRegion(frame::Call& call, const Table* table, uint64_t sharedMemoryHandle, uint32_t bufferOffset,
                       uint32_t byteCount, Transfer transfer) {
  if (call.failed()) return call.code();
  InProc_General& general = InProc_General::Instance();
  void* base = nullptr;
  if (const VXT_Result looked = general.GetSharedMemoryAddress(sharedMemoryHandle, &base); looked != VXT_SUCCESS)
    return call.PassPublicCode(looked);
  const uint64_t end = static_cast<uint64_t>(bufferOffset) + byteCount;
  call.Require(end <= general._GetSharedMemorySize(sharedMemoryHandle), code::kOutOfRange, call.prefix(),
               " argument error (bufferOffset) : The transfer does not fit in the shared memory region");
  return call.Core(table, [&](const Table& t) { return transfer(t, static_cast<uint8_t*>(base) + bufferOffset); });
}

}  // namespace vxt
