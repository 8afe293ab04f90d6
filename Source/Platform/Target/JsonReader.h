// Typed reading of a target description's JSON values. Every problem is
// reported with its place, a JSON pointer such as
// "/targetDomains/0/packages/1/cores", and a short text of what is wrong.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "PlatformApi.h"
#include "Topology.h"

namespace voxtrel::platform::target {

// Thrown while a description is read; the reader turns it into the whole
// message. Never leaves the parser.
class VOXTREL_PLATFORM_API DescriptionProblem : public std::runtime_error {
 public:
  DescriptionProblem(std::string place, std::string what) : std::runtime_error(what), place_(std::move(place)) {}
  const std::string& Place() const { return place_; }

 private:
  std::string place_;
};

[[noreturn]] VOXTREL_PLATFORM_API void Fail(const std::string& place, std::string what);

// JSON pointer of a member or element below `place`.
VOXTREL_PLATFORM_API std::string PlaceOf(const std::string& place, std::string_view member);
VOXTREL_PLATFORM_API std::string PlaceOf(const std::string& place, size_t index);

// "string \"abc\"", "number 2.5", "object": what a value is, for messages.
VOXTREL_PLATFORM_API std::string Describe(const Json& value);

// An unsigned number: a JSON number, or a string holding a decimal or
// 0x-prefixed hexadecimal number (so that a parameter can give it).
VOXTREL_PLATFORM_API uint64_t ReadUnsigned(const Json& value, const std::string& place, uint64_t min, uint64_t max);

// Reads one JSON object and refuses members it does not know. "comment" is
// allowed in every object and ignored.
class VOXTREL_PLATFORM_API ObjectReader {
 public:
  ObjectReader(const Json& value, std::string place, std::initializer_list<std::string_view> knownMembers,
               std::initializer_list<std::string_view> moreKnownMembers = {});

  const Json* Find(std::string_view member) const;
  const std::string& Place() const { return place_; }
  std::string Place(std::string_view member) const { return PlaceOf(place_, member); }

  std::string RequiredString(std::string_view member, size_t maxLength) const;
  std::string OptionalString(std::string_view member, size_t maxLength, std::string fallback = {}) const;
  uint64_t RequiredUnsigned(std::string_view member, uint64_t min, uint64_t max) const;
  uint64_t OptionalUnsigned(std::string_view member, uint64_t min, uint64_t max, uint64_t fallback) const;
  bool OptionalBool(std::string_view member, bool fallback) const;
  // An array, which must not be empty when `nonEmpty`.
  const Json& RequiredArray(std::string_view member, bool nonEmpty) const;
  const Json* OptionalArray(std::string_view member) const;
  const Json* OptionalObject(std::string_view member) const;

 private:
  const Json& value_;
  std::string place_;
};

// A text value of at most maxLength characters.
VOXTREL_PLATFORM_API std::string ReadString(const Json& value, const std::string& place, size_t maxLength);

}  // namespace voxtrel::platform::target
