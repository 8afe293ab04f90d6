#include "ZydisNames.h"

#include <string>
#include <unordered_map>

namespace voxtrel::platform::assembler {
namespace {

template <class Value>
using NameTable = std::unordered_map<std::string_view, Value>;

// The strings belong to Zydis and live as long as the process.
template <class Value, class NameOf>
NameTable<Value> BuildTable(int maxValue, NameOf nameOf) {
  NameTable<Value> table;
  for (int value = 1; value <= maxValue; ++value) {
    if (const char* name = nameOf(static_cast<Value>(value))) table.emplace(name, static_cast<Value>(value));
  }
  return table;
}

template <class Value>
std::optional<Value> Find(const NameTable<Value>& table, std::string_view name) {
  const auto found = table.find(name);
  if (found == table.end()) return std::nullopt;
  return found->second;
}

}  // namespace

std::optional<ZydisMnemonic> FindMnemonic(std::string_view name) {
  static const auto table = BuildTable<ZydisMnemonic>(ZYDIS_MNEMONIC_MAX_VALUE, &ZydisMnemonicGetString);
  return Find(table, name);
}

std::optional<ZydisRegister> FindRegister(std::string_view name) {
  static const auto table = BuildTable<ZydisRegister>(ZYDIS_REGISTER_MAX_VALUE, &ZydisRegisterGetString);
  return Find(table, name);
}

}  // namespace voxtrel::platform::assembler
