// The call frame: what every service operation does around its own work.
//
// An operation is written as its site, its trace arguments and a body made of
// its checks and its core:
//
//   VXT_Result InProc_General::GetNumConnectedClients(uint32_t* numConnectedClients) {
//     return RunOperation(logger, VXT_OPERATION(General, GetNumConnectedClients),
//         TraceArgs(), TraceArgs("numConnectedClients", Out<Dec>(numConnectedClients)),
//         [&](Call& call) {
//           return call.NotNull(numConnectedClients, "numConnectedClients")
//               .Core(common, [&](const CommonComponent& c) { return c.GetNumConnectedClients(numConnectedClients); });
//         });
//   }
//
// RunOperation writes the In line, counts the call, opens the error context,
// runs the body inside a catch-all, posts the check's text, translates a
// failure into the public code and the thread's last error, writes the error
// and Out lines and closes the context on every path. Nothing is rendered
// while a level is off, and the message stream is made only when a check or
// core writes to it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

#include "Error.h"
#include "frame/CountMethodCall.h"
#include "frame/ErrorContext.h"
#include "frame/InternalCodes.h"
#include "frame/LastError.h"
#include "frame/OperationSite.h"
#include "frame/Render.h"
#include "frame/TextStream.h"
#include "frame/TraceLine.h"
#include "frame/TranslateErrorCode.h"

namespace vxt::frame {

// "InProc_<Service>::<Op>()", the prefix of a check's text.
struct OperationPrefix {
  const OperationSite& site;
  friend std::ostream& operator<<(std::ostream& out, const OperationPrefix& prefix) {
    return out << "InProc_" << prefix.site.service << "::" << prefix.site.operation << "()";
  }
};

// The state of one call, handed to the operation's body. Checks run in the
// order written; the first that fails sets the code and the message, and
// every later check and the core do nothing.
class Call {
 public:
  explicit Call(const OperationSite& site) : site_(site) {}
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  bool failed() const { return code_ != code::kSuccess; }
  uint32_t code() const { return code_; }
  const OperationSite& site() const { return site_; }
  OperationPrefix prefix() const { return OperationPrefix{site_}; }

  // The call's message stream, made on first use: most calls never write to
  // it, and a stream is too large to carry on every call's stack.
  std::ostream& message() {
    if (!message_) message_ = std::make_unique<TextStream>();
    return *message_;
  }

  // Fails the call with `failure` and the text made of `parts`, unless it
  // failed already.
  template <class... Parts>
  Call& Fail(uint32_t failure, const Parts&... parts) {
    if (!failed()) {
      code_ = failure;
      (message() << ... << parts);
    }
    return *this;
  }

  template <class... Parts>
  Call& Require(bool condition, uint32_t failure, const Parts&... parts) {
    if (!condition) Fail(failure, parts...);
    return *this;
  }

  // "InProc_<Service>::<Op>() argument error (<argument>) : <what>"
  Call& ArgumentError(uint32_t failure, const char* argument, const char* what) {
    return Fail(failure, prefix(), " argument error (", argument, ") : ", what);
  }

  Call& NotNull(const void* pointer, const char* argument) {
    if (pointer == nullptr) ArgumentError(code::kInvalidArgument, argument, "Null pointer");
    return *this;
  }

  // A record whose structureSize is not `expected`; a null record passes
  // (its null check stands on its own).
  template <class Record>
  Call& StructureSize(const Record* record, uint32_t expected, const char* argument) {
    if (record != nullptr && record->structureSize != expected)
      ArgumentError(code::kStructureSize, argument, "Structure size not initialized");
    return *this;
  }

  // Runs `core` unless a check failed; its result is the call's code.
  template <class CoreFn>
  uint32_t Core(CoreFn&& core) {
    if (!failed()) Settle(std::forward<CoreFn>(core)());
    return code_;
  }

