// vxt bits: a bit vector calculator. The line is read by the grammar of
// BitsExpression.h, then every vector is made, combined and shown by the
// library's BitData services, so what it prints is what a client gets.
#include <cstdint>
#include <iostream>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "BitsExpression.h"
#include "CommandRegistry.h"

namespace vxt::cli {
namespace {

// A vector the library holds for this command, destroyed with it.
class HeldVector {
 public:
  explicit HeldVector(IInternalService_BitData& bits) : bits_(&bits) {}
  HeldVector(HeldVector&& other) noexcept : bits_(other.bits_), record_(std::exchange(other.record_, Empty())) {}
  HeldVector& operator=(HeldVector&&) = delete;
  HeldVector(const HeldVector&) = delete;
  HeldVector& operator=(const HeldVector&) = delete;
  ~HeldVector() {
    if (record_.dataHandle != 0) bits_->Destroy(&record_);
  }

  VXT_BitData* get() { return &record_; }

 private:
  static VXT_BitData Empty() { return VXT_BitData{VXT_BITDATA_SIZE, 0, 0}; }

  IInternalService_BitData* bits_;
  VXT_BitData record_ = Empty();
};

using TextOperation = VXT_Result (IInternalService_BitDataOperations::*)(const VXT_BitData*, char*, uint32_t,
                                                                         uint32_t*);

struct TextForm {
  const char* name;   // As --as takes it
  const char* label;  // In the table of all forms
  TextOperation operation;
  const char* call;
};

constexpr TextForm kTextForms[] = {
    {"general", "general     ", &IInternalService_BitDataOperations::ToString, "ToString"},
    {"hex", "hexadecimal ", &IInternalService_BitDataOperations::ToStringHexadecimal, "ToStringHexadecimal"},
    {"binary", "binary      ", &IInternalService_BitDataOperations::ToStringBinary, "ToStringBinary"},
    {"decimal", "decimal     ", &IInternalService_BitDataOperations::ToStringDecimal, "ToStringDecimal"},
};

class Calculator {
 public:
  explicit Calculator(Session& session)
      : bits_(session.Get<IInternalService_BitData>(VXT_Service_BitData)),
        ops_(session.Get<IInternalService_BitDataOperations>(VXT_Service_BitDataOperations)) {}

  HeldVector Evaluate(const BitsTerm& term) {
    if (term.step == BitsStep::kVector) {
      HeldVector vector(bits_);
      Check(bits_.CreateFromString(vector.get(), term.text.c_str()), "CreateFromString('" + term.text + "')");
      return vector;
    }
    HeldVector vector = Evaluate(term.operands[0]);
    VXT_BitData* record = vector.get();
    const uint32_t number = term.numbers.empty() ? 0 : term.numbers[0];
    switch (term.step) {
      case BitsStep::kAnd:
      case BitsStep::kOr:
      case BitsStep::kXor:
        return Combine(term.step, vector, Evaluate(term.operands[1]));
      case BitsStep::kReverse: {
        HeldVector reversed(bits_);
        Check(ops_.Reverse(record, reversed.get()), "Reverse");
        return reversed;
      }
      case BitsStep::kField: {
        HeldVector field(bits_);
        Check(bits_.ExtractAsBitData(record, term.numbers[0], term.numbers[1], field.get()), "ExtractAsBitData");
        return field;
      }
      case BitsStep::kNot:
        Check(ops_.Invert(record, 0, record->bitSize, 0), "Invert");
        break;
      case BitsStep::kShiftLeft:
        // Grown first, so that the bits shifted out of the top stay.
        Check(ops_.GrowSize(record, number), "GrowSize");
        Check(ops_.ShiftLeft(record, static_cast<int32_t>(number)), "ShiftLeft");
        break;
      case BitsStep::kShiftRight:
        Check(ops_.ShiftRight(record, static_cast<int32_t>(number)), "ShiftRight");
        break;
      case BitsStep::kGrow:
        Check(ops_.GrowSize(record, number), "GrowSize");
        break;
      case BitsStep::kSetBit:
        Check(ops_.SetBitOn(record, number), "SetBitOn");
        break;
      case BitsStep::kClearBit:
        Check(ops_.SetBitOff(record, number), "SetBitOff");
        break;
      case BitsStep::kFlipBit:
        Check(ops_.InvertBit(record, number), "InvertBit");
        break;
      case BitsStep::kVector:
        break;
    }
    return vector;
  }

