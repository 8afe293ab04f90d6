// How a service's operation reaches the calling client's bit vectors: the
// internal operations of InProc_BitData, chained into the call's checks.
//
//   BitData* object = nullptr;
//   return BitDataChecks(call)
//       .Holding(bitData, "bitData")
//       .NotNull(count, "count")
//       .BitRange(bitData, bitOffset, bitSize, "bitData")
//       .Managed(bitData, object, "bitData")
//       .Core([&] { ... });
//
// As with the frame's own checks, the first that fails sets the call's code
// and its text, "InProc_<Service>::<Op>() argument error (<argument>) :
// <what>", and every later step is skipped.
#pragma once

#include <cstdint>
#include <utility>

#include "ArgumentErrorReporter.h"
#include "InProc_BitData.h"
#include "frame/Frame.h"

namespace vxt {

class BitDataChecks {
 public:
  explicit BitDataChecks(frame::Call& call) : call_(call), service_(InProc_BitData::Instance()) {}

  // A record that holds a vector.
  BitDataChecks& Holding(const VXT_BitData* record, const char* argument) {
    return Then([&] { return InProc_BitData::_CheckRecord(record, true, ReportArgument{call_, argument}); });
  }
  // A record that holds none, to receive one.
  BitDataChecks& Empty(const VXT_BitData* record, const char* argument) {
    return Then([&] { return InProc_BitData::_CheckRecord(record, false, ReportArgument{call_, argument}); });
  }
  BitDataChecks& BitRange(const VXT_BitData* record, uint32_t bitOffset, uint32_t bitSize, const char* argument) {
    return Then(
        [&] { return InProc_BitData::_CheckBitRange(record, bitOffset, bitSize, ReportArgument{call_, argument}); });
  }
  // The calling client's vector behind the record, into `managed`.
  BitDataChecks& Managed(const VXT_BitData* record, BitData*& managed, const char* argument) {
    return Then([&] { return service_._GetManaged(record, managed, ReportArgument{call_, argument}); });
  }
  // A new vector of bitSize bits holding initialValue in the empty record;
  // the check's text names "(bitData)".
  BitDataChecks& Create(VXT_BitData* record, uint32_t bitSize, uint64_t initialValue) {
    return Then([&] { return service_._Create(record, bitSize, initialValue, ReportArgument{call_}); });
  }
  // A new vector equal to src's in dest; the texts name "(src)" and "(dest)".
  BitDataChecks& Copy(const VXT_BitData* src, VXT_BitData* dest) {
    return Then([&] { return service_._Copy(src, dest, ReportArgument{call_}); });
  }

  BitDataChecks& NotNull(const void* pointer, const char* argument) {
    call_.NotNull(pointer, argument);
    return *this;
  }
  // Fails with "(<argument>) : <what>" unless `valid()`, which is asked
  // only when every earlier check has passed.
  template <class Predicate>
  BitDataChecks& Valid(Predicate&& valid, uint32_t failure, const char* argument, const char* what) {
    if (!call_.failed() && !std::forward<Predicate>(valid)()) call_.ArgumentError(failure, argument, what);
    return *this;
  }
  // A failure with a code and no text of its own.
  BitDataChecks& Require(bool condition, uint32_t failure) {
    if (!condition && !call_.failed()) call_.Fail(failure);
    return *this;
  }
  // Any step that returns an internal code, run unless a check failed.
  template <class Step>
  BitDataChecks& Then(Step&& step) {
    call_.Core(std::forward<Step>(step));
    return *this;
  }
  // The operation's core; returns the call's code.
  template <class Work>
  uint32_t Core(Work&& core) {
    return call_.Core(std::forward<Work>(core));
  }
  uint32_t code() const { return call_.code(); }

 private:
  frame::Call& call_;
  InProc_BitData& service_;
};

// The checks of an operation that changes bits [bitOffset, bitOffset +
// bitSize) of the client's vector in place, then `change(object)`.
template <class Change>
uint32_t ChangeBitRange(frame::Call& call, const VXT_BitData* bitData, uint32_t bitOffset, uint32_t bitSize,
                        Change&& change) {
  BitData* object = nullptr;
  return BitDataChecks(call)
      .Holding(bitData, "bitData")
      .BitRange(bitData, bitOffset, bitSize, "bitData")
      .Managed(bitData, object, "bitData")
      .Core([&] { return std::forward<Change>(change)(object); });
}

}  // namespace vxt