  // Runs `core` on a component table. A table that is not bound yet fails
  // the call with "Error no connection to component" instead of crashing.
  template <class Table, class CoreFn>
  uint32_t Core(const Table* table, CoreFn&& core) {
    if (!failed() && table == nullptr) Fail(code::kException, prefix(), " Error no connection to component");
    if (!failed()) Settle(std::forward<CoreFn>(core)(*table));
    return code_;
  }

  // Ends the call with a public code another operation's frame has made,
  // translated, posted and reported already: this frame passes it on as it
  // is, with no second translation, error line or last error.
  uint32_t PassPublicCode(int32_t publicCode) {
    if (!failed()) {
      passedPublic_ = publicCode;
      code_ = static_cast<uint32_t>(publicCode);
    }
    return code_;
  }
  const std::optional<int32_t>& passedPublicCode() const { return passedPublic_; }

  // The frame's own steps.
  void Settle(uint32_t result) {
    if (!failed()) code_ = result;
  }
  void Threw() {
    passedPublic_.reset();
    code_ = code::kException;
    Voxtrel_ErrorPostError(code::kException, "", site_.file, site_.line);
  }
  void PostMessage() {
    if (failed() && message_) PostWrittenMessage();
  }

 private:
  const OperationSite& site_;
  uint32_t code_ = code::kSuccess;
  std::unique_ptr<TextStream> message_;
  std::optional<int32_t> passedPublic_;

