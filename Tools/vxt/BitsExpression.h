// The little language of `vxt bits`, read into a tree before anything is
// asked of the library, so that a mistyped line is refused without
// connecting.
//
//   line       := expression
//               | ("popcount" | "parity" | "first" | "last") expression
//               | "compare" term term
//   expression := term { ("and" | "or" | "xor") term }        left to right
//   term       := VECTOR
//               | ("not" | "reverse") term
//               | ("shl" | "shr" | "grow") COUNT term
//               | ("set" | "clear" | "flip") BIT term
//               | "field" OFFSET SIZE term
//
// A VECTOR is any word that is not a keyword, in a text form the BitData
// library reads ("0b0110", "0x1f", "31", "5'h1f"). COUNT, BIT, OFFSET and
// SIZE are decimal numbers. Keywords may be written in any case.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace vxt::cli {

// A line that does not follow the grammar; the message names the word.
class BitsSyntaxError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class BitsStep {
  kVector,  // `text`
  kNot,
  kReverse,
  kShiftLeft,  // numbers[0] bits; the vector grows so that no bit is lost
  kShiftRight,
  kGrow,
  kSetBit,  // numbers[0] is the bit
  kClearBit,
  kFlipBit,
  kField,  // numbers[0] offset, numbers[1] size
  kAnd,    // operands[0] <op> operands[1]
  kOr,
  kXor,
};

struct BitsTerm {
  BitsStep step = BitsStep::kVector;
  std::string text;
  std::vector<uint32_t> numbers;
  std::vector<BitsTerm> operands;
};

enum class BitsQuestion { kVector, kPopCount, kParity, kFirst, kLast, kCompare };

struct BitsLine {
  BitsQuestion question = BitsQuestion::kVector;
  // One expression; two terms for kCompare.
  std::vector<BitsTerm> operands;
};

// Throws BitsSyntaxError.
BitsLine ParseBitsLine(const std::vector<std::string>& words);

}  // namespace vxt::cli
