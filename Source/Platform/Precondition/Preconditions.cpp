// The Precondition component. A device's preconditions are those its
// "preconditions" member (or its nearest ancestor's) describes, in order,
// their ids counting from 1:
//
//   "preconditions": [
//     { "name": "probe mode", "default": "False", "effect": "haltThreads" },
//     { "name": "debug enabled", "default": "True" }
//   ]
//
// A precondition with the effect "haltThreads" is the state of the domain's
// emulated threads: True when all are halted, False when all run, Unknown
// in between; requiring it halts or resumes them. Any other precondition
// holds the state a client last required or set. A suppressed precondition
// is not enforced: requiring it completes at once and changes nothing.
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Cpu/CpuBackend.h"
#include "Cpu/CpuDomains.h"
#include "OperationReceipt/Receipts.h"
#include "Precondition.h"
#include "Support/ComponentCall.h"
#include "Target/FacetChecks.h"
#include "Target/FacetOwner.h"
#include "Target/JsonReader.h"
#include "Target/PerTarget.h"
#include "TargetManager/ListAnswers.h"
#include "TargetManager/Request.h"

namespace voxtrel::platform::precondition {
namespace {

using receipts::ReceiptOutcome;
using target::Json;
using target::Node;
using target_manager::AnswerCount;
using target_manager::AnswerFill;
using target_manager::HexId;
using target_manager::ListOf;
using target_manager::Request;

constexpr uint32_t kUnknownPrecondition = 0x20001;  // No such precondition, or a state out of range
constexpr uint32_t kNotWritable = 0x20002;          // A state the target decides
constexpr size_t kNameFieldSize = 64;
constexpr char kMember[] = "preconditions";
constexpr char kHaltThreads[] = "haltThreads";
constexpr const char* kStateNames[] = {"False", "True", "Unknown"};

struct Described {
  std::string name;
  VXT_PreconditionState defaultState = VXT_PreconditionState_Unknown;
  bool haltsThreads = false;
};

VXT_PreconditionState StateNamed(const std::string& text, const std::string& place) {
  for (uint32_t i = 0; i < 3; ++i)
    if (text == kStateNames[i]) return static_cast<VXT_PreconditionState>(i);
  target::Fail(place, "expected \"False\", \"True\" or \"Unknown\", found \"" + text + "\"");
}

std::vector<Described> ReadPreconditions(const Json& facet, const std::string& place) {
  std::vector<Described> described;
  for (size_t index = 0; index < facet.size(); ++index) {
    const target::ObjectReader object(facet[index], target::PlaceOf(place, index), {"name", "default", "effect"});
    Described entry{object.RequiredString("name", kNameFieldSize - 1), {}, false};
    entry.defaultState = StateNamed(object.OptionalString("default", 8, "Unknown"), object.Place("default"));
    const std::string effect = object.OptionalString("effect", 32);
    if (!effect.empty() && effect != kHaltThreads)
      target::Fail(object.Place("effect"), "the only effect is \"haltThreads\"");
    entry.haltsThreads = !effect.empty();
    if (entry.name.empty()) target::Fail(object.Place("name"), "a precondition needs a name");
    for (const Described& before : described)
      if (before.name == entry.name) target::Fail(object.Place("name"), "\"" + entry.name + "\" is given twice");
    described.push_back(std::move(entry));
  }
  return described;
}

const bool registered = [] {
  target::RegisterFacetCheck(kMember, [](const Json& facet, const std::string& place, const Node&) {
    ReadPreconditions(facet, place);
  });
  return true;
}();

// What clients changed on the built target, by the device that describes
// the preconditions and the precondition.
struct Changes {
  VXT_PreconditionState current = VXT_PreconditionState_Unknown;
  std::optional<VXT_PreconditionState> defaultState;
  bool suppressed = false;
};

using State = target::PerTarget<std::map<std::pair<uint32_t, uint32_t>, Changes>>;

State& Stored() {
  static State state;
  return state;
}

// One precondition of the device a request names.
struct Found {
  std::shared_ptr<target::LiveTopology> topology;
  const Node* owner = nullptr;
  std::vector<Described> all;
  uint32_t id = 0;

