// Intel HEX, the text form of memory images: records of data at 16-bit
// addresses, with extended segment (02) and extended linear (04) address
// records for the bits above, ending in an end-of-file record (01).
// Addresses are relative to where an image is loaded or saved from.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../Target/Failure.h"
#include "PlatformApi.h"

namespace voxtrel::platform::run_control {

// Bytes at an address of the image.
struct HexChunk {
  uint64_t address = 0;
  std::vector<uint8_t> bytes;
};

// Refuses text that is not whole Intel HEX: a bad record, a wrong checksum,
// data behind the end record or no end record at all.
VOXTREL_PLATFORM_API target::Outcome ParseIntelHex(std::string_view text, std::vector<HexChunk>& chunks);
// Records of 16 data bytes, extended linear addresses where needed.
VOXTREL_PLATFORM_API std::string WriteIntelHex(const std::vector<uint8_t>& bytes);

}  // namespace voxtrel::platform::run_control
