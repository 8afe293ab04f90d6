// Where a shared check's short text goes.
//
// The checks that several services share ("Null pointer", "Invalid", "Bit
// range invalid" ...) never compose a whole message: the operation that
// calls them knows its own prefix and argument. The operation hands each
// check a reporter that puts the short text behind that prefix into the
// call's message stream.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

#include "frame/Frame.h"

namespace vxt {

// A callable taking one string, referred to without being copied. It is
// meant to be made at the call of a check from a temporary, which lives
// until the check returns; do not keep one beyond that.
class ArgumentErrorReporter {
 public:
  template <class Report>
    requires std::invocable<const Report&, std::string_view> &&
             (!std::same_as<std::remove_cvref_t<Report>, ArgumentErrorReporter>)
  ArgumentErrorReporter(const Report& report)  // NOLINT(google-explicit-constructor): made at every check's call
      : report_(&report),
        forward_([](const void* target, std::string_view text) { (*static_cast<const Report*>(target))(text); }) {}

  void operator()(std::string_view text) const { forward_(report_, text); }

 private:
  const void* report_;
  void (*forward_)(const void*, std::string_view);
};

// "InProc_<Service>::<Op>() argument error (<argument>) : <text>" in the
// call's message stream. Without an argument, only
// "InProc_<Service>::<Op>() argument error <text>", for checks that name
// their arguments themselves.
struct ReportArgument {
  frame::Call& call;
  const char* argument = nullptr;

  void operator()(std::string_view text) const {
    std::ostream& message = call.message();
    message << call.prefix() << " argument error ";
    if (argument != nullptr) message << "(" << argument << ") : ";
    message << text;
  }
};

// Hands the text on with `lead` put before it, as "(src) : " before "Invalid".
struct ReportBehind {
  const ArgumentErrorReporter& outer;
  std::string_view lead;

  void operator()(std::string_view text) const {
    std::string whole(lead);
    whole += text;
    outer(whole);
  }
};

}  // namespace vxt
