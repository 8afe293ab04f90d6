#include "Error/ErrorContexts.h"

#include <algorithm>
#include <atomic>
#include <vector>

namespace voxtrel::platform::error {
namespace {

struct Context {
  uint64_t id = 0;
  ContextState state;
};
using ContextStack = std::vector<Context>;

std::atomic<uint64_t> nextId{1};

// The stack lives on the heap behind trivially destructible thread-locals, so
// that a call during the thread's or the process's end (from a static
// destructor) finds no destroyed object: once the owner below has gone, the
// thread simply has no contexts any more.
thread_local ContextStack* threadStack = nullptr;
thread_local bool threadEnded = false;

struct StackOwner {
  ~StackOwner() {
    delete threadStack;
    threadStack = nullptr;
    threadEnded = true;
  }
};
thread_local StackOwner stackOwner;

ContextStack* ThreadStack() {
  if (threadStack == nullptr && !threadEnded) {
    threadStack = new ContextStack;
    // Touching the owner registers its destructor for this thread.
    [[maybe_unused]] StackOwner* owner = &stackOwner;
  }
  return threadStack;
}

Context* Find(ContextStack& stack, uint64_t id) {
  const auto found = std::find_if(stack.begin(), stack.end(), [&](const Context& c) { return c.id == id; });
  return found != stack.end() ? &*found : nullptr;
}

}  // namespace

uint64_t EnterContext() {
  const uint64_t id = nextId.fetch_add(1, std::memory_order_relaxed);
  if (ContextStack* stack = ThreadStack()) stack->push_back({id, {}});
  return id;
}

void ExitContext(uint64_t id) {
  ContextStack* stack = ThreadStack();
  if (stack == nullptr) return;
  const auto found = std::find_if(stack->begin(), stack->end(), [&](const Context& c) { return c.id == id; });
  stack->erase(found, stack->end());
}

void Post(uint32_t code, const char* text) {
  ContextStack* stack = ThreadStack();
  if (stack == nullptr || stack->empty()) return;
  ContextState& state = stack->back().state;
  if (state.code == 0) state.code = code;
  if (text == nullptr || *text == '\0') return;
  if (!state.message.empty()) state.message += kMessageSeparator;
  state.message += text;
}

const ContextState* StateOf(uint64_t id) {
  ContextStack* stack = ThreadStack();
  if (stack == nullptr) return nullptr;
  const Context* context = Find(*stack, id);
  return context != nullptr ? &context->state : nullptr;
}

}  // namespace voxtrel::platform::error
