// Rendering classes made of other classes: out arguments, lists, byte
// arrays, bit vector records and addresses. Like the single values they hold
// pointers and read through them only when inserted, so that an Out line
// shows what the call left behind.
#pragma once

#include <cstdint>
#include <ostream>
#include <type_traits>

#include "VXT_Records.h"
#include "frame/RenderScalars.h"

namespace vxt::frame {

namespace detail {

// One element in the class `Element`: made from the value if the class
// takes values, else from its address (records are rendered through their
// pointer). A character array passes its size as a bound.
template <class Element, class T>
Element MakeElement(const T& value) {
  if constexpr (std::is_array_v<T> && requires { Element{value, std::extent_v<T>}; }) {
    return Element{value, std::extent_v<T>};
  } else if constexpr (requires { Element{value}; }) {
    return Element{value};
  } else {
    return Element{&value};
  }
}

}  // namespace detail

// An out argument: the pointee in the class `Element`, or "<NULL>" for a
// null pointer, which is then not read.
template <class Element, class T>
struct OutArg {
  const T* pointer;
  friend std::ostream& operator<<(std::ostream& out, const OutArg& arg) {
    if (arg.pointer == nullptr) return out << "<NULL>";
    return out << detail::MakeElement<Element>(*arg.pointer);
  }
};

template <class Element, class T>
OutArg<Element, T> Out(const T* pointer) {
  return OutArg<Element, T>{pointer};
}

// "{a, b, c}" in the class `Element`. A null array gives "<NULL>" whatever
// the count; a count of 0, or a null pointer to the count, gives "<EMPTY>".
// A count behind a pointer is read when the list is rendered.
template <class Element, class T>
class ListArg {
 public:
  ListArg(const T* array, uint64_t count) : array_(array), count_(count) {}
  ListArg(const T* array, const uint32_t* count) : array_(array), countPointer_(count), countIsPointed_(true) {}

  friend std::ostream& operator<<(std::ostream& out, const ListArg& list) {
    if (list.array_ == nullptr) return out << "<NULL>";
    const uint64_t count = list.Count();
    if (count == 0) return out << "<EMPTY>";
    out << "{";
    for (uint64_t i = 0; i + 1 < count; ++i) out << detail::MakeElement<Element>(list.array_[i]) << ", ";
    return out << detail::MakeElement<Element>(list.array_[count - 1]) << "}";
  }

 private:
  uint64_t Count() const {
    if (!countIsPointed_) return count_;
    return countPointer_ == nullptr ? 0 : *countPointer_;
  }

  const T* array_;
  uint64_t count_ = 0;
  const uint32_t* countPointer_ = nullptr;
  bool countIsPointed_ = false;
};

// A negative count lists nothing.
template <class Element, class T, detail::Integer Count>
ListArg<Element, T> List(const T* array, Count count) {
  return ListArg<Element, T>(array, count > 0 ? static_cast<uint64_t>(count) : 0);
}

template <class Element, class T>
ListArg<Element, T> List(const T* array, const uint32_t* count) {
  return ListArg<Element, T>(array, count);
}

// Bytes as a list of `Hex2`: {0x01, 0x02, 0xff}.
template <class Count>
ListArg<Hex2, uint8_t> Bytes(const uint8_t* array, Count count) {
  return List<Hex2>(array, count);
}
template <class Count>
ListArg<Hex2, uint8_t> Bytes(const void* array, Count count) {
  return List<Hex2>(static_cast<const uint8_t*>(array), count);
}

// "{bitSize = <dec> dataHandle = <hex16>}", or "<NULL>".
struct BitDataText {
  const VXT_BitData* record;
};

// "{ldtsel = <hex4> segsel = <hex4> offset = <hex16> addressType = <name>}",
// or "<NULL>".
struct AddressText {
  const VXT_Address* record;
};

std::ostream& operator<<(std::ostream& out, BitDataText value);
std::ostream& operator<<(std::ostream& out, AddressText value);

}  // namespace vxt::frame
