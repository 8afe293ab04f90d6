// Reading the data record that came with a component's event.
//
// The records are laid out by byte offset and may sit at any address, so
// numbers are copied out rather than read in place. Texts stay where they
// are: the public record points into the component's record, which lives
// for the whole delivery.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vxt::events {

class EventData {
 public:
  explicit EventData(const void* data) : bytes_(static_cast<const unsigned char*>(data)) {}

  bool present() const { return bytes_ != nullptr; }

  // The number at `offset`; 0 when there is no data.
  template <class Number>
  Number Read(size_t offset) const {
    Number value{};
    if (bytes_ != nullptr) std::memcpy(&value, bytes_ + offset, sizeof value);
    return value;
  }

  // The text that starts at `offset`; null when there is no data.
  const char* TextAt(size_t offset) const {
    return bytes_ == nullptr ? nullptr : reinterpret_cast<const char*>(bytes_ + offset);
  }

 private:
  const unsigned char* bytes_;
};

// A text of a fixed-size field. A component terminates its texts; should one
// fill its field without a zero, the text is cut to the field's size less
// one in a terminated copy here, so that neither the trace nor a subscriber
// reads past the field. The terminated text, the common case, is not copied.
template <size_t FieldSize>
class FieldText {
 public:
  explicit FieldText(const char* field) : text_(field) {
    if (field == nullptr || std::memchr(field, '\0', FieldSize) != nullptr) return;
    std::memcpy(copy_, field, FieldSize - 1);
    copy_[FieldSize - 1] = '\0';
    text_ = copy_;
  }
  FieldText(const FieldText&) = delete;
  FieldText& operator=(const FieldText&) = delete;

  // Null when there is no data.
  const char* get() const { return text_; }

 private:
  const char* text_;
  char copy_[FieldSize];
};

// Event names are compared exactly, case and length included; a missing
// name matches nothing.
inline bool IsNamed(const char* eventName, const char* expected) {
  return eventName != nullptr && std::strcmp(eventName, expected) == 0;
}

}  // namespace vxt::events
