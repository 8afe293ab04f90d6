#include "TargetModel.h"

#include "DefaultDescription.h"

namespace voxtrel::platform::target {

LiveTopology::LiveTopology(std::shared_ptr<const Topology> layout)
    : layout_(std::move(layout)), enabled_(std::make_unique<std::atomic<bool>[]>(layout_->Nodes().size())) {
  const std::vector<Node>& nodes = layout_->Nodes();
  for (size_t index = 0; index < nodes.size(); ++index) enabled_[index].store(nodes[index].enabled);
}

std::optional<bool> LiveTopology::IsEnabled(uint32_t deviceId) const {
  const std::optional<size_t> index = layout_->IndexOf(deviceId);
  if (!index) return std::nullopt;
  return enabled_[*index].load(std::memory_order_relaxed);
}

bool LiveTopology::SetEnabled(uint32_t deviceId, bool enabled) {
  const std::optional<size_t> index = layout_->IndexOf(deviceId);
  if (!index) return false;
  enabled_[*index].store(enabled, std::memory_order_relaxed);
  return true;
}

bool LiveTopology::IsEffectivelyEnabled(uint32_t deviceId) const {
  for (const Node* node = layout_->Find(deviceId); node != nullptr; node = layout_->Find(node->parentId)) {
    if (!IsEnabled(node->id).value_or(false)) return false;
    if (node->parentId == 0) return true;
  }
  return false;
}

std::optional<std::vector<TapControllerSpecification>> LiveTopology::SpecifiedTapControllers(
    uint32_t jtagChainId) const {
  std::lock_guard lock(specifiedMutex_);
  const auto found = specified_.find(jtagChainId);
  if (found == specified_.end()) return std::nullopt;
  return found->second;
}

void LiveTopology::SpecifyTapControllers(uint32_t jtagChainId, std::vector<TapControllerSpecification> tapControllers) {
  std::lock_guard lock(specifiedMutex_);
  specified_[jtagChainId] = std::move(tapControllers);
}

bool LiveTopology::ForgetSpecifiedTapControllers(uint32_t jtagChainId) {
  std::lock_guard lock(specifiedMutex_);
  return specified_.erase(jtagChainId) > 0;
}

namespace {

std::shared_ptr<const Selection> ParseSelection(DescriptionOrigin origin, std::string text, ParameterValues values,
                                                Failure& failure) {
  auto parsed = ParseTargetDescription(text, origin, values);
  if (Failure* refused = std::get_if<Failure>(&parsed)) {
    failure = std::move(*refused);
    return nullptr;
  }
  return std::make_shared<const Selection>(
      Selection{std::move(origin), std::move(text), std::move(values), std::move(std::get<ParsedDescription>(parsed))});
}

}  // namespace

TargetModel& TargetModel::Instance() {
  static TargetModel model;
  return model;
}

std::optional<Failure> TargetModel::RefuseWhileInitialized(const std::string& what) const {
  if (phase_ != TargetPhase::Initialized) return std::nullopt;
  return Failure{kRefusedInThisState, what + " while the target is initialized with configuration '" +
                                          live_->Layout().Name() + "'; the target must be uninitialized first"};
}

Outcome TargetModel::Select(DescriptionOrigin origin, std::string text) {
  std::lock_guard lock(mutex_);
  if (auto refused = RefuseWhileInitialized("Configuration '" + origin.name + "' cannot be selected")) return refused;
  Failure failure;
  std::shared_ptr<const Selection> selection = ParseSelection(std::move(origin), std::move(text), {}, failure);
  if (!selection) return failure;
  selection_ = std::move(selection);
  return std::nullopt;
}

Outcome TargetModel::SetParameters(const ParameterValues& values) {
  std::lock_guard lock(mutex_);
  if (auto refused = RefuseWhileInitialized("Configuration parameters cannot be set")) return refused;
  Failure failure;
  std::shared_ptr<const Selection> current = CurrentSelectionLocked(failure);
  if (!current) return failure;
  ParameterValues merged = values;
  merged.insert(current->values.begin(), current->values.end());  // Keeps the new value of a name given twice
  std::shared_ptr<const Selection> selection =
      ParseSelection(current->origin, current->text, std::move(merged), failure);
  if (!selection) return failure;
  selection_ = std::move(selection);
  return std::nullopt;
}

std::shared_ptr<const Selection> TargetModel::CurrentSelection() {
  std::lock_guard lock(mutex_);
  Failure failure;
  return CurrentSelectionLocked(failure);
}

std::shared_ptr<const Selection> TargetModel::CurrentSelectionLocked(Failure& failure) {
  if (!selection_) {
    selection_ = ParseSelection({std::string(kDefaultConfigurationName), std::string(kDefaultDescriptionOrigin)},
                                std::string(DefaultDescriptionText()), {}, failure);
  }
  return selection_;
}

void TargetModel::StartInitialization() {
  std::lock_guard lock(mutex_);
  if (phase_ == TargetPhase::Idle) phase_ = TargetPhase::Starting;
}

Outcome TargetModel::FinishInitialization(bool& builtNow) {
  std::lock_guard lock(mutex_);
  builtNow = false;
  dynamicInitializationRunning_ = false;
  if (phase_ == TargetPhase::Initialized) return std::nullopt;
  Failure failure;
  std::shared_ptr<const Selection> selection = CurrentSelectionLocked(failure);
  if (!selection) return failure;
  live_ = std::make_shared<LiveTopology>(selection->parsed.topology);
  phase_ = TargetPhase::Initialized;
  builtNow = true;
  return std::nullopt;
}

Outcome TargetModel::BeginDynamicInitialization() {
  std::lock_guard lock(mutex_);
  if (dynamicInitializationRunning_)
    return Failure{kRefusedInThisState, "A dynamic initialization of the target is already running"};
  dynamicInitializationRunning_ = true;
  return std::nullopt;
}

bool TargetModel::CancelDynamicInitialization() {
  std::lock_guard lock(mutex_);
  return std::exchange(dynamicInitializationRunning_, false);
}

void TargetModel::Uninitialize() {
  std::lock_guard lock(mutex_);
  if (live_) live_->Locks().Retire();
  live_.reset();
  phase_ = TargetPhase::Idle;
  dynamicInitializationRunning_ = false;
}

TargetPhase TargetModel::Phase() const {
  std::lock_guard lock(mutex_);
  return phase_;
}

bool TargetModel::IsDynamicInitializationRunning() const {
  std::lock_guard lock(mutex_);
  return dynamicInitializationRunning_;
}

std::shared_ptr<LiveTopology> TargetModel::Topology() const {
  std::lock_guard lock(mutex_);
  return live_;
}

void TargetModel::Reset() {
  std::lock_guard lock(mutex_);
  if (live_) live_->Locks().Retire();
  selection_.reset();
  live_.reset();
  phase_ = TargetPhase::Idle;
  dynamicInitializationRunning_ = false;
}

}  // namespace voxtrel::platform::target