  const Described& described() const { return all[id - 1]; }
  Changes& changes() const {
    auto [entry, added] = Stored().For(topology).try_emplace({owner->id, id});
    if (added) entry->second.current = described().defaultState;
    return entry->second;
  }
};

// Every precondition of the device; none for a device that is not known.
std::optional<Found> PreconditionsOf(Request& request, uint32_t deviceId) {
  const Node* device = request.Device(deviceId);
  if (device == nullptr) return std::nullopt;
  const Node* owner = target::FacetOwner(*request.Topology(), *device, kMember);
  if (owner == nullptr) return Found{request.SharedTopology(), device, {}, 0};
  return Found{request.SharedTopology(), owner, ReadPreconditions(*owner->FindFacet(kMember), kMember), 0};
}

std::optional<Found> Precondition(Request& request, uint32_t deviceId, uint32_t preconditionId) {
  auto found = PreconditionsOf(request, deviceId);
  if (!found) return std::nullopt;
  if (preconditionId == 0 || preconditionId > found->all.size()) {
    request.Refuse(kUnknownPrecondition, ": device " + HexId(deviceId) + " has no precondition " +
                                             std::to_string(preconditionId));
    return std::nullopt;
  }
  found->id = preconditionId;
  return found;
}

bool KnownState(Request& request, VXT_PreconditionState state) {
  if (state <= VXT_PreconditionState_Unknown) return true;
  request.Refuse(kUnknownPrecondition, ": " + std::to_string(state) + " is no precondition state (0 to 2)");
  return false;
}

std::shared_ptr<cpu::CpuBackend> ThreadsOf(const Node& owner) {
  const cpu::CpuSelection selection = cpu::CpuDomains::Instance().Find(owner.targetDomainId);
  return selection.result == cpu::LookupResult::Ok ? selection.domain->backend : nullptr;
}

VXT_PreconditionState ThreadState(cpu::CpuBackend& backend) {
  uint32_t halted = 0;
  for (uint32_t thread = 0; thread < backend.ThreadCount(); ++thread) {
    cpu::RunState state = cpu::RunState::Running;
    if (backend.GetRunState(thread, state) != cpu::CpuResult::Ok) return VXT_PreconditionState_Unknown;
    if (state == cpu::RunState::Halted) ++halted;
  }
  return halted == backend.ThreadCount() ? VXT_PreconditionState_True
         : halted == 0                   ? VXT_PreconditionState_False
                                         : VXT_PreconditionState_Unknown;
}

constexpr target_manager::NameFields Names(uint32_t max) {
  return {max, kNameFieldSize, target_manager::PastTheList::Emptied};
}

uint32_t GetNumPreconditions(uint32_t deviceId, uint32_t* count) {
  VOXTREL_COMPONENT_CALL("Precondition.GetNumPreconditions", "deviceId=", HexId(deviceId));
  Request request("Precondition.GetNumPreconditions");
  return AnswerCount(request, count, "count", [&] { return ListOf(PreconditionsOf(request, deviceId), &Found::all); });
}

uint32_t GetPreconditions(uint32_t deviceId, uint32_t maxNumPreconditions, char* names) {
  VOXTREL_COMPONENT_CALL("Precondition.GetPreconditions", "deviceId=", HexId(deviceId), ",max=", maxNumPreconditions);
  Request request("Precondition.GetPreconditions");
  return AnswerFill(request, names, "names", Names(maxNumPreconditions),
                    [&] { return ListOf(PreconditionsOf(request, deviceId), &Found::all); });
}

uint32_t GetPreconditionId(uint32_t deviceId, const char* name, uint32_t* id) {
  VOXTREL_COMPONENT_CALL("Precondition.GetPreconditionId", "deviceId=", HexId(deviceId));
  Request request("Precondition.GetPreconditionId");
  const auto found = PreconditionsOf(request.NotNull(name, "name").NotNull(id, "id"), deviceId);
  if (!found) return request.code();
  for (size_t i = 0; i < found->all.size(); ++i) {
    if (found->all[i].name != name) continue;
    *id = static_cast<uint32_t>(i + 1);
    return 0;
  }
  return request.Refuse(kUnknownPrecondition,
                        ": device " + HexId(deviceId) + " has no precondition \"" + std::string(name) + "\"");
}

uint32_t Require(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state, uint64_t* token) {
  VOXTREL_COMPONENT_CALL("Precondition.Require", "deviceId=", HexId(deviceId), ",id=", preconditionId,
                         ",state=", static_cast<uint32_t>(state));
  Request request("Precondition.Require");
  const auto found = Precondition(request.NotNull(token, "operationToken"), deviceId, preconditionId);
  if (!found || !KnownState(request, state)) return request.code();
  if (state == VXT_PreconditionState_Unknown)
    return request.Refuse(kUnknownPrecondition, ": a precondition can be required True or False, not Unknown");
  std::lock_guard lock(Stored().mutex);
  Changes& changes = found->changes();
  const auto backend = found->described().haltsThreads ? ThreadsOf(*found->owner) : nullptr;
  if (changes.suppressed || !backend) {
    if (!changes.suppressed) changes.current = state;
    *token = receipts::FinishedReceipt(ReceiptOutcome::Success());
    return 0;
  }
  *token = receipts::RunReceipt([backend, state](std::stop_token) {
    const auto result = state == VXT_PreconditionState_True ? backend->HaltAll() : backend->GoAll();
    if (result == cpu::CpuResult::Ok) return ReceiptOutcome::Success();
    return ReceiptOutcome::Failure(kNotWritable, std::string("changing the threads' run state failed: ") +
                                                     std::string(cpu::CpuResultText(result)));
  });
  return 0;
}

uint32_t GetCurrentState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state) {
  VOXTREL_COMPONENT_CALL("Precondition.GetCurrentState", "deviceId=", HexId(deviceId), ",id=", preconditionId);
  Request request("Precondition.GetCurrentState");
  const auto found = Precondition(request.NotNull(state, "state"), deviceId, preconditionId);
  if (!found) return request.code();
  const auto backend = found->described().haltsThreads ? ThreadsOf(*found->owner) : nullptr;
  std::lock_guard lock(Stored().mutex);
  *state = backend ? ThreadState(*backend) : found->changes().current;
  return 0;
}

uint32_t SetCurrentState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state) {
  VOXTREL_COMPONENT_CALL("Precondition.SetCurrentState", "deviceId=", HexId(deviceId), ",id=", preconditionId,
                         ",state=", static_cast<uint32_t>(state));
  Request request("Precondition.SetCurrentState");
  const auto found = Precondition(request, deviceId, preconditionId);
  if (!found || !KnownState(request, state)) return request.code();
  if (found->described().haltsThreads && ThreadsOf(*found->owner))
    return request.Refuse(kNotWritable, ": \"" + found->described().name +
                                            "\" is the state of the threads; Require changes it");
  std::lock_guard lock(Stored().mutex);
  found->changes().current = state;
  return 0;
}

