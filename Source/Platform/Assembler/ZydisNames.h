// Zydis names its mnemonics and registers but cannot look them up by name:
// these tables, built once from its own enumerations, can.
#pragma once

#include <Zydis/Zydis.h>

#include <optional>
#include <string_view>

namespace voxtrel::platform::assembler {

// Lower-case names, as the disassembler writes them.
std::optional<ZydisMnemonic> FindMnemonic(std::string_view name);
std::optional<ZydisRegister> FindRegister(std::string_view name);

}  // namespace voxtrel::platform::assembler
