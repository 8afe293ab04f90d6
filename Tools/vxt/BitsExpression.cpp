#include "BitsExpression.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <map>
#include <utility>

namespace vxt::cli {
namespace {

std::string Lower(std::string word) {
  std::transform(word.begin(), word.end(), word.begin(), [](unsigned char c) { return std::tolower(c); });
  return word;
}

// Keywords of terms, with the count of numbers each takes.
const std::map<std::string, std::pair<BitsStep, int>>& TermKeywords() {
  static const std::map<std::string, std::pair<BitsStep, int>> keywords{
      {"not", {BitsStep::kNot, 0}},          {"reverse", {BitsStep::kReverse, 0}},
      {"shl", {BitsStep::kShiftLeft, 1}},    {"shr", {BitsStep::kShiftRight, 1}},
      {"grow", {BitsStep::kGrow, 1}},        {"set", {BitsStep::kSetBit, 1}},
      {"clear", {BitsStep::kClearBit, 1}},   {"flip", {BitsStep::kFlipBit, 1}},
      {"field", {BitsStep::kField, 2}},
  };
  return keywords;
}

const std::map<std::string, BitsStep>& Combinations() {
  static const std::map<std::string, BitsStep> combinations{
      {"and", BitsStep::kAnd}, {"or", BitsStep::kOr}, {"xor", BitsStep::kXor}};
  return combinations;
}

const std::map<std::string, BitsQuestion>& Questions() {
  static const std::map<std::string, BitsQuestion> questions{
      {"popcount", BitsQuestion::kPopCount}, {"parity", BitsQuestion::kParity}, {"first", BitsQuestion::kFirst},
      {"last", BitsQuestion::kLast},         {"compare", BitsQuestion::kCompare}};
  return questions;
}

bool IsKeyword(const std::string& word) {
  const std::string lower = Lower(word);
  return TermKeywords().count(lower) != 0 || Combinations().count(lower) != 0 || Questions().count(lower) != 0;
}

class Parser {
 public:
  explicit Parser(const std::vector<std::string>& words) : words_(words) {}

  BitsLine Line() {
    BitsLine line;
    if (AtEnd()) throw BitsSyntaxError("a vector or an operation is missing");
    if (const auto question = Questions().find(Lower(Peek())); question != Questions().end()) {
      line.question = question->second;
      ++next_;
      if (line.question == BitsQuestion::kCompare) {
        line.operands.push_back(Term());
        line.operands.push_back(Term());
      } else {
        line.operands.push_back(Expression());
      }
    } else {
      line.operands.push_back(Expression());
    }
    if (!AtEnd()) throw BitsSyntaxError("'" + Peek() + "' follows a whole expression");
    return line;
  }

 private:
  BitsTerm Expression() {
    BitsTerm left = Term();
    while (!AtEnd()) {
      const auto combination = Combinations().find(Lower(Peek()));
      if (combination == Combinations().end()) break;
      ++next_;
      BitsTerm combined;
      combined.step = combination->second;
      combined.operands.push_back(std::move(left));
      combined.operands.push_back(Term());
      left = std::move(combined);
    }
    return left;
  }

  BitsTerm Term() {
    if (AtEnd()) throw BitsSyntaxError("a vector is missing at the end");
    const std::string word = words_[next_++];
    BitsTerm term;
    if (const auto keyword = TermKeywords().find(Lower(word)); keyword != TermKeywords().end()) {
      term.step = keyword->second.first;
      // A shift count goes to the library as a signed 32-bit number.
      const bool shift = term.step == BitsStep::kShiftLeft || term.step == BitsStep::kShiftRight;
      for (int i = 0; i < keyword->second.second; ++i)
        term.numbers.push_back(Number(word, shift ? INT32_MAX : UINT32_MAX));
      term.operands.push_back(Term());
      return term;
    }
    if (IsKeyword(word)) throw BitsSyntaxError("a vector is missing before '" + word + "'");
    term.text = word;
    return term;
  }

  // A decimal number no greater than `most`.
  uint32_t Number(const std::string& after, uint32_t most) {
    if (AtEnd()) throw BitsSyntaxError("'" + after + "' needs a number");
    const std::string& word = words_[next_++];
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || value > most)
      throw BitsSyntaxError("'" + after + "' needs a number from 0 to " + std::to_string(most) + ", not '" + word +
                            "'");
    return value;
  }

  bool AtEnd() const { return next_ >= words_.size(); }
  const std::string& Peek() const { return words_[next_]; }

  const std::vector<std::string>& words_;
  size_t next_ = 0;
};

}  // namespace

BitsLine ParseBitsLine(const std::vector<std::string>& words) { return Parser(words).Line(); }

}  // namespace vxt::cli
