#include "CallSequence.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <sstream>
#include <thread>
#include <tuple>
#include <utility>

#include "ArgumentPool.h"
#include "InProc_Vxt.h"
#include "PlatformTestControl.h"

namespace vxt::fuzz {
namespace {

using sweep::Arena;

// The memory of every pointer argument, and what the calls wrote there.
struct CallState {
  Arena arena;
  ArgumentPool pool;
};

struct Operation {
  const char* service;
  const char* name;
  uint32_t serviceId;
  std::vector<std::string> parameters;
  std::vector<sweep::ArgKind> kinds;
  std::vector<uint32_t> recordSizes;
  VXT_Result (*call)(void* service, const std::vector<std::string>& parameters, CallState& state, ByteReader& input);
};

template <class T>
uint32_t RecordSize() {
  if constexpr (sweep::KindOf<T>() == sweep::ArgKind::Record) return sizeof(std::remove_pointer_t<T>);
  return 0;
}

template <auto Method>
struct Binding;

template <class Service, class... Args, VXT_Result (Service::*Method)(Args...)>
struct Binding<Method> {
  static VXT_Result Call(void* service, const std::vector<std::string>& parameters, CallState& state,
                         ByteReader& input) {
    return CallWith(static_cast<Service*>(service), parameters, state, input, std::index_sequence_for<Args...>{});
  }
  // Arguments are made in order: a braced list is evaluated left to right.
  template <size_t... Index>
  static VXT_Result CallWith(Service* service, const std::vector<std::string>& parameters, CallState& state,
                             ByteReader& input, std::index_sequence<Index...>) {
    std::tuple<Args...> arguments{MakeArgument<Args>(NameOf(parameters, Index), state.arena.Slot(Index), state.pool, input)...};
    return std::apply([service](Args... values) { return (service->*Method)(values...); }, arguments);
  }
  static std::string NameOf(const std::vector<std::string>& parameters, size_t index) {
    return index < parameters.size() ? parameters[index] : std::string();
  }
  static std::vector<sweep::ArgKind> Kinds() { return {sweep::KindOf<Args>()...}; }
  static std::vector<uint32_t> RecordSizes() { return {RecordSize<Args>()...}; }
};

std::vector<std::string> Words(const char* text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

struct ParameterNames {
  const char* service;
  const char* name;
  const char* parameters;
};

#define VXT_SWEEP_PARAMETERS(Service, Name, Parameters) ParameterNames{#Service, #Name, Parameters},
const ParameterNames kParameterNames[] = {
#include "SweepParameters.inc"
};
#undef VXT_SWEEP_PARAMETERS

std::vector<std::string> ParametersOf(const char* service, const char* name) {
  for (const ParameterNames& names : kParameterNames)
    if (std::string(names.service) == service && std::string(names.name) == name) return Words(names.parameters);
  return {};
}

#define VXT_SWEEP_OPERATION(Service, Name)                                                     \
  Operation{#Service,                                                                          \
            #Name,                                                                             \
            VXT_Service_##Service,                                                             \
            ParametersOf(#Service, #Name),                                                     \
            Binding<&IInternalService_##Service::Name>::Kinds(),                               \
            Binding<&IInternalService_##Service::Name>::RecordSizes(),                         \
            &Binding<&IInternalService_##Service::Name>::Call},

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> all = {
#include "SweepOperations.inc"
  };
  return all;
}
#undef VXT_SWEEP_OPERATION

// A thread of the client's process that runs the calls given to it, so that
// a sequence can call from two threads and the library sees each thread's
// client.
class Worker {
 public:
  Worker() : thread_([this] { Loop(); }) {}

  // Runs the work on this thread; a call that does not return within the
  // deadline is a hang, and the process ends.
  void Run(const std::function<void()>& work, const std::string& what) {
    std::unique_lock lock(mutex_);
    work_ = &work;
    done_ = false;
    changed_.notify_all();
    if (!changed_.wait_for(lock, std::chrono::seconds(20), [this] { return done_; })) {
      std::fprintf(stderr, "fuzz: %s did not return within 20 s\n", what.c_str());
      std::abort();
    }
  }

 private:
  void Loop() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return work_ != nullptr; });
      const std::function<void()>* work = std::exchange(work_, nullptr);
      lock.unlock();
      (*work)();
      lock.lock();
      done_ = true;
      changed_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  const std::function<void()>* work_ = nullptr;
  bool done_ = false;
  std::thread thread_;  // last: started once the members it uses exist
};

// The workers live as long as the process: a thread the library has seen
// keeps its identity from one sequence to the next.
Worker& WorkerFor(uint8_t thread) {
  static auto* workers = new Worker[2];
  return workers[thread % 2];
}

VXT_Client ClientRecord(uint32_t clientId) {
  VXT_Client client{};
  client.structureSize = VXT_CLIENT_SIZE;
  client.clientId = clientId;
  std::snprintf(client.identifier, sizeof client.identifier, "fuzz_%u@here", clientId);
  return client;
}

bool IsPublic(VXT_Result result) { return result == VXT_SUCCESS || (static_cast<uint32_t>(result) & 0x80000000u) != 0; }

std::string Hex(VXT_Result result) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08x", static_cast<uint32_t>(result));
  return text;
}

class SequenceRunner {
 public:
  SequenceRunner(const uint8_t* data, size_t size) : input_(data, size) {}

