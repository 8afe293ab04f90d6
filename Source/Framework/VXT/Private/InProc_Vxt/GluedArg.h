// A trace argument whose next argument follows it without the blank that
// separates arguments: Glued(Hex8{size}, "inputBuffer", Bytes(...)) renders
// "0x00000002inputBuffer = {0x90, 0x90}". A few operations write their lines
// so, and clients compare lines whole.
#pragma once

#include <ostream>

namespace vxt {

template <class First, class Next>
struct GluedArg {
  First first;
  const char* nextName;
  Next next;

  friend std::ostream& operator<<(std::ostream& out, const GluedArg& arg) {
    return out << arg.first << arg.nextName << " = " << arg.next;
  }
};

template <class First, class Next>
GluedArg<First, Next> Glued(First first, const char* nextName, Next next) {
  return GluedArg<First, Next>{first, nextName, next};
}

}  // namespace vxt
