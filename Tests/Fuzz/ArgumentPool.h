// Where the fuzzer's arguments come from: a choice byte per parameter picks
// from small pools of valid, stale and forged values. What the calls wrote
// through their pointers is harvested, so that a handle, token or bit
// vector one call returns is offered to the next ones, and stays offered
// after it is destroyed.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstddef>
#include <cstring>
#include <deque>
#include <string>
#include <type_traits>

#include "HostileArguments.h"

namespace vxt::fuzz {

// The input, read from the front; past its end every byte is 0.
class ByteReader {
 public:
  ByteReader(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool empty() const { return position_ >= size_; }
  uint8_t Byte() { return position_ < size_ ? data_[position_++] : 0; }
  uint64_t Word(size_t bytes) {
    uint64_t value = 0;
    for (size_t index = 0; index < bytes; ++index) value |= uint64_t{Byte()} << (8 * index);
    return value;
  }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t position_ = 0;
};

// What a number is for, read from the parameter's name: a count or offset
// the client declares for its own memory stays small, a timeout or pulse
// stays short (a hang is then the library's), anything else is an id, a
// handle or a value.
enum class Role { Count, Duration, Other };

inline Role RoleOf(const std::string& name) {
  auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
  if (has("imeout") || has("Width")) return Role::Duration;
  if (name.rfind("num", 0) == 0 || name.rfind("max", 0) == 0 || has("Count") || has("count") || has("Size") ||
      has("Offset") || has("Length") || has("cnt") || has("Bits") || has("bits") || name == "i" || name == "phases")
    return Role::Count;
  return Role::Other;
}

class ArgumentPool {
 public:
  static constexpr size_t kHarvested = 16;
  static constexpr size_t kRecordBytes = 64;

  template <class T>
  T Number(Role role, ByteReader& input) {
    const uint8_t choice = input.Byte();
    uint64_t value = 0;
    if (role == Role::Duration) {
      static constexpr uint64_t kDurations[] = {0, 1, 20};
      value = kDurations[choice % 3];
    } else if (role == Role::Count) {
      static constexpr uint64_t kCounts[] = {1, 0, 2, 8, 64, 3, 33, ~uint64_t{0}};
      value = kCounts[choice % 8];
      // A count of -1 only where its type lets the library see the sign.
      if (value == ~uint64_t{0} && !std::is_signed_v<T>) value = 4096;
    } else {
      // 0-3 the latest words the calls wrote (valid, or stale once
      // destroyed), 4-10 ids of the target, then forged values.
      static constexpr uint64_t kIds[] = {0x03000000, 0x0b000000, 0x02000000, 0x0d000000,
                                          0x04000000, 0x0c000000, 0x03000001};
      const uint8_t pick = choice % 16;
      if (pick < 4) value = Recent(pick);
      else if (pick < 11) value = kIds[pick - 4];
      else if (pick == 11) value = 0x7fffffff;
      else if (pick == 12) value = 0;
      else if (pick == 13) value = 1;
      else value = input.Word(sizeof(T));
    }
    return static_cast<T>(value);
  }

  template <class E>
  E Enumeration(ByteReader& input) {
    static constexpr int64_t kValues[] = {0, 1, 2, 3, 4, 0x7fffffff};
    return static_cast<E>(kValues[input.Byte() % 6]);
  }

  // Fills the memory a pointer argument points at; false for a null pointer.
  bool Fill(uint8_t* slot, ByteReader& input) {
    switch (input.Byte() % 6) {
      case 0: return true;  // zeros: room for what the library writes
      case 1: {
        const std::string text = String(input.Byte());
        std::memcpy(slot, text.data(), text.size());
        return true;
      }
      case 2: std::memcpy(slot, Record(input.Byte()).data(), kRecordBytes); return true;
      case 3: return false;
      case 4: {
        const size_t length = input.Byte() % 33;  // forged bytes, unterminated
        for (size_t index = 0; index < length; ++index) slot[index] = input.Byte();
        return true;
      }
      default: {
        const uint64_t word = Recent(input.Byte());
        std::memcpy(slot, &word, sizeof word);
        return true;
      }
    }
  }

  // A record: its structureSize right, 0, one short or one long, or null.
  template <class Record>
  Record* MakeRecord(uint8_t* slot, ByteReader& input) {
    const uint8_t choice = input.Byte() % 5;
    if (choice == 1) return nullptr;
    if (!Fill(slot, input)) return nullptr;
    static constexpr uint32_t kSizes[] = {sizeof(Record), 0, 0, sizeof(Record) - 1, sizeof(Record) + 1};
    auto* record = reinterpret_cast<Record*>(slot);
    record->structureSize = kSizes[choice];
    return record;
  }

