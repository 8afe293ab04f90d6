#include "MemoryAccess.h"

#include <string>
#include <vector>

#include "RunControlCodes.h"
#include "ThreadAddressing.h"

namespace voxtrel::platform::run_control {
namespace {

std::string Describe(const char* verb, uint64_t size, const VXT_Address& address) {
  return std::string(verb) + " " + HexText(size) + " bytes at " + HexText(address.offset);
}

target::Outcome PiecesOf(cpu::CpuBackend& backend, uint32_t thread, const VXT_Address& address, uint64_t size,
                         std::vector<PhysicalPiece>& pieces) {
  if (auto refused = CheckTransferSize(size)) return refused;
  return ThreadAddressing(backend, thread).Pieces(address, size, pieces);
}

}  // namespace

target::Outcome ReadMemoryAt(cpu::CpuBackend& backend, uint32_t thread, const VXT_Address& address,
                             std::span<uint8_t> bytes) {
  std::vector<PhysicalPiece> pieces;
  if (auto refused = PiecesOf(backend, thread, address, bytes.size(), pieces)) return refused;
  uint64_t done = 0;
  for (const PhysicalPiece& piece : pieces) {
    if (const auto result = backend.ReadPhysical(piece.physical, bytes.subspan(done, piece.length));
        result != cpu::CpuResult::Ok)
      return CpuFailure(result,
                        Describe("reading", bytes.size(), address) + " (physical " + HexText(piece.physical) + ")");
    done += piece.length;
  }
  return std::nullopt;
}

target::Outcome WriteMemoryAt(cpu::CpuBackend& backend, uint32_t thread, const VXT_Address& address,
                              std::span<const uint8_t> bytes) {
  std::vector<PhysicalPiece> pieces;
  if (auto refused = PiecesOf(backend, thread, address, bytes.size(), pieces)) return refused;
  if (pieces.size() == 1) {
    if (const auto result = backend.WritePhysical(pieces.front().physical, bytes); result != cpu::CpuResult::Ok)
      return CpuFailure(result, Describe("writing", bytes.size(), address));
    return std::nullopt;
  }
  // Pieces on several pages: what was there is kept to be put back.
  std::vector<uint8_t> before(bytes.size());
  uint64_t done = 0;
  for (const PhysicalPiece& piece : pieces) {
    if (const auto result = backend.ReadPhysical(piece.physical, std::span(before).subspan(done, piece.length));
        result != cpu::CpuResult::Ok)
      return CpuFailure(result,
                        Describe("writing", bytes.size(), address) + " (physical " + HexText(piece.physical) + ")");
    done += piece.length;
  }
  done = 0;
  for (size_t i = 0; i < pieces.size(); ++i) {
    const PhysicalPiece& piece = pieces[i];
    if (const auto result = backend.WritePhysical(piece.physical, bytes.subspan(done, piece.length));
        result != cpu::CpuResult::Ok) {
      uint64_t undone = 0;
      for (size_t j = 0; j < i; ++j) {
        backend.WritePhysical(pieces[j].physical, std::span<const uint8_t>(before).subspan(undone, pieces[j].length));
        undone += pieces[j].length;
      }
      return CpuFailure(result,
                        Describe("writing", bytes.size(), address) + " (physical " + HexText(piece.physical) + ")");
    }
    done += piece.length;
  }
  return std::nullopt;
}

target::Outcome CheckTransferSize(uint64_t size) {
  if (size > cpu::kMaxTransferBytes)
    return target::Failure{kMemoryLengthInvalid, HexText(size) + " bytes are more than one transfer moves (" +
                                                     HexText(cpu::kMaxTransferBytes) + ")"};
  return std::nullopt;
}

target::Outcome CheckAddressRecord(const VXT_Address* address, const char* argument) {
  if (auto refused = CheckNotNull(address, argument)) return refused;
  if (address->structureSize != VXT_ADDRESS_SIZE)
    return target::Failure{kStructureSize, std::string(argument) + ": structure size not initialized"};
  return std::nullopt;
}

target::Outcome CheckNotNull(const void* pointer, const char* argument) {
  if (pointer == nullptr) return target::Failure{target::kNullArgument, std::string(argument) + " is a null pointer"};
  return std::nullopt;
}

}  // namespace voxtrel::platform::run_control
