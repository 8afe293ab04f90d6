// The text stream that trace lines and messages are written into.
#pragma once

#include <locale>
#include <sstream>

namespace vxt::frame {

// A string stream in the classic locale. The library lives in its client's
// process, and a client that makes another locale global must not see its
// numbers grouped or its digits changed in lines and messages.
class TextStream : public std::ostringstream {
 public:
  TextStream() { imbue(std::locale::classic()); }
};

}  // namespace vxt::frame
