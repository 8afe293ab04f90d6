#include "StopSignals.h"

#include <pthread.h>
#include <signal.h>

#include <ctime>

namespace vxt::cli {
namespace {

sigset_t StopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  return signals;
}

}  // namespace

void BlockStopSignals() {
  const sigset_t signals = StopSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

int WaitForStopSignal() {
  const sigset_t signals = StopSignals();
  int signal = 0;
  while (sigwait(&signals, &signal) != 0) {
  }
  return signal;
}

bool TakeStopSignal() {
  const sigset_t signals = StopSignals();
  const timespec now{};
  return sigtimedwait(&signals, nullptr, &now) > 0;
}

void DiscardPendingStopSignals() {
  while (TakeStopSignal()) {
  }
}

}  // namespace vxt::cli
