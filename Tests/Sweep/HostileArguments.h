// Arguments for any operation, made from its parameter types alone: every
// pointer points at zeroed memory of its own (records carry their right
// structureSize), every number is 1, callbacks do nothing; one argument at a
// time is then made hostile (null, a wrong structureSize, 0, -1, an
// enumeration value past its names).
#pragma once

#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace vxt::sweep {

enum class Mutation { None, Null, SizeZero, SizeSmall, SizeLarge, Zero, AllOnes, Largest };

inline const char* MutationName(Mutation mutation) {
  switch (mutation) {
    case Mutation::None: return "valid";
    case Mutation::Null: return "null";
    case Mutation::SizeZero: return "structureSize 0";
    case Mutation::SizeSmall: return "structureSize too small";
    case Mutation::SizeLarge: return "structureSize too large";
    case Mutation::Zero: return "0";
    case Mutation::AllOnes: return "-1";
    case Mutation::Largest: return "0x7fffffff";
  }
  return "?";
}

// One argument made hostile; index -1 leaves every argument valid.
struct Variant {
  int index = -1;
  Mutation mutation = Mutation::None;
};

// A signed number is a count a client may get wrong in sign; a count's size
// is the client's word for how much memory stands behind its pointers, so
// no count is made huge here. An unsigned number is a capacity, an id or a
// flag.
// An enumeration gets values past its names.
enum class ArgKind { Pointer, Record, Callback, SignedNumber, Number, Enumeration, Value };

template <class T>
concept HasStructureSize = requires(T record) { record.structureSize; };

template <class T>
constexpr ArgKind KindOf() {
  if constexpr (std::is_pointer_v<T> && std::is_function_v<std::remove_pointer_t<T>>) {
    return ArgKind::Callback;
  } else if constexpr (std::is_pointer_v<T>) {
    using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (HasStructureSize<Pointee>) return ArgKind::Record;
    return ArgKind::Pointer;
  } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
    return ArgKind::SignedNumber;
  } else if constexpr (std::is_enum_v<T>) {
    return ArgKind::Enumeration;
  } else if constexpr (std::is_integral_v<T>) {
    return ArgKind::Number;
  }
  return ArgKind::Value;
}

// The mutations that make sense for an argument of that kind.
inline std::vector<Mutation> MutationsOf(ArgKind kind) {
  switch (kind) {
    case ArgKind::Pointer:
    case ArgKind::Callback: return {Mutation::Null};
    case ArgKind::Record: return {Mutation::Null, Mutation::SizeZero, Mutation::SizeSmall, Mutation::SizeLarge};
    case ArgKind::SignedNumber: return {Mutation::Zero, Mutation::AllOnes};
    case ArgKind::Number: return {Mutation::Zero};
    case ArgKind::Enumeration: return {Mutation::Zero, Mutation::Largest};
    case ArgKind::Value: return {};
  }
  return {};
}

// A large region reserved without memory behind it: each argument's pointer
// is 1 GiB from the next, so that a count taken at its word reads zeros
// rather than another argument or unmapped memory. Only the pages touched
// are ever backed.
class Arena {
 public:
  static constexpr size_t kSlot = size_t{1} << 30;
  static constexpr size_t kSlots = 12;
  static constexpr size_t kCleared = 64 * 1024;

  Arena() {
    void* base = mmap(nullptr, kSlot * kSlots, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE,
                      -1, 0);
    base_ = base == MAP_FAILED ? nullptr : static_cast<uint8_t*>(base);
  }
  ~Arena() {
    if (base_ != nullptr) munmap(base_, kSlot * kSlots);
  }
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  bool ok() const { return base_ != nullptr; }
  // The slot's first bytes zeroed again: what the last call wrote is gone.
  uint8_t* Slot(size_t index) {
    uint8_t* slot = base_ + (index % kSlots) * kSlot;
    std::memset(slot, 0, kCleared);
    return slot;
  }
  // The slot as the last call left it.
  const uint8_t* Peek(size_t index) const { return base_ + (index % kSlots) * kSlot; }

 private:
  uint8_t* base_ = nullptr;
};

template <class R, class... A>
R DoNothing(A...) {
  if constexpr (!std::is_void_v<R>) return R{};
}

template <class R, class... A>
constexpr auto NoCallback(R (*)(A...)) {
  return &DoNothing<R, A...>;
}

template <class T>
T MakeArg(size_t index, const Variant& variant, Arena& arena) {
  const bool hostile = variant.index == static_cast<int>(index);
  constexpr ArgKind kind = KindOf<T>();
  if constexpr (kind == ArgKind::Callback) {
    return hostile ? nullptr : NoCallback(static_cast<T>(nullptr));
  } else if constexpr (kind == ArgKind::Pointer || kind == ArgKind::Record) {
    if (hostile && variant.mutation == Mutation::Null) return nullptr;
    uint8_t* slot = arena.Slot(index);
    if constexpr (kind == ArgKind::Record) {
      using Record = std::remove_cv_t<std::remove_pointer_t<T>>;
      auto* record = reinterpret_cast<Record*>(slot);
      uint32_t size = sizeof(Record);
      if (hostile && variant.mutation == Mutation::SizeZero) size = 0;
      if (hostile && variant.mutation == Mutation::SizeSmall) size = sizeof(Record) - 1;
      if (hostile && variant.mutation == Mutation::SizeLarge) size = sizeof(Record) + 1;
      record->structureSize = size;
    }
    return reinterpret_cast<T>(slot);
  } else if constexpr (kind == ArgKind::Number || kind == ArgKind::SignedNumber || kind == ArgKind::Enumeration) {
    using Raw = typename std::conditional_t<std::is_enum_v<T>, std::underlying_type<T>, std::type_identity<T>>::type;
    Raw value = 1;
    if (hostile && variant.mutation == Mutation::Zero) value = 0;
    if (hostile && variant.mutation == Mutation::AllOnes) value = static_cast<Raw>(~uint64_t{0});
    if (hostile && variant.mutation == Mutation::Largest) value = static_cast<Raw>(0x7fffffff);
    return static_cast<T>(value);
  } else {
    return T{};
  }
}

}  // namespace vxt::sweep
