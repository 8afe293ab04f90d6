// Rendering classes of single values.
//
// Each class is a small struct holding the value; it turns into text only
// when inserted into a stream. A line is one stream, and its base and fill
// carry over from one value to the next: every class sets what it needs,
// and a field width lasts for one insertion only. So a number that a sparse
// enumeration cannot name shows in whatever base the values before it left.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <type_traits>

namespace vxt::frame {

namespace detail {

template <class T>
concept Integer = std::integral<T> && !std::same_as<T, bool>;

template <class T>
concept IntegerOrEnum = Integer<T> || std::is_enum_v<T>;

// An enumeration value as its underlying integer.
template <IntegerOrEnum T>
constexpr auto AsInteger(T value) {
  if constexpr (std::is_enum_v<T>) {
    return static_cast<std::underlying_type_t<T>>(value);
  } else {
    return value;
  }
}

template <IntegerOrEnum T>
inline constexpr bool kIsSigned = std::is_signed_v<decltype(AsInteger(T{}))>;

// "0x" and `digits` zero-filled lower-case hexadecimal digits; leaves the
// stream in hexadecimal with the fill "0".
std::ostream& WriteHex(std::ostream& out, uint64_t value, int digits);

}  // namespace detail

// "0x" and two digits. The value is printed as a number, never a character.
struct Hex2 {
  template <detail::IntegerOrEnum T>
  constexpr Hex2(T value) : value(static_cast<uint8_t>(detail::AsInteger(value))) {}
  uint8_t value;
};

// "0x" and four digits.
struct Hex4 {
  template <detail::IntegerOrEnum T>
  constexpr Hex4(T value) : value(static_cast<uint16_t>(detail::AsInteger(value))) {}
  uint16_t value;
};

// "0x" and eight digits; a signed value shows its two's complement, so that
// an error code reads 0x80000001.
struct Hex8 {
  template <detail::IntegerOrEnum T>
  constexpr Hex8(T value) : value(static_cast<uint32_t>(detail::AsInteger(value))) {}
  uint32_t value;
};

// "0x" and sixteen digits.
struct Hex16 {
  template <detail::IntegerOrEnum T>
  constexpr Hex16(T value) : value(static_cast<uint64_t>(detail::AsInteger(value))) {}
  uint64_t value;
};

// Decimal; a negative value shows its minus sign.
struct Dec {
  template <detail::IntegerOrEnum T>
  constexpr Dec(T value) : bits(static_cast<uint64_t>(detail::AsInteger(value))), isSigned(detail::kIsSigned<T>) {}
  uint64_t bits;
  bool isSigned;
};

// Sixteen upper-case hexadecimal digits without a prefix.
struct Pointer {
  const void* value;
};

// "True" or "False". A 32-bit boolean of a record counts as true when nonzero.
struct Bool {
  template <class T>
    requires std::same_as<T, bool> || detail::Integer<T>
  constexpr Bool(T value) : value(value != 0) {}
  bool value;
};

// The text in single quotes; a null pointer gives "<NULL>" without quotes.
// `maxLength` bounds the text of a fixed-size field that may lack its zero.
struct Quoted {
  const char* text;
  size_t maxLength = std::numeric_limits<size_t>::max();
};

// The value's name from the table `NameOf` (frame/EnumNames.h). The table is
// consulted with the value taken as unsigned 32 bits. A value that a sparse
// table leaves unnamed prints as a bare number in the stream's current base,
// negative if the enumeration is signed.
template <const char* (*NameOf)(uint32_t)>
struct Enum {
  template <detail::IntegerOrEnum T>
  constexpr Enum(T value)
      : bits(static_cast<uint32_t>(detail::AsInteger(value))), isSigned(detail::kIsSigned<T>) {
    static_assert(sizeof(T) <= sizeof(uint32_t), "enumerations are 32 bits wide");
  }
  uint32_t bits;
  bool isSigned;

  friend std::ostream& operator<<(std::ostream& out, const Enum& value) {
    if (const char* name = NameOf(value.bits)) return out << name;
    // Inserted at 32 bits, so that a negative value in hexadecimal shows
    // eight digits of two's complement.
    if (value.isSigned) return out << static_cast<int32_t>(value.bits);
    return out << value.bits;
  }
};

// A lock timeout: "<INFINITE>" for 0xFFFFFFFF, any other value as `Dec`.
struct Timeout {
  uint32_t milliseconds;
};

// Stands for a value that is never rendered, such as a password.
struct Omitted {};

// A buffer whose contents are not listed: "{...}", or "<NULL>" when null.
struct NotListed {
  const void* buffer;
};

std::ostream& operator<<(std::ostream& out, Hex2 value);
std::ostream& operator<<(std::ostream& out, Hex4 value);
std::ostream& operator<<(std::ostream& out, Hex8 value);
std::ostream& operator<<(std::ostream& out, Hex16 value);
std::ostream& operator<<(std::ostream& out, Dec value);
std::ostream& operator<<(std::ostream& out, Pointer value);
std::ostream& operator<<(std::ostream& out, Bool value);
std::ostream& operator<<(std::ostream& out, Quoted value);
std::ostream& operator<<(std::ostream& out, Timeout value);
std::ostream& operator<<(std::ostream& out, Omitted value);
std::ostream& operator<<(std::ostream& out, NotListed value);

}  // namespace vxt::frame
