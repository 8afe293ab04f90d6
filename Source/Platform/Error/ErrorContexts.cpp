#include "Error/ErrorContexts.h"

#include <algorithm>
#include <atomic>
#include <vector>

namespace voxtrel::platform::error {
namespace {

struct Context {
  explicit Context(uint64_t contextId) : id(contextId) {}
  uint64_t id;
  ContextState state;
};
using ContextStack = std::vector<Context>;

// Ids are handed to threads in blocks, so that entering a context writes
// nothing shared: a thread takes a new block once in a million contexts.
constexpr uint64_t kIdBlock = uint64_t{1} << 20;
std::atomic<uint64_t> nextBlock{1};

// What a thread holds, in one trivially destructible thread-local, so that
// it costs one look-up and a call during the thread's or the process's end
// (from a static destructor) finds no destroyed object. The stack lives on
// the heap; once the owner below has gone, the thread simply has no
// contexts any more.
struct ThreadContexts {
  ContextStack* stack = nullptr;
  bool ended = false;
  uint64_t nextId = 0;
  uint64_t blockEnd = 0;
};
//
// Every call of the library reaches it twice, so its address is fixed when
// the library is loaded (initial-exec) instead of being looked up through
// the dynamic loader on each access. That takes a few bytes of the static
// thread-local space that the C library keeps for modules loaded later,
// which a client's dlopen() also works with.
[[gnu::tls_model("initial-exec")]] thread_local ThreadContexts self;

struct StackOwner {
  ~StackOwner() {
    delete self.stack;
    self.stack = nullptr;
    self.ended = true;
  }
};
thread_local StackOwner stackOwner;

// The thread's stack, made on first use; null once the thread is ending.
ContextStack* ThreadStack(ThreadContexts& thread) {
  if (thread.stack == nullptr && !thread.ended) {
    thread.stack = new ContextStack;
    thread.stack->reserve(8);
    // Touching the owner registers its destructor for this thread.
    [[maybe_unused]] StackOwner* owner = &stackOwner;
  }
  return thread.stack;
}

uint64_t NextId(ThreadContexts& thread) {
  if (thread.nextId == thread.blockEnd) {
    thread.nextId = nextBlock.fetch_add(1, std::memory_order_relaxed) * kIdBlock;
    thread.blockEnd = thread.nextId + kIdBlock;
  }
  return thread.nextId++;
}

Context* Find(ContextStack& stack, uint64_t id) {
  const auto found = std::find_if(stack.begin(), stack.end(), [&](const Context& c) { return c.id == id; });
  return found != stack.end() ? &*found : nullptr;
}

}  // namespace

// Every call of the library enters and exits a context: each looks up the
// thread's data once. The common case (an id left in the thread's block, room
// on its stack) is kept apart from the rest, so that it saves no registers
// it does not use.
[[gnu::noinline, gnu::cold]] static uint64_t EnterContextSlowly(ThreadContexts& thread) {
  const uint64_t id = NextId(thread);
  if (ContextStack* stack = ThreadStack(thread)) stack->emplace_back(id);
  return id;
}

uint64_t EnterContext() {
  ThreadContexts& thread = self;
  ContextStack* stack = thread.stack;
  if (thread.nextId == thread.blockEnd || stack == nullptr || stack->size() == stack->capacity()) [[unlikely]]
    return EnterContextSlowly(thread);
  const uint64_t id = thread.nextId++;
  stack->emplace_back(id);
  return id;
}

[[gnu::noinline]] static void ExitContextsOpenedInside(ContextStack& stack, uint64_t id) {
  const auto found = std::find_if(stack.begin(), stack.end(), [&](const Context& c) { return c.id == id; });
  stack.erase(found, stack.end());
}

void ExitContext(uint64_t id) {
  ContextStack* stack = self.stack;
  if (stack == nullptr || stack->empty()) return;
  // Contexts close in the order they opened, nearly always.
  if (stack->back().id == id) [[likely]] {
    stack->pop_back();
    return;
  }
  ExitContextsOpenedInside(*stack, id);
}

void Post(uint32_t code, const char* text) {
  ContextStack* stack = ThreadStack(self);
  if (stack == nullptr || stack->empty()) return;
  ContextState& state = stack->back().state;
  if (state.code == 0) state.code = code;
  if (text == nullptr || *text == '\0') return;
  if (!state.message.empty()) state.message += kMessageSeparator;
  state.message += text;
}

const ContextState* StateOf(uint64_t id) {
  ContextStack* stack = ThreadStack(self);
  if (stack == nullptr) return nullptr;
  const Context* context = Find(*stack, id);
  return context != nullptr ? &context->state : nullptr;
}

}  // namespace voxtrel::platform::error
