#include "Assembler.h"

#include <Zydis/Zydis.h>

#include <array>
#include <cctype>
#include <optional>
#include <string>

#include "AssemblyParser.h"
#include "Disassembler.h"
#include "ZydisModes.h"

namespace voxtrel::platform::assembler {
namespace {

// The text gives numbers as the disassembler writes them: an immediate of
// an 8-, 16- or 32-bit operand, a 32-bit displacement or a branch target
// of 16- and 32-bit code without the sign extension the encoder needs
// ("add al, 0xEB", "call 0xFFFFFFF0"). Such a number is tried both ways.
uint64_t SignExtended(uint64_t value) {
  for (const int bits : {8, 16, 32}) {
    const uint64_t top = uint64_t{1} << (bits - 1);
    if (value < (top << 1)) return (value & top) != 0 ? value | ~((top << 1) - 1) : value;
  }
  return value;
}

// A memory operand the text gives no size for ("lea eax, [edi]",
// "fnsave [bx+si*1]") takes whatever size the instruction has; one whose
// size the text gives is tried with the others too, since the text of a
// few says another size than the encoder knows them by ("lgdt fword ptr"
// of 16-bit code).
// The x87 environment and state images are 14/28 and 94/108 bytes.
// The x87 environment and state images are 14/28 and 94/108 bytes, the
// x87 and SSE state 512.
constexpr std::array<uint16_t, 15> kOtherSizes{0, 1, 2, 4, 6, 8, 10, 16, 32, 64, 14, 28, 94, 108, 512};

std::optional<std::vector<uint8_t>> EncodeOnce(ZydisEncoderRequest request, bool ripRelative, uint64_t address) {
  uint8_t buffer[ZYDIS_MAX_INSTRUCTION_LENGTH];
  ZyanUSize length = sizeof buffer;
  // A relative branch names its absolute target, which the encoder turns
  // into a displacement from `address`; an operand relative to RIP is
  // written relative already and is encoded as it stands.
  const ZyanStatus status = ripRelative ? ZydisEncoderEncodeInstruction(&request, buffer, &length)
                                        : ZydisEncoderEncodeInstructionAbsolute(&request, buffer, &length, address);
  if (!ZYAN_SUCCESS(status)) return std::nullopt;
  return std::vector<uint8_t>(buffer, buffer + length);
}

// Where the bytes branch to from `address`; nothing if they do not branch.
std::optional<uint64_t> BranchOf(InstructionMode mode, const std::vector<uint8_t>& bytes, uint64_t address) {
  const ZydisDecoder decoder = MakeDecoder(mode);
  ZydisDecodedInstruction instruction;
  ZydisDecodedOperand operands[ZYDIS_MAX_OPERAND_COUNT];
  if (!ZYAN_SUCCESS(ZydisDecoderDecodeFull(&decoder, bytes.data(), bytes.size(), &instruction, operands)))
    return std::nullopt;
  for (uint8_t i = 0; i < instruction.operand_count_visible; ++i) {
    if (operands[i].type != ZYDIS_OPERAND_TYPE_IMMEDIATE || !operands[i].imm.is_relative) continue;
    ZyanU64 target = 0;
    if (!ZYAN_SUCCESS(ZydisCalcAbsoluteAddress(&instruction, &operands[i], address, &target))) return std::nullopt;
    return target;
  }
  return std::nullopt;
}

bool IsRelativeBranch(ZydisMnemonic mnemonic) {
  const std::string_view name = ZydisMnemonicGetString(mnemonic);
  return name.starts_with("j") || name == "call" || name.starts_with("loop") || name == "xbegin";
}

// The immediate of a relative branch: its absolute target.
ZydisEncoderOperand* BranchTargetOperand(ZydisEncoderRequest& request) {
  if (!IsRelativeBranch(request.mnemonic)) return nullptr;
  for (uint8_t i = 0; i < request.operand_count; ++i) {
    if (request.operands[i].type == ZYDIS_OPERAND_TYPE_IMMEDIATE) return &request.operands[i];
  }
  return nullptr;
}

// A relative branch. 16- and 32-bit code wraps around its address space,
// which the encoder does not know: the branch is encoded as if it stood in
// the middle of the space, with the same distance to its target. Then the
// encoder works out the displacement from the length it expects the
// instruction to have, and misjudges it when it has to take a longer form
// than it thought ("jno" 0x80 bytes ahead) or a prefix it does not count
// ("bnd jnz"). So every encoding is checked against the target; a miss is
// encoded again with a short, then a near displacement of fixed width,
// whose length is known, moving the target by what the first try missed.
std::optional<std::vector<uint8_t>> EncodeBranch(InstructionMode mode, ZydisEncoderRequest request, uint64_t address) {
  ZydisEncoderOperand& target = *BranchTargetOperand(request);
  if (mode != InstructionMode::Bits64) {
    const uint64_t middle = mode == InstructionMode::Bits16 ? 0x8000 : 0x80000000;
    const uint64_t distance = RuntimeAddress(mode, target.imm.u - address);
    target.imm.u = RuntimeAddress(mode, middle + distance - (distance >= middle ? 2 * middle : 0));
    address = middle;
  }
  const uint64_t wanted = target.imm.u;
  const ZydisBranchWidth nearWidth = mode == InstructionMode::Bits16 ? ZYDIS_BRANCH_WIDTH_16 : ZYDIS_BRANCH_WIDTH_32;
  for (const ZydisBranchWidth width : {ZYDIS_BRANCH_WIDTH_NONE, ZYDIS_BRANCH_WIDTH_8, nearWidth}) {
    request.branch_width = width;
    target.imm.u = wanted;
    // With its width fixed, the branch keeps its length when its target moves.
    for (int attempt = 0; attempt < (width == ZYDIS_BRANCH_WIDTH_NONE ? 1 : 2); ++attempt) {
      const auto bytes = EncodeOnce(request, false, address);
      const auto branch = bytes ? BranchOf(mode, *bytes, address) : std::nullopt;
      if (!branch) break;
      if (*branch == wanted) return bytes;
      target.imm.u += wanted - *branch;
    }
  }
  return std::nullopt;
}

std::optional<std::vector<uint8_t>> Encode(InstructionMode mode, ZydisEncoderRequest request, bool ripRelative,
                                           uint64_t address) {
  if (BranchTargetOperand(request) != nullptr) return EncodeBranch(mode, request, address);
  return EncodeOnce(request, ripRelative, address);
}

// The request with its immediates, its displacement or both sign-extended.
ZydisEncoderRequest WithSignExtension(ZydisEncoderRequest request, bool immediates, bool displacements) {
  for (uint8_t i = 0; i < request.operand_count; ++i) {
    ZydisEncoderOperand& operand = request.operands[i];
    if (immediates && operand.type == ZYDIS_OPERAND_TYPE_IMMEDIATE) operand.imm.u = SignExtended(operand.imm.u);
    if (displacements && operand.type == ZYDIS_OPERAND_TYPE_MEMORY)
      operand.mem.displacement = static_cast<int64_t>(SignExtended(static_cast<uint64_t>(operand.mem.displacement)));
  }
  return request;
}

ZydisEncoderOperand* MemoryOperand(ZydisEncoderRequest& request) {
  for (uint8_t i = 0; i < request.operand_count; ++i) {
    ZydisEncoderOperand& operand = request.operands[i];
    if (operand.type == ZYDIS_OPERAND_TYPE_MEMORY) return &operand;
  }
  return nullptr;
}

// Lower case, one blank wherever the text has any: the disassembler's text
// and the client's compare equal when they say the same.
std::string Normalized(std::string_view text) {
  std::string normal;
  for (const char c : text) {
    if (std::isspace(static_cast<unsigned char>(c))) {
      if (!normal.empty() && normal.back() != ' ') normal += ' ';
    } else {
      normal += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
  }
  if (!normal.empty() && normal.back() == ' ') normal.pop_back();
  return normal;
}

// Every way of reading the text the encoder takes, most literal first: with
// the numbers as written or sign-extended, with the sizes an unsized memory
// operand may have, and with each operand size (the disassembler shows an
// instruction's operand size only through the digits of a negative
// immediate, as in "push 0xFFFFFFB4" of 16-bit code). `take` is given each
// encoding and says whether to stop.
template <class Take>
void ForEachEncoding(InstructionMode mode, const ParsedInstruction& parsed, uint64_t address, Take take) {
  for (const ZydisOperandSizeHint hint : {ZYDIS_OPERAND_SIZE_HINT_NONE, ZYDIS_OPERAND_SIZE_HINT_16,
                                          ZYDIS_OPERAND_SIZE_HINT_32, ZYDIS_OPERAND_SIZE_HINT_64}) {
    for (const int extend : {0, 1, 2, 3}) {
      ZydisEncoderRequest request = WithSignExtension(parsed.request, (extend & 1) != 0, (extend & 2) != 0);
      if (hint != ZYDIS_OPERAND_SIZE_HINT_NONE) request.operand_size_hint = hint;
      ZydisEncoderOperand* memory = MemoryOperand(request);
      const uint16_t written = memory == nullptr ? 0 : memory->mem.size;
      if (auto bytes = Encode(mode, request, parsed.ripRelative, address); bytes && take(std::move(*bytes))) return;
      for (const uint16_t size : kOtherSizes) {
        if (memory == nullptr) break;
        if (size == written) continue;
        memory->mem.size = size;
        if (auto bytes = Encode(mode, request, parsed.ripRelative, address); bytes && take(std::move(*bytes))) return;
      }
    }
  }
}

}  // namespace

// The first encoding that disassembles to the text as given, else the first
// encoding at all: text the disassembler wrote comes back as it was, and
// text a user wrote ("mov eax, 1") as the plainest instruction that says it.
Assembly Assemble(InstructionMode mode, std::string_view text, uint64_t address) {
  const ParsedInstruction parsed = ParseInstruction(mode, text);
  if (!parsed.ok) return {false, parsed.error, {}};

  const std::string wanted = Normalized(text);
  std::optional<std::vector<uint8_t>> first;
  std::optional<std::vector<uint8_t>> exact;
  ForEachEncoding(mode, parsed, RuntimeAddress(mode, address), [&](std::vector<uint8_t> bytes) {
    if (Normalized(Disassemble(mode, bytes, address).text) == wanted) {
      exact = std::move(bytes);
      return true;
    }
    if (!first) first = std::move(bytes);
    return false;
  });
  if (exact) return {true, {}, std::move(*exact)};
  if (first) return {true, {}, std::move(*first)};
  return {false, "no encoding of '" + std::string(text) + "' in this mode", {}};
}

}  // namespace voxtrel::platform::assembler