  // What a question answers, as a line of text.
  std::string Answer(BitsQuestion question, std::vector<HeldVector>& operands) {
    const VXT_BitData* record = operands[0].get();
    uint32_t answer = 0;
    switch (question) {
      case BitsQuestion::kPopCount:
        Check(ops_.PopCount(record, &answer), "PopCount");
        return std::to_string(answer);
      case BitsQuestion::kParity:
        Check(ops_.Parity(record, &answer), "Parity");
        return std::to_string(answer);
      case BitsQuestion::kFirst:
        Check(ops_.FindFirst(record, &answer), "FindFirst");
        return Position(answer);
      case BitsQuestion::kLast:
        Check(ops_.FindLast(record, &answer), "FindLast");
        return Position(answer);
      case BitsQuestion::kCompare: {
        int32_t order = 0;
        Check(ops_.BitData_Compare(record, operands[1].get(), &order), "BitData_Compare");
        return std::to_string(order);
      }
      case BitsQuestion::kVector:
        break;
    }
    return {};
  }

  std::string Text(const VXT_BitData& record, const TextForm& form) {
    uint32_t size = 0;
    Check((ops_.*form.operation)(&record, nullptr, 0, &size), form.call);
    // The size asked for leaves out the terminating zero; a text that fills
    // the buffer may have been cut, so it is asked again with more room.
    for (uint64_t room = uint64_t{size} + 1;; room *= 2) {
      std::string buffer(room, '\0');
      uint32_t written = 0;
      Check((ops_.*form.operation)(&record, buffer.data(), static_cast<uint32_t>(room), &written), form.call);
      if (written + 1 < room || room >= UINT32_MAX / 2) {
        buffer.resize(written);
        return buffer;
      }
    }
  }

 private:
  HeldVector Combine(BitsStep step, HeldVector& left, HeldVector right) {
    HeldVector result(bits_);
    if (step == BitsStep::kAnd) Check(ops_.And(left.get(), right.get(), result.get()), "And");
    if (step == BitsStep::kOr) Check(ops_.Or(left.get(), right.get(), result.get()), "Or");
    if (step == BitsStep::kXor) Check(ops_.Xor(left.get(), right.get(), result.get()), "Xor");
    return result;
  }

  static std::string Position(uint32_t index) { return index == UINT32_MAX ? "none" : std::to_string(index); }

  IInternalService_BitData& bits_;
  IInternalService_BitDataOperations& ops_;
};

constexpr const char* kGrammar = R"(Grammar, read left to right:
  line       := expression
              | (popcount | parity | first | last) expression
              | compare term term
  expression := term { (and | or | xor) term }
  term       := VECTOR | (not | reverse) term
              | (shl | shr | grow) COUNT term
              | (set | clear | flip) BIT term
              | field OFFSET SIZE term
VECTOR is 0b0110, 0x1f, 31 or 5'h1f (length, then 'h, 'b or 'd and the value).
The shorter operand of and/or/xor counts as filled with zeros; shl keeps
every bit by growing the vector, shr drops the bits shifted out.
Examples: vxt bits 0xF0 and 0x3C   vxt bits popcount 0b1011   vxt bits shl 4 0x1)";

int RunBits(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  BitsLine line;
  try {
    line = ParseBitsLine(arguments.lists.at("words"));
  } catch (const BitsSyntaxError& error) {
    std::cerr << "vxt bits: " << error.what() << "\nRun 'vxt bits --help' for the grammar.\n";
    return 2;
  }

  Session session(options);
  Calculator calculator(session);
  std::vector<HeldVector> operands;
  for (const BitsTerm& operand : line.operands) operands.push_back(calculator.Evaluate(operand));

  if (line.question != BitsQuestion::kVector) {
    out << calculator.Answer(line.question, operands) << '\n';
    return 0;
  }
  const std::string& only = arguments.text.at("as");
  for (const TextForm& form : kTextForms) {
    if (only.empty()) {
      out << form.label << calculator.Text(*operands[0].get(), form) << '\n';
    } else if (only == form.name) {
      out << calculator.Text(*operands[0].get(), form) << '\n';
    }
  }
  return 0;
}

const bool registered = RegisterCommand(
    {"bits", "Bit vector calculator: parse vectors, combine them and show them in every text form",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("words", arguments.lists["words"], "The vectors and operations, as the grammar below")
           ->required();
       command.add_option("--as", arguments.text["as"], "Show the resulting vector in this form only")
           ->check(CLI::IsMember({"general", "hex", "binary", "decimal"}));
       command.footer(kGrammar);
     },
     &RunBits});

}  // namespace
}  // namespace vxt::cli
