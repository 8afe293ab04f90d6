// Memory images in files, raw bytes ("bin") or Intel HEX ("hex"), for the
// components that load and save target memory. An image's addresses count
// from where it is placed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "../Target/Failure.h"
#include "IntelHex.h"

namespace voxtrel::platform::run_control {

enum class ImageType { Binary, IntelHex };

// "bin" or "hex", in any case.
target::Outcome ParseImageType(const char* fileType, ImageType& type);
// No options are defined: null or empty only.
target::Outcome CheckNoOptions(const char* options, const char* argument);
// The image's bytes as adjacent chunks merged and in address order. An image
// of more than `maxBytes` bytes of memory is refused as reaching beyond
// `bound` (an argument's name), a file far larger unread.
target::Outcome ReadImage(const char* fileName, ImageType type, uint64_t maxBytes, const char* bound,
                          std::vector<HexChunk>& chunks);
// Refuses an existing file unless `overwrite` is set.
target::Outcome CheckOverwrite(const char* fileName, bool overwrite);
target::Outcome WriteImage(const char* fileName, ImageType type, const std::vector<uint8_t>& bytes);

}  // namespace voxtrel::platform::run_control
