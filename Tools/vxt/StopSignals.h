// SIGINT and SIGTERM, the signals that stop a command that waits (`events`)
// or, outside a terminal session, vxt itself. Blocked before the library
// starts a thread, they stay pending for the main thread to take with
// sigwait: no signal handler runs.
#pragma once

namespace vxt::cli {

// Blocks them on this thread, and so on every thread started after.
void BlockStopSignals();

// The one that came.
int WaitForStopSignal();

// Takes one that came, without waiting: whether one had come.
bool TakeStopSignal();

// Drops those that came while nobody waited.
void DiscardPendingStopSignals();

}  // namespace vxt::cli
