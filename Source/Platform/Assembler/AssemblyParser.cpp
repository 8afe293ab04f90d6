#include "AssemblyParser.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstring>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "ZydisModes.h"
#include "ZydisNames.h"

namespace voxtrel::platform::assembler {
namespace {

using Prefix = std::pair<std::string_view, ZydisInstructionAttributes>;
constexpr std::array kPrefixes{
    Prefix{"lock", ZYDIS_ATTRIB_HAS_LOCK},         Prefix{"rep", ZYDIS_ATTRIB_HAS_REP},
    Prefix{"repe", ZYDIS_ATTRIB_HAS_REPE},         Prefix{"repz", ZYDIS_ATTRIB_HAS_REPE},
    Prefix{"repne", ZYDIS_ATTRIB_HAS_REPNE},       Prefix{"repnz", ZYDIS_ATTRIB_HAS_REPNE},
    Prefix{"bnd", ZYDIS_ATTRIB_HAS_BND},           Prefix{"xacquire", ZYDIS_ATTRIB_HAS_XACQUIRE},
    Prefix{"xrelease", ZYDIS_ATTRIB_HAS_XRELEASE}, Prefix{"notrack", ZYDIS_ATTRIB_HAS_NOTRACK},
};

using Segment = std::pair<std::string_view, ZydisInstructionAttributes>;
constexpr std::array kSegments{
    Segment{"cs", ZYDIS_ATTRIB_HAS_SEGMENT_CS}, Segment{"ss", ZYDIS_ATTRIB_HAS_SEGMENT_SS},
    Segment{"ds", ZYDIS_ATTRIB_HAS_SEGMENT_DS}, Segment{"es", ZYDIS_ATTRIB_HAS_SEGMENT_ES},
    Segment{"fs", ZYDIS_ATTRIB_HAS_SEGMENT_FS}, Segment{"gs", ZYDIS_ATTRIB_HAS_SEGMENT_GS},
};

using MemorySize = std::pair<std::string_view, uint16_t>;
constexpr std::array kMemorySizes{
    MemorySize{"byte", 1},     MemorySize{"word", 2},     MemorySize{"dword", 4},
    MemorySize{"fword", 6},    MemorySize{"qword", 8},    MemorySize{"tbyte", 10},
    MemorySize{"xmmword", 16}, MemorySize{"ymmword", 32}, MemorySize{"zmmword", 64},
};

template <class Table>
auto Lookup(const Table& table, std::string_view name) -> std::optional<decltype(table[0].second)> {
  for (const auto& [key, value] : table) {
    if (key == name) return value;
  }
  return std::nullopt;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
  return text;
}

// The first word and what follows it.
std::pair<std::string_view, std::string_view> FirstWord(std::string_view text) {
  text = Trim(text);
  const size_t end = std::min(text.find_first_of(" \t"), text.size());
  return {text.substr(0, end), Trim(text.substr(end))};
}

// "0x1f" (hexadecimal) or "31"; the whole text, nothing else.
std::optional<uint64_t> ParseNumber(std::string_view text) {
  int base = 10;
  if (text.starts_with("0x")) {
    text.remove_prefix(2);
    base = 16;
  }
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// A number with an optional sign, as two's complement.
std::optional<uint64_t> ParseSignedNumber(std::string_view text) {
  const bool negative = text.starts_with("-");
  if (negative || text.starts_with("+")) text.remove_prefix(1);
  const auto value = ParseNumber(Trim(text));
  if (!value) return std::nullopt;
  return negative ? ~*value + 1 : *value;
}

class Parser {
 public:
  explicit Parser(InstructionMode mode) { result_.request.machine_mode = MachineMode(mode); }

  ParsedInstruction Parse(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    auto [word, rest] = FirstWord(lower);
    while (const auto prefix = Lookup(kPrefixes, word)) {
      result_.request.prefixes |= *prefix;
      std::tie(word, rest) = FirstWord(rest);
    }
    if (word.empty()) return Fail("no instruction");
    const auto mnemonic = FindMnemonic(word);
    if (!mnemonic) return Fail("unknown mnemonic '" + std::string(word) + "'");
    result_.request.mnemonic = *mnemonic;

    if (const auto [modifier, operands] = FirstWord(rest); modifier == "far") {
      result_.request.branch_type = ZYDIS_BRANCH_TYPE_FAR;
      rest = operands;
    }
    if (rest.ends_with(",")) return Fail("an operand is missing after the last comma");
    while (!rest.empty() && result_.error.empty()) {
      const size_t comma = std::min(rest.find(','), rest.size());
      ParseOperand(Trim(rest.substr(0, comma)));
      rest = comma == rest.size() ? std::string_view{} : Trim(rest.substr(comma + 1));
    }
    if (!result_.error.empty()) return std::move(result_);
    result_.ok = true;
    return std::move(result_);
  }

 private:
  ParsedInstruction Fail(std::string error) {
    if (result_.error.empty()) result_.error = std::move(error);
    return std::move(result_);
  }
  void Error(std::string error) {
    if (result_.error.empty()) result_.error = std::move(error);
  }

  ZydisEncoderOperand* NextOperand() {
    ZydisEncoderRequest& request = result_.request;
    if (request.operand_count == ZYDIS_ENCODER_MAX_OPERANDS) {
      Error("too many operands");
      return nullptr;
    }
    return &request.operands[request.operand_count++];
  }

  void ParseOperand(std::string_view text) {
    if (text.empty()) return Error("an operand is missing");
    // Decorators come after the operand they belong to; a mask is an
    // operand of its own right behind it.
    std::optional<ZydisRegister> mask;
    while (text.ends_with("}")) {
      const size_t open = text.rfind('{');
      if (open == std::string_view::npos) return Error("unbalanced '}'");
      const std::string_view decorator = Trim(text.substr(open + 1, text.size() - open - 2));
      text = Trim(text.substr(0, open));
      if (decorator == "z") {
        result_.request.evex.zeroing_mask = ZYAN_TRUE;
      } else if (decorator.starts_with("1to")) {
        if (!SetBroadcast(decorator)) return Error("unknown broadcast '{" + std::string(decorator) + "}'");
      } else if (const auto maskRegister = FindRegister(decorator);
                 maskRegister && *maskRegister >= ZYDIS_REGISTER_K0 && *maskRegister <= ZYDIS_REGISTER_K7) {
        mask = maskRegister;
      } else {
        return Error("unknown decorator '{" + std::string(decorator) + "}'");
      }
    }
    ZydisEncoderOperand* operand = NextOperand();
    if (operand == nullptr) return;
    if (text.find('[') != std::string_view::npos) {
      ParseMemory(text, *operand);
    } else if (const size_t colon = text.find(':'); colon != std::string_view::npos) {
      ParsePointer(text.substr(0, colon), text.substr(colon + 1), *operand);
    } else if (const auto reg = FindRegister(text)) {
      operand->type = ZYDIS_OPERAND_TYPE_REGISTER;
      operand->reg.value = *reg;
    } else if (const auto value = ParseSignedNumber(text)) {
      operand->type = ZYDIS_OPERAND_TYPE_IMMEDIATE;
      operand->imm.u = *value;
    } else {
      return Error("cannot read the operand '" + std::string(text) + "'");
    }
    if (mask) {
      if (ZydisEncoderOperand* maskOperand = NextOperand()) {
        maskOperand->type = ZYDIS_OPERAND_TYPE_REGISTER;
        maskOperand->reg.value = *mask;
      }
    }
  }

  bool SetBroadcast(std::string_view decorator) {
    using Broadcast = std::pair<std::string_view, ZydisBroadcastMode>;
    static constexpr std::array kBroadcasts{
        Broadcast{"1to2", ZYDIS_BROADCAST_MODE_1_TO_2},   Broadcast{"1to4", ZYDIS_BROADCAST_MODE_1_TO_4},
        Broadcast{"1to8", ZYDIS_BROADCAST_MODE_1_TO_8},   Broadcast{"1to16", ZYDIS_BROADCAST_MODE_1_TO_16},
        Broadcast{"1to32", ZYDIS_BROADCAST_MODE_1_TO_32}, Broadcast{"1to64", ZYDIS_BROADCAST_MODE_1_TO_64},
    };
    const auto mode = Lookup(kBroadcasts, decorator);
    if (mode) result_.request.evex.broadcast = *mode;
    return mode.has_value();
  }

  void ParsePointer(std::string_view segment, std::string_view offset, ZydisEncoderOperand& operand) {
    const auto segmentValue = ParseNumber(Trim(segment));
    const auto offsetValue = ParseNumber(Trim(offset));
    if (!segmentValue || !offsetValue || *segmentValue > 0xFFFF || *offsetValue > 0xFFFFFFFF)
      return Error("cannot read the far pointer '" + std::string(segment) + ":" + std::string(offset) + "'");
    // The offset shows as many digits as the operand size has: "0x0DC1"
    // is a 16-bit far pointer also in 32-bit code.
    const size_t digits = Trim(offset).size() - 2;
    if (digits == 4) result_.request.branch_width = ZYDIS_BRANCH_WIDTH_16;
    if (digits == 8) result_.request.branch_width = ZYDIS_BRANCH_WIDTH_32;
    operand.type = ZYDIS_OPERAND_TYPE_POINTER;
    operand.ptr.segment = static_cast<uint16_t>(*segmentValue);
    operand.ptr.offset = static_cast<uint32_t>(*offsetValue);
  }

  // [size ptr] [seg:] [terms]
  void ParseMemory(std::string_view text, ZydisEncoderOperand& operand) {
    operand.type = ZYDIS_OPERAND_TYPE_MEMORY;
    const size_t open = text.find('[');
    const size_t close = text.rfind(']');
    if (close == std::string_view::npos || close < open || !Trim(text.substr(close + 1)).empty())
      return Error("unbalanced '[' in '" + std::string(text) + "'");
    std::string_view head = Trim(text.substr(0, open));
    if (head.ends_with(":")) {
      const size_t start = std::min(head.find_last_of(" \t") + 1, head.size() - 1);
      const auto segment = Lookup(kSegments, head.substr(start, head.size() - 1 - start));
      if (!segment) return Error("unknown segment in '" + std::string(text) + "'");
      result_.request.prefixes |= *segment;
      head = Trim(head.substr(0, start));
    }
    if (!head.empty()) {
      const auto [sizeName, ptr] = FirstWord(head);
      const auto size = Lookup(kMemorySizes, sizeName);
      if (!size || ptr != "ptr") return Error("unknown operand size '" + std::string(head) + "'");
      operand.mem.size = *size;
    }
    ParseTerms(text.substr(open + 1, close - open - 1), operand);
  }

  // base + index*scale + displacement, in any order, each term signed.
  void ParseTerms(std::string_view terms, ZydisEncoderOperand& operand) {
    terms = Trim(terms);
    if (terms.empty()) return Error("empty memory operand");
    while (!terms.empty()) {
      bool negative = false;
      if (terms.front() == '+' || terms.front() == '-') {
        negative = terms.front() == '-';
        terms = Trim(terms.substr(1));
      }
      const size_t end = std::min(terms.find_first_of("+-"), terms.size());
      ParseTerm(Trim(terms.substr(0, end)), negative, operand);
      if (!result_.error.empty()) return;
      terms = Trim(terms.substr(end));
    }
  }

  void ParseTerm(std::string_view term, bool negative, ZydisEncoderOperand& operand) {
    auto& mem = operand.mem;
    if (const size_t star = term.find('*'); star != std::string_view::npos) {
      auto reg = FindRegister(Trim(term.substr(0, star)));
      auto scale = ParseNumber(Trim(term.substr(star + 1)));
      if (!reg) {  // scale*reg
        reg = FindRegister(Trim(term.substr(star + 1)));
        scale = ParseNumber(Trim(term.substr(0, star)));
      }
      if (!reg || !scale || negative || mem.index != ZYDIS_REGISTER_NONE)
        return Error("cannot read the index '" + std::string(term) + "'");
      mem.index = *reg;
      mem.scale = static_cast<uint8_t>(*scale);
    } else if (const auto reg = FindRegister(term)) {
      if (negative) return Error("a register cannot be subtracted");
      if (mem.base == ZYDIS_REGISTER_NONE) {
        mem.base = *reg;
        if (*reg == ZYDIS_REGISTER_RIP || *reg == ZYDIS_REGISTER_EIP) result_.ripRelative = true;
      } else if (mem.index == ZYDIS_REGISTER_NONE) {
        mem.index = *reg;
        mem.scale = 1;
      } else {
        return Error("too many registers in a memory operand");
      }
    } else if (const auto value = ParseNumber(term)) {
      // Summed as unsigned numbers: the text may hold any number of terms.
      mem.displacement =
          static_cast<int64_t>(static_cast<uint64_t>(mem.displacement) + (negative ? ~*value + 1 : *value));
    } else {
      return Error("cannot read '" + std::string(term) + "' in a memory operand");
    }
  }

  ParsedInstruction result_;
};

}  // namespace

ParsedInstruction ParseInstruction(InstructionMode mode, std::string_view text) { return Parser(mode).Parse(text); }

}  // namespace voxtrel::platform::assembler
