#include "ImageFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "RunControlCodes.h"

namespace voxtrel::platform::run_control {
namespace {

using target::Failure;
using target::Outcome;

// A file name in single quotes. Built by appending: optimizing compilers warn
// wrongly of an overlapping copy in chains that start with a literal.
std::string Quoted(const char* text) {
  std::string quoted = "'";
  quoted += text;
  quoted += '\'';
  return quoted;
}

Outcome ReadFile(const char* fileName, uint64_t maxSize, std::string& contents) {
  std::error_code error;
  const auto size = std::filesystem::file_size(fileName, error);
  if (error) return Failure{kOperationFailed, "cannot read " + Quoted(fileName) + ": " + error.message()};
  if (size > maxSize) return Failure{kMemoryLengthInvalid, Quoted(fileName) + " is larger than memory can take here"};
  std::ifstream file(fileName, std::ios::binary);
  contents.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  if (!file && !file.eof()) return Failure{kOperationFailed, "cannot read " + Quoted(fileName)};
  return std::nullopt;
}

// Adjacent chunks as one, so that a load writes as few pieces as it can.
std::vector<HexChunk> Merged(std::vector<HexChunk> chunks) {
  std::sort(chunks.begin(), chunks.end(), [](const HexChunk& a, const HexChunk& b) { return a.address < b.address; });
  std::vector<HexChunk> merged;
  for (HexChunk& chunk : chunks) {
    if (!merged.empty() && merged.back().address + merged.back().bytes.size() == chunk.address) {
      merged.back().bytes.insert(merged.back().bytes.end(), chunk.bytes.begin(), chunk.bytes.end());
    } else {
      merged.push_back(std::move(chunk));
    }
  }
  return merged;
}

}  // namespace

Outcome ParseImageType(const char* fileType, ImageType& type) {
  std::string name(fileType);
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (name == "bin") {
    type = ImageType::Binary;
  } else if (name == "hex") {
    type = ImageType::IntelHex;
  } else {
    return Failure{kNotSupported, "the file type '" + std::string(fileType) + "' is not \"bin\" or \"hex\""};
  }
  return std::nullopt;
}

Outcome CheckNoOptions(const char* options, const char* argument) {
  if (options != nullptr && options[0] != '\0')
    return Failure{kNotSupported, std::string(argument) + " '" + options + "' are not supported; pass \"\""};
  return std::nullopt;
}

Outcome ReadImage(const char* fileName, ImageType type, uint64_t maxBytes, const char* bound,
                  std::vector<HexChunk>& chunks) {
  std::string contents;
  // Intel HEX takes a little over twice as many characters as bytes.
  if (auto refused = ReadFile(fileName, type == ImageType::Binary ? maxBytes : 4 * maxBytes + 1024, contents))
    return refused;
  chunks.clear();
  if (type == ImageType::Binary) {
    chunks.push_back({0, std::vector<uint8_t>(contents.begin(), contents.end())});
  } else if (auto refused = ParseIntelHex(contents, chunks)) {
    return refused;
  }
  chunks = Merged(std::move(chunks));
  for (const HexChunk& chunk : chunks) {
    if (chunk.address + chunk.bytes.size() > maxBytes)
      return Failure{kMemoryLengthInvalid, Quoted(fileName) + " reaches beyond " + bound};
  }
  return std::nullopt;
}

Outcome CheckOverwrite(const char* fileName, bool overwrite) {
  if (!overwrite && std::filesystem::exists(fileName))
    return Failure{kAccessDenied, Quoted(fileName) + " exists; it is replaced only when asked to overwrite it"};
  return std::nullopt;
}

Outcome WriteImage(const char* fileName, ImageType type, const std::vector<uint8_t>& bytes) {
  std::ofstream file(fileName, std::ios::binary | std::ios::trunc);
  if (type == ImageType::Binary) {
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  } else {
    file << WriteIntelHex(bytes);
  }
  file.close();
  if (!file) return Failure{kOperationFailed, "cannot write " + Quoted(fileName) + ": " + std::strerror(errno)};
  return std::nullopt;
}

}  // namespace voxtrel::platform::run_control