uint32_t GetDefaultState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState* state) {
  VOXTREL_COMPONENT_CALL("Precondition.GetDefaultState", "deviceId=", HexId(deviceId), ",id=", preconditionId);
  Request request("Precondition.GetDefaultState");
  const auto found = Precondition(request.NotNull(state, "state"), deviceId, preconditionId);
  if (!found) return request.code();
  std::lock_guard lock(Stored().mutex);
  *state = found->changes().defaultState.value_or(found->described().defaultState);
  return 0;
}

uint32_t SetDefaultState(uint32_t deviceId, uint32_t preconditionId, VXT_PreconditionState state) {
  VOXTREL_COMPONENT_CALL("Precondition.SetDefaultState", "deviceId=", HexId(deviceId), ",id=", preconditionId,
                         ",state=", static_cast<uint32_t>(state));
  Request request("Precondition.SetDefaultState");
  const auto found = Precondition(request, deviceId, preconditionId);
  if (!found || !KnownState(request, state)) return request.code();
  std::lock_guard lock(Stored().mutex);
  found->changes().defaultState = state;
  return 0;
}

uint32_t IsSuppressed(uint32_t deviceId, uint32_t preconditionId, uint8_t* suppressed) {
  VOXTREL_COMPONENT_CALL("Precondition.IsSuppressed", "deviceId=", HexId(deviceId), ",id=", preconditionId);
  Request request("Precondition.IsSuppressed");
  const auto found = Precondition(request.NotNull(suppressed, "suppressed"), deviceId, preconditionId);
  if (!found) return request.code();
  std::lock_guard lock(Stored().mutex);
  *suppressed = found->changes().suppressed ? 1 : 0;
  return 0;
}

uint32_t SetSuppressed(uint32_t deviceId, uint32_t preconditionId, bool suppressed) {
  VOXTREL_COMPONENT_CALL("Precondition.SetSuppressed", "deviceId=", HexId(deviceId), ",id=", preconditionId,
                         ",suppressed=", suppressed);
  Request request("Precondition.SetSuppressed");
  const auto found = Precondition(request, deviceId, preconditionId);
  if (!found) return request.code();
  std::lock_guard lock(Stored().mutex);
  found->changes().suppressed = suppressed;
  return 0;
}

constexpr PreconditionComponent kTable{&GetNumPreconditions, &GetPreconditions, &GetPreconditionId, &Require,
                                       &GetCurrentState,     &SetCurrentState,  &GetDefaultState,   &SetDefaultState,
                                       &IsSuppressed,        &SetSuppressed};

}  // namespace

const PreconditionComponent* Table() { return &kTable; }

}  // namespace voxtrel::platform::precondition