  // An array of pointers the library follows, one entry for each of the
  // largest count a call is given: all null, or each to a record of its own
  // behind the array (the first what an earlier call wrote). A wild pointer
  // in such an array is no input a library could tell from a good one.
  template <class Element>
  bool PointerArray(uint8_t* slot, ByteReader& input) {
    const uint8_t choice = input.Byte() % 3;
    if (choice == 0) return false;
    if (choice == 1) return true;  // The slot is cleared: every entry null
    auto** entries = reinterpret_cast<uint8_t**>(slot);
    uint8_t* records = slot + kMaxEntries * sizeof(uint8_t*);
    for (size_t index = 0; index < kMaxEntries; ++index) {
      uint8_t* record = records + index * kRecordBytes;
      if (index == 0) {
        std::memcpy(record, Record(input.Byte()).data(), kRecordBytes);
      } else {
        std::memset(record, 0, kRecordBytes);
      }
      if constexpr (sweep::HasStructureSize<Element>) {
        const uint32_t size = sizeof(Element);
        std::memcpy(record + offsetof(Element, structureSize), &size, sizeof size);
      }
      entries[index] = record;
    }
    return true;
  }
  // The largest count a call is given (see Number).
  static constexpr size_t kMaxEntries = 4096;

  // Whatever a call wrote is kept: records whole, and their first words.
  void Harvest(const uint8_t* slot) {
    std::array<uint8_t, kRecordBytes> bytes;
    std::memcpy(bytes.data(), slot, kRecordBytes);
    if (std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; })) return;
    Keep(records_, bytes);
    for (size_t offset : {0, 4, 8}) {
      uint64_t word = 0;
      std::memcpy(&word, slot + offset, offset == 4 ? 4 : 8);
      if (word != 0) Keep(words_, word);
    }
  }

  std::array<uint8_t, kRecordBytes> Record(uint8_t choice) const {
    if (records_.empty()) return {};
    return records_[records_.size() - 1 - choice % records_.size()];
  }

 private:
  template <class T>
  static void Keep(std::deque<T>& ring, const T& value) {
    ring.push_back(value);
    if (ring.size() > kHarvested) ring.pop_front();
  }
  // The most recent first: a handle just returned is the likeliest valid one.
  uint64_t Recent(uint8_t choice) const {
    return words_.empty() ? 0 : words_[words_.size() - 1 - choice % words_.size()];
  }

  static std::string String(uint8_t choice) {
    static const char* const kStrings[] = {"Thread0_0", "CoreGroup0", "rip", "eax", "",
                                           "Default",   "nop",        "mov eax, 1", "%s%n%x", "probe mode"};
    if (choice % 11 == 10) return std::string(300, 'A');
    return kStrings[choice % 11];
  }

  std::deque<uint64_t> words_;
  std::deque<std::array<uint8_t, kRecordBytes>> records_;
};

// One argument of type T for the parameter `name`, its memory in `slot`.
template <class T>
T MakeArgument(const std::string& name, uint8_t* slot, ArgumentPool& pool, ByteReader& input) {
  constexpr sweep::ArgKind kind = sweep::KindOf<T>();
  if constexpr (kind == sweep::ArgKind::Callback) {
    return input.Byte() % 2 == 0 ? sweep::NoCallback(static_cast<T>(nullptr)) : nullptr;
  } else if constexpr (kind == sweep::ArgKind::Record) {
    return pool.MakeRecord<std::remove_cv_t<std::remove_pointer_t<T>>>(slot, input);
  } else if constexpr (kind == sweep::ArgKind::Pointer) {
    using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (std::is_pointer_v<Pointee>) {
      return pool.PointerArray<std::remove_cv_t<std::remove_pointer_t<Pointee>>>(slot, input)
                 ? reinterpret_cast<T>(slot)
                 : nullptr;
    } else {
      return pool.Fill(slot, input) ? reinterpret_cast<T>(slot) : nullptr;
    }
  } else if constexpr (kind == sweep::ArgKind::Enumeration) {
    return pool.Enumeration<T>(input);
  } else if constexpr (kind == sweep::ArgKind::Number || kind == sweep::ArgKind::SignedNumber) {
    return pool.Number<T>(RoleOf(name), input);
  } else {
    // A record passed by value: zeros, or what an earlier call wrote.
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= ArgumentPool::kRecordBytes);
    T value{};
    if (input.Byte() % 2 == 1) std::memcpy(&value, pool.Record(input.Byte()).data(), sizeof(T));
    if constexpr (sweep::HasStructureSize<T>) value.structureSize = sizeof(T);
    return value;
  }
}

}  // namespace vxt::fuzz
