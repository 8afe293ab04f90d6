// The Memory service's addresses and images: conversion between address
// kinds and to and from text, cache invalidation, and loading and saving
// memory files.
#include "GluedArg.h"
#include "InProc_Memory.h"
#include "NoteNull.h"
#include "frame/Frame.h"

namespace vxt {
namespace {

using frame::AddressText;
using frame::AddressTypeName;
using frame::Bool;
using frame::Call;
using frame::Enum;
using frame::Hex16;
using frame::Hex8;
using frame::Out;
using frame::Quoted;
using frame::TraceArgs;
using Table = RunControlComponent;
using AddressTypeText = Enum<&AddressTypeName>;

// Fields of a fixed-size text buffer are read no further than its size.
Quoted AddressTextBuffer(const char* buffer) { return Quoted{buffer, VXT_ADDRESS_TEXT_SIZE}; }

}  // namespace

VXT_Result InProc_Memory::ConvertAddress(uint32_t deviceId, const VXT_Address* sourceAddress,
                                         VXT_AddressType destAddressType, VXT_Address* destAddress) {
  return RunOperation(
      logger, VXT_OPERATION(Memory, ConvertAddress).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "sourceAddress", AddressText{sourceAddress}, "destAddressType",
                AddressTypeText{destAddressType}, "destAddress", AddressText{destAddress}),
      TraceArgs("destAddress", AddressText{destAddress}), [&](Call& call) {
        call.NotNull(sourceAddress, "sourceAddress").Core([&] {
          return _CheckAddress(destAddress, ReportArgument{call, "destAddress"});
        });
        return call.Core(runControl, [&](const Table& t) {
          return t.ConvertAddress(deviceId, sourceAddress, destAddressType, destAddress);
        });
      });
}

VXT_Result InProc_Memory::AddressToString(const VXT_Address* address, char* buffer) {
  return RunOperation(
      logger, VXT_OPERATION(Memory, AddressToString), TraceArgs("address", AddressText{address}),
      TraceArgs("buffer", AddressTextBuffer(buffer)), [&](Call& call) {
        return call.NotNull(address, "address").NotNull(buffer, "buffer").Core(runControl, [&](const Table& t) {
          return t.AddressToString(address, buffer);
        });
      });
}

VXT_Result InProc_Memory::AddressFromString(const char* addressAsString, VXT_Address* address) {
  return RunOperation(logger, VXT_OPERATION(Memory, AddressFromString),
                      TraceArgs("addressAsString", Quoted{addressAsString}, "address", AddressText{address}),
                      TraceArgs("address", AddressText{address}), [&](Call& call) {
                        NoteNull(call, addressAsString, "addressAsString");
                        NoteNull(call, address, "address");
                        call.Core([&] { return _CheckAddress(address, ReportArgument{call, "address"}); });
                        return call.Core(runControl,
                                         [&](const Table& t) { return t.AddressFromString(addressAsString, address); });
                      });
}

VXT_Result InProc_Memory::InvalidateCache(uint32_t deviceId, uint32_t writeModifiedCacheToMainMemory,
                                          uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Memory, InvalidateCache).Counted(),
      TraceArgs("deviceId", Hex8{deviceId}, "writeModifiedCacheToMainMemory", Bool{writeModifiedCacheToMainMemory}),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        return call.Core(runControl, [&](const Table& t) {
          return t.InvalidateCache(deviceId, writeModifiedCacheToMainMemory != 0, operationToken);
        });
      });
}

VXT_Result InProc_Memory::LoadMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                                     const VXT_Address* toAddress, const char* fileType, const char* loadOptions,
                                     uint64_t* operationToken) {
  return RunOperation(
      logger, VXT_OPERATION(Memory, LoadMemory).Counted(),
      TraceArgs("deviceId", Glued(Hex8{deviceId}, "fileName", Quoted{fileName}), "fromAddress",
                AddressText{fromAddress}, "toAddress",
                Glued(Glued(AddressText{toAddress}, "fileType", Quoted{fileType}), "loadOptions", Quoted{loadOptions})),
      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
        NoteNull(call, fileName, "fileName");
        NoteNull(call, fileType, "fileType");
        NoteNull(call, operationToken, "operationToken");
        return call.Core(runControl, [&](const Table& t) {
          return t.LoadMemory(deviceId, fileName, fromAddress, toAddress, fileType, loadOptions, operationToken);
        });
      });
}

VXT_Result InProc_Memory::SaveMemory(uint32_t deviceId, const char* fileName, const VXT_Address* fromAddress,
                                     const VXT_Address* toAddress, uint32_t overwriteFile, const char* fileType,
                                     const char* saveOptions, uint64_t* operationToken) {
  return RunOperation(logger, VXT_OPERATION(Memory, SaveMemory).Counted(),
                      TraceArgs("deviceId", Glued(Hex8{deviceId}, "fileName", Quoted{fileName}), "fromAddress",
                                AddressText{fromAddress}, "toAddress",
                                Glued(Glued(Glued(AddressText{toAddress}, "overwriteFile", Bool{overwriteFile}),
                                            "fileType", Quoted{fileType}),
                                      "saveOptions", Quoted{saveOptions})),
                      TraceArgs("operationToken", Out<Hex16>(operationToken)), [&](Call& call) {
                        NoteNull(call, fileName, "fileName");
                        NoteNull(call, fileType, "fileType");
                        NoteNull(call, operationToken, "operationToken");
                        return call.Core(runControl, [&](const Table& t) {
                          return t.SaveMemory(deviceId, fileName, fromAddress, toAddress, overwriteFile != 0, fileType,
                                              saveOptions, operationToken);
                        });
                      });
}

}  // namespace vxt
