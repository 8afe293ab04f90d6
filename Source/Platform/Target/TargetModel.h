// The simulated target as the platform's components share it: which
// description is selected, and the topology built from it between the
// TargetManager's FinishInitialization and Uninitialize. Thread-safe; every
// component asks Instance().
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "DeviceLocks.h"
#include "Failure.h"
#include "TargetDescription.h"
#include "Topology.h"

namespace voxtrel::platform::target {

// A TAP controller as a client declares it on a JTAG chain.
struct TapControllerSpecification {
  std::string deviceType;
  std::string deviceSubType;
  std::string stepping;
  uint32_t irLength = 0;

  friend bool operator==(const TapControllerSpecification&, const TapControllerSpecification&) = default;
};

// A built topology with what changes while the target runs: the devices'
// own enabled flags, their locks, and the TAP controllers clients declared.
class VOXTREL_PLATFORM_API LiveTopology {
 public:
  explicit LiveTopology(std::shared_ptr<const Topology> layout);

  const Topology& Layout() const { return *layout_; }
  // The device's own flag; empty for an unknown device.
  std::optional<bool> IsEnabled(uint32_t deviceId) const;
  // False for an unknown device.
  bool SetEnabled(uint32_t deviceId, bool enabled);
  // The device and every ancestor enabled: a disabled device disables
  // everything beneath it. False for an unknown device.
  bool IsEffectivelyEnabled(uint32_t deviceId) const;

  DeviceLocks& Locks() { return locks_; }

  // The TAP controllers last declared for a chain; empty when none are.
  std::optional<std::vector<TapControllerSpecification>> SpecifiedTapControllers(uint32_t jtagChainId) const;
  void SpecifyTapControllers(uint32_t jtagChainId, std::vector<TapControllerSpecification> tapControllers);
  // True when the chain had a declaration.
  bool ForgetSpecifiedTapControllers(uint32_t jtagChainId);

  // Held by a change of the chains' make-up from its first look at what a
  // chain holds until it has stored what the chain holds now, so that two
  // changes never leave the flags of one with the declaration of the other.
  // Not held while anyone is told of the change.
  [[nodiscard]] std::unique_lock<std::mutex> BeginReconfiguration() {
    return std::unique_lock(reconfigurationMutex_);
  }

 private:
  std::shared_ptr<const Topology> layout_;
  std::unique_ptr<std::atomic<bool>[]> enabled_;
  DeviceLocks locks_;
  std::mutex reconfigurationMutex_;
  mutable std::mutex specifiedMutex_;
  std::map<uint32_t, std::vector<TapControllerSpecification>> specified_;
};

// A selected description: its text is kept so that new parameter values can
// be checked against it.
struct Selection {
  DescriptionOrigin origin;
  std::string text;
  ParameterValues values;  // Set by the client; the declared defaults stand for the rest
  ParsedDescription parsed;
};

enum class TargetPhase {
  Idle,         // Nothing started, or uninitialized
  Starting,     // StartInitialization: a client is preparing the configuration
  Initialized,  // FinishInitialization built the topology
};

class VOXTREL_PLATFORM_API TargetModel {
 public:
  static TargetModel& Instance();

  // ---- Configuration -------------------------------------------------------
  // Checks the text whole and selects it with its default parameters; on
  // failure the previous selection stays. Refused while initialized.
  Outcome Select(DescriptionOrigin origin, std::string text);
  // Gives parameters of the selected description new values (the others
  // keep theirs); the description is checked again with them, and on
  // failure nothing changes. Refused while initialized.
  Outcome SetParameters(const ParameterValues& values);
  // The selection FinishInitialization would build; the built-in default
  // when nothing was selected.
  std::shared_ptr<const Selection> CurrentSelection();

  // ---- Lifecycle -----------------------------------------------------------
  void StartInitialization();
  // Builds the topology of the current selection. When it is built already
  // it stays as it is and `builtNow` is false.
  Outcome FinishInitialization(bool& builtNow);
  // A dynamic initialization runs until it is cancelled or
  // FinishInitialization completes it; a second one is refused meanwhile.
  Outcome BeginDynamicInitialization();
  // True if one was running.
  bool CancelDynamicInitialization();
  // Drops the topology, and with it every lock: waiting lock requests end.
  // The selection stays for the next FinishInitialization.
  void Uninitialize();

  TargetPhase Phase() const;
  bool IsDynamicInitializationRunning() const;

  // ---- For the components --------------------------------------------------
  // The built topology; null outside FinishInitialization..Uninitialize.
  std::shared_ptr<LiveTopology> Topology() const;

  // Back to a fresh process: no selection, nothing built. For tools and
  // tests that run several sessions in one process.
  void Reset();

 private:
  TargetModel() = default;
  // The selection, parsing the built-in default the first time; null with
  // `failure` set if that cannot be read. Holds mutex_.
  std::shared_ptr<const Selection> CurrentSelectionLocked(Failure& failure);
  std::optional<Failure> RefuseWhileInitialized(const std::string& what) const;

  mutable std::mutex mutex_;
  std::shared_ptr<const Selection> selection_;
  std::shared_ptr<LiveTopology> live_;
  TargetPhase phase_ = TargetPhase::Idle;
  bool dynamicInitializationRunning_ = false;
};

}  // namespace voxtrel::platform::target
