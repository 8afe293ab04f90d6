#include "StopEvents.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "Session.h"

namespace vxt::gdb {
namespace {

IInternalService_Event& Events() {
  return vxt::cli::Session::Get<IInternalService_Event>(VXT_Service_Event);
}

void Drain(int descriptor) {
  uint64_t count = 0;
  while (read(descriptor, &count, sizeof count) == static_cast<ssize_t>(sizeof count)) {
  }
}

}  // namespace

StopEvents::StopEvents(std::vector<uint32_t> threads) : threads_(std::move(threads)) {
  eventFd_ = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  if (eventFd_ < 0) throw std::runtime_error("cannot make an eventfd for the stop events");
  vxt::cli::Check(Events().SubscribeRunControlEvents(&StopEvents::Receive, this), "SubscribeRunControlEvents");
}

StopEvents::~StopEvents() {
  Events().UnsubscribeRunControlEvents(&StopEvents::Receive);
  close(eventFd_);
}

void StopEvents::Receive(const VXT_RunControlEvent* event, void* userData) {
  auto* self = static_cast<StopEvents*>(userData);
  // A halt is never news: the server's own halts make them.
  if (event == nullptr || event->eventType == VXT_RunControlEvent_Halt ||
      event->eventType == VXT_RunControlEvent_Resume)
    return;
  if (std::find(self->threads_.begin(), self->threads_.end(), event->deviceId) == self->threads_.end()) return;
  Stop stop;
  stop.thread = event->deviceId;
  stop.eventType = event->eventType;
  stop.breakpointId = event->breakpointId;
  stop.address = event->address;
  stop.data = event->breakSubType != nullptr && std::strcmp(event->breakSubType, "Data") == 0;
  stop.dataAddress = event->extraValue;
  {
    const std::lock_guard lock(self->mutex_);
    if (!self->armed_ && event->eventType != VXT_RunControlEvent_Breakpoint) return;
    self->stops_.push_back(stop);
  }
  const uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(self->eventFd_, &one, sizeof one);
}

void StopEvents::Arm() {
  const std::lock_guard lock(mutex_);
  armed_ = true;
}

void StopEvents::Disarm() {
  const std::lock_guard lock(mutex_);
  armed_ = false;
  std::erase_if(stops_, [](const Stop& stop) { return stop.eventType != VXT_RunControlEvent_Breakpoint; });
}

std::optional<Stop> StopEvents::Take() {
  const std::lock_guard lock(mutex_);
  Drain(eventFd_);
  if (stops_.empty()) return std::nullopt;
  const Stop stop = stops_.front();
  stops_.pop_front();
  armed_ = false;
  return stop;
}

}  // namespace vxt::gdb
