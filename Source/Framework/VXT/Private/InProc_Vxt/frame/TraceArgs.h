// The argument list of an In or Out line: "name = value name2 = value2",
// one blank between arguments and no comma.
//
// TraceArgs("deviceId", Hex8{deviceId}, "count", Out<Dec>(count)) keeps the
// rendering helpers by value and renders them only when the line is
// written. A bare number has no class and is refused at compile time; a bare
// text pointer is written as it stands, "<NULL>" when null.
#pragma once

#include <ostream>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vxt::frame {

namespace detail {

// A text pointer given in place of a value.
struct PlainText {
  const char* text;
  friend std::ostream& operator<<(std::ostream& out, PlainText value) {
    return out << (value.text == nullptr ? "<NULL>" : value.text);
  }
};

template <class Value>
auto ArgValue(Value value) {
  static_assert(!std::is_arithmetic_v<Value> && !std::is_enum_v<Value>,
                "wrap a number in its rendering class, such as Dec or Hex8");
  if constexpr (std::is_same_v<Value, const char*> || std::is_same_v<Value, char*>) {
    return PlainText{value};
  } else {
    return value;
  }
}

template <class Value>
struct NamedArg {
  using ValueType = Value;
  const char* name;
  Value value;
};

}  // namespace detail

template <class... Values>
struct ArgList {
  std::tuple<detail::NamedArg<Values>...> args;

  std::ostream& Write(std::ostream& out, const char* between) const {
    std::apply(
        [&out, between](const auto&... arg) {
          [[maybe_unused]] const char* separator = "";
          ((out << separator << arg.name << " = " << arg.value, separator = between), ...);
        },
        args);
    return out;
  }

  friend std::ostream& operator<<(std::ostream& out, const ArgList& list) { return list.Write(out, " "); }
};

// The same arguments separated by ", ", as the lines of a few services are.
template <class List>
struct CommaSeparated {
  List list;
  friend std::ostream& operator<<(std::ostream& out, const CommaSeparated& args) { return args.list.Write(out, ", "); }
};

inline ArgList<> TraceArgs() { return {}; }

template <class Value, class... Rest>
auto TraceArgs(const char* name, Value value, Rest... rest) {
  static_assert(sizeof...(Rest) % 2 == 0, "TraceArgs takes pairs of a name and a value");
  using Shown = decltype(detail::ArgValue(value));
  auto tail = TraceArgs(std::move(rest)...);
  return std::apply(
      [&](auto&&... later) {
        return ArgList<Shown, typename std::remove_cvref_t<decltype(later)>::ValueType...>{
            {detail::NamedArg<Shown>{name, detail::ArgValue(std::move(value))}, std::move(later)...}};
      },
      std::move(tail.args));
}

template <class... Pairs>
auto CommaArgs(Pairs... pairs) {
  auto list = TraceArgs(std::move(pairs)...);
  return CommaSeparated<decltype(list)>{std::move(list)};
}

}  // namespace vxt::frame
