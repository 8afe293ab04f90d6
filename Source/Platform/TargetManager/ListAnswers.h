// How the components answer list queries: a count query checks the
// client's counter and writes how many entries there are; a fill query
// checks the client's array and writes at most the client's maximum.
//
//   Request request("StatePort.GetStatePorts");
//   return AnswerFill(request, names, "statePortNames", NameFields{max, kNameSize, PastTheList::Emptied},
//                     [&] { return ListOf(PortsOf(request, deviceId)); });
//
// `gather` finds the list through the request, which refuses when it cannot
// (an empty list then); it runs only once the client's pointer passed, and
// nothing is written once the request has failed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "TargetManager/Request.h"

namespace voxtrel::platform::target_manager {

template <class Gather>
uint32_t AnswerCount(Request& request, uint32_t* count, const char* countName, Gather&& gather) {
  if (request.NotNull(count, countName).failed()) return request.code();
  const auto list = gather();
  if (request.failed()) return request.code();
  *count = static_cast<uint32_t>(list.size());
  return 0;
}

// `write(list, out)` writes the client's entries.
template <class Out, class Write, class Gather>
uint32_t AnswerFill(Request& request, Out* out, const char* outName, Write&& write, Gather&& gather) {
  if (request.NotNull(out, outName).failed()) return request.code();
  const auto list = gather();
  if (request.failed()) return request.code();
  write(list, out);
  return 0;
}

// What `of` finds in the built topology; nothing when none is built.
template <class Of>
auto InTopology(Request& request, Of&& of) {
  using List = std::decay_t<std::invoke_result_t<Of, const target::LiveTopology&>>;
  const target::LiveTopology* live = request.Topology();
  return live ? List(of(*live)) : List{};
}

// The list found, or an empty one; `member` picks the list out of what was
// found.
template <class Found>
Found ListOf(std::optional<Found> found) {
  return found ? std::move(*found) : Found{};
}
template <class Found, class Member>
auto ListOf(const std::optional<Found>& found, Member&& member) {
  using List = std::decay_t<std::invoke_result_t<Member, const Found&>>;
  return found ? List(std::invoke(member, *found)) : List{};
}

// The client's `max` ids: the first of the list, zeros past its last.
struct IdEntries {
  uint32_t max;
  void operator()(const std::vector<uint32_t>& ids, uint32_t* out) const {
    const size_t filled = std::min<size_t>(ids.size(), max);
    std::copy_n(ids.begin(), filled, out);
    std::fill(out + filled, out + max, 0u);
  }
};

// What a name fill leaves in the client's fields past the list's last entry.
enum class PastTheList { Untouched, Emptied };

// The client's `max` name fields of `size` characters laid end to end, each
// name cut and terminated. The names are texts, or items' `name`.
struct NameFields {
  uint32_t max;
  size_t size;
  PastTheList past;

  template <class List, class Field>
  void operator()(const List& items, Field* fields) const {
    static_assert(std::is_same_v<std::remove_extent_t<Field>, char>);
    char* field = reinterpret_cast<char*>(fields);
    const size_t written = past == PastTheList::Emptied ? max : std::min<size_t>(max, items.size());
    for (size_t i = 0; i < written; ++i, field += size)
      CopyText(i < items.size() ? NameOf(items[i]) : kNone, field, size);
  }

 private:
  static inline const std::string kNone;
  static const std::string& NameOf(const std::string& text) { return text; }
  template <class Item>
  static const std::string& NameOf(const Item& item) {
    return item.name;
  }
};

}  // namespace voxtrel::platform::target_manager
