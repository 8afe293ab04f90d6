#include "Error/ErrorContexts.h"

#include <algorithm>
#include <atomic>
#include <vector>

namespace voxtrel::platform::error {
namespace {

// Every call of the library opens and closes a context, and nearly every one
// posts nothing into it. So a context is only its id until something is
// posted: the open ids stand in the thread's own storage (the first few in
// place, deeper ones in a vector), and a record with a code and a message is
// made for a context only when it is first posted into.
constexpr uint32_t kIdsInPlace = 8;

struct Posted {
  explicit Posted(uint64_t contextId) : id(contextId) {}
  uint64_t id;
  ContextState state;
};

// Ids are handed to threads in blocks, so that entering a context writes
// nothing shared: a thread takes a new block once in a million contexts. A
// thread's ids therefore only grow, and the contexts open on it are ordered
// by id from the outermost to the innermost.
constexpr uint64_t kIdBlock = uint64_t{1} << 20;
std::atomic<uint64_t> nextBlock{1};

// What a thread holds, in one trivially destructible thread-local, so that
// it costs one look-up and a call during the thread's or the process's end
// (from a static destructor) finds no destroyed object. The vectors live on
// the heap; once the owner below has gone, the thread keeps only the
// contexts that fit in place and takes no more posts.
struct ThreadContexts {
  uint64_t nextId = 0;
  uint64_t blockEnd = 0;
  uint32_t depth = 0;  // Contexts open, counting those in `deeper`
  bool ended = false;
  // The id of the innermost context with a record, 0 for none: lets a
  // closing context see at a glance that it has no record to drop.
  uint64_t innermostPosted = 0;
  uint64_t openInPlace[kIdsInPlace] = {};
  std::vector<uint64_t>* deeper = nullptr;
  std::vector<Posted>* posted = nullptr;  // Ordered by id
};
//
// Every call of the library reaches it twice, so its address is fixed when
// the library is loaded (initial-exec) instead of being looked up through
// the dynamic loader on each access. That takes a few bytes of the static
// thread-local space that the C library keeps for modules loaded later,
// which a client's dlopen() also works with.
[[gnu::tls_model("initial-exec")]] thread_local ThreadContexts self;

struct HeapOwner {
  ~HeapOwner() {
    delete self.deeper;
    delete self.posted;
    self.deeper = nullptr;
    self.posted = nullptr;
    self.ended = true;
    self.depth = std::min(self.depth, kIdsInPlace);
    self.innermostPosted = 0;
  }
};
thread_local HeapOwner heapOwner;

// A vector of the thread's, made on first use; null once the thread is ending.
template <class Vector>
Vector* Made(ThreadContexts& thread, Vector*& vector) {
  if (vector == nullptr && !thread.ended) {
    vector = new Vector;
    // Touching the owner registers its destructor for this thread.
    [[maybe_unused]] HeapOwner* owner = &heapOwner;
  }
  return vector;
}

uint64_t NextId(ThreadContexts& thread) {
  if (thread.nextId == thread.blockEnd) {
    thread.nextId = nextBlock.fetch_add(1, std::memory_order_relaxed) * kIdBlock;
    thread.blockEnd = thread.nextId + kIdBlock;
  }
  return thread.nextId++;
}

uint64_t OpenIdAt(const ThreadContexts& thread, uint32_t position) {
  return position < kIdsInPlace ? thread.openInPlace[position] : (*thread.deeper)[position - kIdsInPlace];
}

// Drops the records of `id` and of every context opened after it.
void DropRecordsFrom(ThreadContexts& thread, uint64_t id) {
  std::vector<Posted>& posted = *thread.posted;
  while (!posted.empty() && posted.back().id >= id) posted.pop_back();
  thread.innermostPosted = posted.empty() ? 0 : posted.back().id;
}

Posted* RecordOf(ThreadContexts& thread, uint64_t id) {
  if (thread.posted == nullptr) return nullptr;
  const auto found = std::find_if(thread.posted->begin(), thread.posted->end(),
                                  [&](const Posted& record) { return record.id == id; });
  return found != thread.posted->end() ? &*found : nullptr;
}

}  // namespace

// The common case (an id left in the thread's block, room in place) is kept
// apart from the rest, so that it saves no registers it does not use.
[[gnu::noinline, gnu::cold]] static uint64_t EnterContextSlowly(ThreadContexts& thread) {
  const uint64_t id = NextId(thread);
  if (thread.depth < kIdsInPlace) {
    thread.openInPlace[thread.depth++] = id;
  } else if (std::vector<uint64_t>* deeper = Made(thread, thread.deeper)) {
    deeper->push_back(id);
    ++thread.depth;
  }
  return id;
}

uint64_t EnterContext() {
  ThreadContexts& thread = self;
  if (thread.depth >= kIdsInPlace || thread.nextId == thread.blockEnd) [[unlikely]]
    return EnterContextSlowly(thread);
  const uint64_t id = thread.nextId++;
  thread.openInPlace[thread.depth++] = id;
  return id;
}

// Closes the context at `position` of the open ones and all inside it.
static void CloseFrom(ThreadContexts& thread, uint32_t position, uint64_t id) {
  thread.depth = position;
  if (thread.deeper != nullptr && position < kIdsInPlace + thread.deeper->size())
    thread.deeper->resize(position > kIdsInPlace ? position - kIdsInPlace : 0);
  if (thread.innermostPosted >= id) DropRecordsFrom(thread, id);
}

[[gnu::noinline]] static void ExitContextSlowly(ThreadContexts& thread, uint64_t id) {
  for (uint32_t position = thread.depth; position-- > 0;) {
    const uint64_t open = OpenIdAt(thread, position);
    if (open == id) return CloseFrom(thread, position, id);
    if (open < id) return;  // Ids grow inwards: `id` is not open here
  }
}

void ExitContext(uint64_t id) {
  ThreadContexts& thread = self;
  // Contexts close in the order they opened, nearly always, and most were
  // never posted into.
  const uint32_t depth = thread.depth;
  if (depth != 0 && depth <= kIdsInPlace && thread.openInPlace[depth - 1] == id && thread.innermostPosted < id)
      [[likely]] {
    thread.depth = depth - 1;
    return;
  }
  ExitContextSlowly(thread, id);
}

void Post(uint32_t code, const char* text) {
  ThreadContexts& thread = self;
  if (thread.depth == 0) return;
  const uint64_t innermost = OpenIdAt(thread, thread.depth - 1);
  std::vector<Posted>* posted = Made(thread, thread.posted);
  if (posted == nullptr) return;
  if (thread.innermostPosted != innermost) {
    posted->emplace_back(innermost);
    thread.innermostPosted = innermost;
  }
  ContextState& state = posted->back().state;
  if (state.code == 0) state.code = code;
  if (text == nullptr || *text == '\0') return;
  if (!state.message.empty()) state.message += kMessageSeparator;
  state.message += text;
}

const ContextState* StateOf(uint64_t id) {
  const Posted* record = RecordOf(self, id);
  return record != nullptr ? &record->state : nullptr;
}

}  // namespace voxtrel::platform::error
