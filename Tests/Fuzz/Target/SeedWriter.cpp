// Writes the fuzzer's seed corpus and its dictionary:
//   vxt_fuzz_seeds <corpus directory> <dictionary file>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "CallSequence.h"
#include "Seeds.h"
#include "VXT_ErrorCodes.h"

namespace {

void WriteDictionary(const char* path) {
  std::ofstream out(path);
  auto word = [&](const char* what, uint32_t value) {
    char line[96];
    std::snprintf(line, sizeof line, "%s=\"\\x%02x\\x%02x\\x%02x\\x%02x\"\n", what, value & 0xff, (value >> 8) & 0xff,
                  (value >> 16) & 0xff, value >> 24);
    out << line;
  };
  for (uint32_t size : vxt::fuzz::RecordSizes()) word("structure_size", size);
  for (uint32_t code : {VXT_E_INVALID_ARGUMENT, VXT_E_NOT_IMPLEMENTED, VXT_E_NOT_SUPPORTED, VXT_E_INVALID_HANDLE})
    word("status", code);
  for (uint32_t id : {0x03000000u, 0x0b000000u, 0x02000000u, 0x0d000000u, 0x7fffffffu}) word("id", id);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: vxt_fuzz_seeds <corpus directory> <dictionary file>\n");
    return 2;
  }
  const std::vector<std::vector<uint8_t>> seeds = vxt::fuzz::SeedSequences();
  for (size_t index = 0; index < seeds.size(); ++index) {
    std::ofstream file(std::string(argv[1]) + "/seed-" + std::to_string(index), std::ios::binary);
    file.write(reinterpret_cast<const char*>(seeds[index].data()), static_cast<std::streamsize>(seeds[index].size()));
  }
  WriteDictionary(argv[2]);
  return 0;
}
