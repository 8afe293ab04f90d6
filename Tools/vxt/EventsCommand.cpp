// vxt events: subscribes to every event family, connects, and prints each
// event as it arrives, one line each, until interrupted.
//
// Subscriptions belong to the process, not to a client, so they are made
// before connecting and taken back after disconnecting: the client's own
// arrival and departure show too.
//
// In a shell session the session's connection is already there, and only
// the events after the command starts show.
//
// Stopping: SIGINT and SIGTERM are blocked before the library starts any
// thread, so every thread inherits the mask and the signal stays pending
// until the main thread takes it with sigwait. No signal handler runs; the
// command then leaves the library with an ordinary Disconnect.
#include <signal.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "CommandRegistry.h"
#include "EventLines.h"
#include "StopSignals.h"

namespace vxt::cli {
namespace {

// Events arrive on the threads that deliver them: each line is written
// whole and flushed, so that a reader of a pipe sees it at once.
class Printer {
 public:
  explicit Printer(std::ostream& out) : out_(out) {}

  void PrintEvent(const std::string& line) {
    const std::lock_guard lock(mutex_);
    out_ << line << std::endl;
    ++events_;
  }
  void PrintNote(const std::string& line) {
    const std::lock_guard lock(mutex_);
    out_ << line << std::endl;
  }
  uint64_t events() {
    const std::lock_guard lock(mutex_);
    return events_;
  }

 private:
  std::mutex mutex_;
  std::ostream& out_;
  uint64_t events_ = 0;
};

template <class Record>
void PrintRecord(const Record* event, void* printer) {
  static_cast<Printer*>(printer)->PrintEvent(EventLine(*event));
}

// The library raises neither of these two itself, and their records have
// no fixed form: only their arrival is shown.
void PrintBreakStateChange(const void*, void* printer) {
  static_cast<Printer*>(printer)->PrintEvent("break state change");
}
void PrintServiceReconfiguration(const void*, void* printer) {
  static_cast<Printer*>(printer)->PrintEvent("interface port service reconfiguration");
}

// Every family, subscribed for the life of the object.
class Subscriptions {
 public:
  Subscriptions(IInternalService_Event& events, Printer& printer) : events_(events) {
    using E = IInternalService_Event;
    Add(&E::SubscribeTargetEvents, &E::UnsubscribeTargetEvents, &PrintRecord<VXT_TargetEvent>, printer, "Target");
    Add(&E::SubscribeMessageEvents, &E::UnsubscribeMessageEvents, &PrintRecord<VXT_MessageEvent>, printer,
        "Message");
    Add(&E::SubscribeRunControlEvents, &E::UnsubscribeRunControlEvents, &PrintRecord<VXT_RunControlEvent>, printer,
        "RunControl");
    Add(&E::SubscribeBreakStateChangeEvents, &E::UnsubscribeBreakStateChangeEvents, &PrintBreakStateChange, printer,
        "BreakStateChange");
    Add(&E::SubscribeReconfigurationEvents, &E::UnsubscribeReconfigurationEvents,
        &PrintRecord<VXT_ReconfigurationEvent>, printer, "Reconfiguration");
    Add(&E::SubscribeInterfacePortErrorEvents, &E::UnsubscribeInterfacePortErrorEvents,
        &PrintRecord<VXT_InterfacePortErrorEvent>, printer, "InterfacePortError");
    Add(&E::SubscribeInterfacePortStateChangeEvents, &E::UnsubscribeInterfacePortStateChangeEvents,
        &PrintRecord<VXT_InterfacePortStateChangeEvent>, printer, "InterfacePortStateChange");
    Add(&E::SubscribeInterfacePortServiceReconfigEvents, &E::UnsubscribeInterfacePortServiceReconfigEvents,
        &PrintServiceReconfiguration, printer, "InterfacePortServiceReconfig");
    Add(&E::SubscribeNotificationEvents, &E::UnsubscribeNotificationEvents, &PrintRecord<VXT_NotificationEvent>,
        printer, "Notification");
    Add(&E::SubscribeSystemStallEvents, &E::UnsubscribeSystemStallEvents, &PrintRecord<VXT_SystemStallEvent>,
        printer, "SystemStall");
    Add(&E::SubscribeStatePortEvents, &E::UnsubscribeStatePortEvents, &PrintRecord<VXT_StatePortEvent>, printer,
        "StatePort");
  }
  ~Subscriptions() {
    for (auto unsubscribe = unsubscribes_.rbegin(); unsubscribe != unsubscribes_.rend(); ++unsubscribe)
      (*unsubscribe)();
  }
  Subscriptions(const Subscriptions&) = delete;
  Subscriptions& operator=(const Subscriptions&) = delete;

 private:
  template <class Callback>
  void Add(VXT_Result (IInternalService_Event::*subscribe)(Callback, void*),
           VXT_Result (IInternalService_Event::*unsubscribe)(Callback), Callback callback, Printer& printer,
           const std::string& family) {
    Check((events_.*subscribe)(callback, &printer), "Subscribe" + family + "Events");
    unsubscribes_.push_back([this, unsubscribe, callback] { (events_.*unsubscribe)(callback); });
  }

  IInternalService_Event& events_;
  std::vector<std::function<void()>> unsubscribes_;
};

int ListenForEvents(const SessionOptions& options, std::ostream& out) {
  BlockStopSignals();

  Printer printer(out);
  const Subscriptions subscriptions(Session::Get<IInternalService_Event>(VXT_Service_Event), printer);
  int stopSignal = 0;
  {
    Session session(options);
    printer.PrintNote("Listening for events as client " + std::to_string(session.clientId()) +
                      "; Ctrl-C to stop.");
    stopSignal = WaitForStopSignal();
    printer.PrintNote(std::string("Stopping on ") + (stopSignal == SIGINT ? "SIGINT" : "SIGTERM") + '.');
  }
  // In a shell session the connection outlives the command.
  printer.PrintNote((options.lasting ? "Stopped after " : "Disconnected after ") + std::to_string(printer.events()) +
                    " events.");
  return 0;
}

const bool registered = RegisterCommand(
    {"events", "Print every event as it arrives until interrupted (Ctrl-C)", [](CLI::App&, CommandArguments&) {},
     [](const CommandArguments&, const SessionOptions& options, std::ostream& out) {
       return ListenForEvents(options, out);
     }});

}  // namespace
}  // namespace vxt::cli
