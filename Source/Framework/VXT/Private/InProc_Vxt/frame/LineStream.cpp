#include "frame/LineStream.h"

#include <ios>

namespace vxt::frame {
namespace {

// The thread's stream lives on the heap behind trivially destructible
// thread-locals, so that a line written during the thread's or the
// process's end (from a static destructor) finds no destroyed object.
struct ThreadLine {
  TextStream* stream = nullptr;
  bool busy = false;
  bool ended = false;
};
thread_local ThreadLine thread;

struct ThreadLineOwner {
  ~ThreadLineOwner() {
    delete thread.stream;
    thread.stream = nullptr;
    thread.ended = true;
  }
};
thread_local ThreadLineOwner owner;

// Back to the state of a new stream, keeping its locale and its buffer.
void Restart(TextStream& stream) {
  stream.clear();
  stream.flags(std::ios_base::skipws | std::ios_base::dec);
  stream.fill(' ');
  stream.width(0);
  stream.precision(6);
  stream.seekp(0);
}

}  // namespace

LineStream::LineStream() {
  if (thread.busy || thread.ended) {
    stream_ = &own_.emplace();
    return;
  }
  if (thread.stream == nullptr) {
    thread.stream = new TextStream;
    // Touching the owner registers its destructor for this thread.
    [[maybe_unused]] ThreadLineOwner* registered = &owner;
  } else {
    Restart(*thread.stream);
  }
  thread.busy = true;
  borrowed_ = true;
  stream_ = thread.stream;
}

LineStream::~LineStream() {
  if (borrowed_) thread.busy = false;
}

const char* LineStream::c_str() {
  // A reused buffer holds older, longer text beyond what this line wrote. A
  // piece that failed the stream stopped the line where it was.
  stream_->clear();
  *stream_ << '\0';
  return *stream_ ? stream_->view().data() : "";
}

}  // namespace vxt::frame