  SequenceOutcome Run() {
    voxtrel::testing::ResetTestControl();
    voxtrel::testing::SetLogLevel(1);
    voxtrel::testing::StartTraceCapture();
    while (!input_.empty() && outcome_.calls < kMaxCalls) Step();
    // An id connected twice stands twice among the clients: it leaves once
    // per connection.
    for (uint32_t clientId : {1u, 2u})
      for (; connections_[clientId] > 0; --connections_[clientId])
        WorkerFor(0).Run([clientId] { Disconnect(clientId); }, "Disconnect");
    if (IsConnected() != 0) outcome_.problems.push_back("a client is still connected after every Disconnect");
    voxtrel::testing::ResetTestControl();
    return outcome_;
  }

 private:
  void Step() {
    const uint16_t selector = static_cast<uint16_t>(input_.Word(2) % (kFirstOperation + Operations().size()));
    const uint8_t who = input_.Byte();
    const uint32_t clientId = 1 + ((who >> 1) & 1);
    ++outcome_.calls;
    VXT_Result result = VXT_SUCCESS;
    std::string what;
    std::function<void()> work;
    if (selector == kStartNewInstance) {
      what = "StartNewInstance";
      work = [&] {
        VXT_Client client = ClientRecord(clientId);
        result = StartNewInstance(&client, 1, 0, nullptr);
      };
    } else if (selector == kFinishInitialization) {
      what = "FinishInitialization";
      work = [&] { result = FinishInitialization(); };
    } else if (selector == kDisconnect) {
      what = "Disconnect";
      work = [&] { result = Disconnect(clientId); };
    } else {
      const Operation& operation = Operations()[selector - kFirstOperation];
      what = std::string(operation.service) + "::" + operation.name;
      work = [&] {
        void* service = nullptr;
        if (GetService(nullptr, operation.serviceId, &service) != VXT_SUCCESS || service == nullptr) return;
        result = operation.call(service, operation.parameters, state_, input_);
        for (size_t index = 0; index < operation.kinds.size(); ++index)
          if (operation.kinds[index] == sweep::ArgKind::Pointer || operation.kinds[index] == sweep::ArgKind::Record)
            state_.pool.Harvest(state_.arena.Peek(index));
      };
    }
    WorkerFor(who & 1).Run(work, what);
    if (selector == kStartNewInstance && result == VXT_SUCCESS) ++connections_[clientId];
    if (selector == kDisconnect && result == VXT_SUCCESS && connections_[clientId] > 0) --connections_[clientId];
    if (!IsPublic(result)) outcome_.problems.push_back(what + " returned " + Hex(result) + ", no public code");
    // To read what a failing input does: VXT_FUZZ_VERBOSE=1 lists its calls.
    if (verbose_) std::fprintf(stderr, "fuzz: thread %u client %u %s: %s\n", who & 1, clientId, what.c_str(), Hex(result).c_str());
    voxtrel::testing::ClearCapturedTrace();
  }

  ByteReader input_;
  const bool verbose_ = std::getenv("VXT_FUZZ_VERBOSE") != nullptr;
  CallState state_;
  SequenceOutcome outcome_;
  uint32_t connections_[3] = {};  // per client id 1 and 2
};

}  // namespace

SequenceOutcome RunCallSequence(const uint8_t* data, size_t size) { return SequenceRunner(data, size).Run(); }

int OperationSelector(const std::string& service, const std::string& name) {
  const std::vector<Operation>& operations = Operations();
  for (size_t index = 0; index < operations.size(); ++index)
    if (service == operations[index].service && name == operations[index].name)
      return static_cast<int>(kFirstOperation + index);
  return -1;
}

std::vector<uint32_t> RecordSizes() {
  std::vector<uint32_t> sizes;
  for (const Operation& operation : Operations())
    for (uint32_t size : operation.recordSizes)
      if (size != 0 && std::find(sizes.begin(), sizes.end(), size) == sizes.end()) sizes.push_back(size);
  return sizes;
}

}  // namespace vxt::fuzz