  [[gnu::noinline]] void PostWrittenMessage() {
    const std::string text = message_->str();
    if (!text.empty()) Voxtrel_ErrorPostError(code_, text.c_str(), site_.file, site_.line);
  }
};

// The argument part of a line with no argument.
struct NoArgs {
  friend std::ostream& operator<<(std::ostream& out, NoArgs) { return out; }
};

template <class Args>
struct InLine {
  const OperationSite& site;
  const Args& args;
  friend std::ostream& operator<<(std::ostream& out, const InLine& line) {
    const char* name = line.site.inName != nullptr ? line.site.inName : line.site.operation;
    return out << "In  InProc_" << line.site.service << "::" << name << "(" << line.args << ")";
  }
};

// Out arguments written behind the parentheses, as in
// "Out InProc_General::GetLoggingPresetNamesCount() numPresetNames = 4 ErrorCode = ...".
template <class Args>
struct BehindParentheses {
  Args args;
};
template <class Args>
BehindParentheses<Args> ArgsBehindParentheses(Args args) {
  return BehindParentheses<Args>{std::move(args)};
}

template <class Args>
struct IsBehindParentheses : std::false_type {};
template <class Args>
struct IsBehindParentheses<BehindParentheses<Args>> : std::true_type {};

// An Out line with no parentheses at all: "Out InProc_<Service>::<Op> ErrorCode = ...".
struct BareOut {};
// An Out line whose code stands inside the parentheses:
// "Out InProc_<Service>::<Op>(ErrorCode = 0x00000000)".
struct CodeInParentheses {};

template <class Args>
struct OutLine {
  const OperationSite& site;
  const Args& args;
  int32_t publicCode;
  friend std::ostream& operator<<(std::ostream& out, const OutLine& line) {
    out << "Out InProc_" << line.site.service << "::" << line.site.operation;
    if constexpr (std::is_same_v<Args, BareOut>) {
      out << " ErrorCode = ";
    } else if constexpr (std::is_same_v<Args, CodeInParentheses>) {
      return out << "(ErrorCode = " << Hex8{line.publicCode} << ")";
    } else if constexpr (IsBehindParentheses<Args>::value) {
      out << "() " << line.args.args << " ErrorCode = ";
    } else {
      out << "(" << line.args << ") ErrorCode = ";
    }
    return out << Hex8{line.publicCode} << line.site.afterCode;
  }
};

namespace detail {

// A failed call's error line and last error; its public code. Kept out of
// line, as every operation's frame would otherwise carry it.
[[gnu::noinline]] inline int32_t ReportFailedCall(const ServiceLogger& logger, Voxtrel_ErrorContext context,
                                                  uint32_t code) {
  const std::string message = MessageForCode(context, code);
  if (!message.empty()) TraceLine(logger, 2, "VXT Error = '", message, "'", kTrailer);
  ReportErrorMessage(nullptr, message.c_str());
  return TranslateErrorCode(code);
}

template <class Body>
void RunBodyUncaught(Call& call, Body& body) {
  if constexpr (std::is_void_v<std::invoke_result_t<Body&, Call&>>) {
    body(call);
  } else {
    call.Settle(body(call));
  }
}

template <class Body>
void RunBody(Call& call, Body& body) {
  if (!call.site().catchAll) return RunBodyUncaught(call, body);
  try {
    RunBodyUncaught(call, body);
  } catch (...) {
    call.Threw();
  }
}

template <class OutArgs, class Body>
[[gnu::always_inline]] inline int32_t RunInContext(const ServiceLogger& logger, const OperationSite& site,
                                                   Voxtrel_ErrorContext context, const OutArgs& out, Body& body) {
  Call call(site);
  RunBody(call, body);
  call.PostMessage();

  int32_t publicCode = 0;
  if (call.passedPublicCode()) {
    publicCode = *call.passedPublicCode();
  } else if (call.failed()) {
    publicCode = ReportFailedCall(logger, context, call.code());
  }

  if (site.outTrailer) {
    TraceLine(logger, site.outLevel, OutLine<OutArgs>{site, out, publicCode}, kTrailer);
  } else {
    TraceLine(logger, site.outLevel, OutLine<OutArgs>{site, out, publicCode});
  }
  return publicCode;
}

// The frame up to the body: In line, count, error context; `count` runs at
// the counting step.
template <class InArgs, class OutArgs, class Count, class Body>
int32_t RunFrame(const ServiceLogger& logger, const OperationSite& site, const InArgs& in, const OutArgs& out,
                 Count&& count, Body& body) {
  if (site.contextFirst) {
    const ErrorContextScope context;
    TraceLine(logger, 1, InLine<InArgs>{site, in}, kTrailer);
    count();
    return RunInContext(logger, site, context.id(), out, body);
  }
  TraceLine(logger, 1, InLine<InArgs>{site, in}, kTrailer);
  count();
  const ErrorContextScope context;
  return RunInContext(logger, site, context.id(), out, body);
}

}  // namespace detail

// Runs one service operation through the frame and returns its public code.
// `in` and `out` are the trace arguments of the In and Out lines; they hold
// values and pointers and are rendered only when their line is written, the
// Out arguments after the body has run.
template <class InArgs, class OutArgs, class Body>
int32_t RunOperation(const ServiceLogger& logger, const OperationSite& site, const InArgs& in, const OutArgs& out,
                     Body&& body) {
  return detail::RunFrame(
      logger, site, in, out,
      [&site] {
        if (site.counted) CountCall(site.method);
      },
      body);
}

// A count of "<Service>::<Op>(<detail>)" in place of the plain one. The
// detail is made at the frame's counting step, after the In line and outside
// the call's error context, because making it may run other operations
// (a device's identifier is got through its own frame).
template <class MakeDetail>
struct CountedWithDetail {
  MakeDetail makeDetail;
};
template <class MakeDetail>
CountedWithDetail<MakeDetail> WithDetail(MakeDetail makeDetail) {
  return CountedWithDetail<MakeDetail>{std::move(makeDetail)};
}

template <class InArgs, class OutArgs, class MakeDetail, class Body>
int32_t RunOperation(const ServiceLogger& logger, const OperationSite& site, const InArgs& in, const OutArgs& out,
                     const CountedWithDetail<MakeDetail>& count, Body&& body) {
  return detail::RunFrame(
      logger, site, in, out, [&] { CountMethodCall(site.method, count.makeDetail()); }, body);
}

}  // namespace vxt::frame
