// What the frame knows of an operation besides its arguments: its names, the
// place in the source that posts its errors, and how it is counted and traced.
#pragma once

#include <cstdint>

namespace vxt::frame {

struct OperationSite {
  const char* service;    // Class name without "InProc_", as in "AsmDasm"
  const char* operation;  // "Assemble"
  const char* method;     // "AsmDasm::Assemble", the telemetry counter value
  const char* file;
  uint32_t line;
  bool counted = false;       // Counts "VXT_Call" with `method` before its checks
  uint32_t outLevel = 1;      // Level of the Out line
  bool outTrailer = true;     // Out line ends with the client id
  bool contextFirst = false;  // Error context opened ahead of the In line
  const char* inName = nullptr;  // The In line's name of the operation, when it differs
  const char* afterCode = "";    // Written on the Out line right behind the code
  bool catchAll = true;       // Exceptions of the body become 0x20009; else they pass through

  // The In line names the operation `name`; every other line and message
  // keeps `operation`.
  constexpr OperationSite InNamed(const char* name) const {
    OperationSite site = *this;
    site.inName = name;
    return site;
  }

  // The operation counts its calls.
  constexpr OperationSite Counted() const {
    OperationSite site = *this;
    site.counted = true;
    return site;
  }
  // Large results: the Out line goes at level 2 and ends after the code.
  constexpr OperationSite LargeOut() const {
    OperationSite site = *this;
    site.outLevel = 2;
    site.outTrailer = false;
    return site;
  }
  // Large results written at level 1, ending after the code.
  constexpr OperationSite UntrailedOut() const {
    OperationSite site = *this;
    site.outTrailer = false;
    return site;
  }
  // The Out line closes one more parenthesis behind the code:
  // "Out InProc_StatePort::Read(operationToken = ...) ErrorCode = 0x00000000) [ClientID: 1]".
  constexpr OperationSite ParenthesisAfterCode() const {
    OperationSite site = *this;
    site.afterCode = ")";
    return site;
  }
  // The short frame: the body runs without a catch-all, so whatever it
  // calls must never throw.
  constexpr OperationSite Uncaught() const {
    OperationSite site = *this;
    site.catchAll = false;
    return site;
  }
  constexpr OperationSite ContextFirst() const {
    OperationSite site = *this;
    site.contextFirst = true;
    return site;
  }
};

}  // namespace vxt::frame

// The site of an operation of service `Service`, posting from this line.
#define VXT_OPERATION(Service, Op) \
  ::vxt::frame::OperationSite { #Service, #Op, #Service "::" #Op, __FILE__, __LINE__ }
