// Null checks that do not stop at the first failure.
//
// A few operations check a group of pointers together and tell the client
// of every null one at once: each failing check appends its sentence to the
// call's message stream, with nothing between the sentences, and the core
// runs only when none failed.
#pragma once

#include <string_view>

#include "frame/Frame.h"

namespace vxt {

// Appends "InProc_<Service>::<Op>() argument error (<argument>) : Null
// pointer" and fails the call with 0x20000 when `pointer` is null, also
// when an earlier check of the group has failed already.
inline void NoteNull(frame::Call& call, const void* pointer, std::string_view argument) {
  if (pointer != nullptr) return;
  if (!call.failed()) call.Fail(code::kInvalidArgument);
  call.message() << call.prefix() << " argument error (" << argument << ") : Null pointer";
}

}  // namespace vxt
