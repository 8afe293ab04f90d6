// The stream a trace line is rendered into. Making a string stream in the
// classic locale costs more than rendering a whole line, so each thread keeps
// one and renders every line into it; a line rendered while the thread's
// stream is busy (a piece that itself traces) or after the thread has begun
// to end gets a stream of its own.
#pragma once

#include <optional>
#include <ostream>

#include "frame/TextStream.h"

namespace vxt::frame {

class LineStream {
 public:
  LineStream();
  ~LineStream();
  LineStream(const LineStream&) = delete;
  LineStream& operator=(const LineStream&) = delete;

  std::ostream& stream() { return *stream_; }
  // The text written so far, terminated.
  const char* c_str();

 private:
  TextStream* stream_;              // The thread's, or own_
  std::optional<TextStream> own_;
  bool borrowed_ = false;
};

}  // namespace vxt::frame
