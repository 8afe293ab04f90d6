// vxt lock / vxt unlock: device locks for the user of this command.
//
// Locks are held by a client of the library, and the library lives in the
// vxt process: a lock taken by `vxt lock` lasts until the command ends. So
// `vxt lock` shows what it took and who holds it; `vxt unlock` releases what
// this client holds and breaks the locks of the devices it names.
#include <cstdio>
#include <iostream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "TargetCalls.h"
#include "CommandRegistry.h"
#include "DeviceNames.h"

namespace vxt::cli {
namespace {

std::string DeviceLine(IInternalService_Device& devices, uint32_t deviceId) {
  char id[11];
  std::snprintf(id, sizeof id, "0x%08x", deviceId);
  return std::string(id) + "  " + IdentifierOf(devices, deviceId);
}

std::vector<uint32_t> ResolveAll(IInternalService_Device& devices, const std::vector<std::string>& names) {
  std::vector<uint32_t> ids;
  for (const std::string& name : names) ids.push_back(ResolveDevice(devices, name));
  return ids;
}

int Lock(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& receipts = session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  const std::vector<uint32_t> ids = ResolveAll(devices, arguments.lists.at("devices"));
  const auto timeout = static_cast<uint32_t>(arguments.numbers.at("timeout"));
  uint64_t token = 0;
  Check(devices.LockMany(ids.data(), static_cast<uint32_t>(ids.size()), timeout, &token), "LockMany");
  AwaitCompletion(receipts, token, "LockMany");
  for (uint32_t deviceId : ids) {
    char holder[VXT_CLIENT_TEXT_SIZE] = "";
    Check(devices.GetLockingClient(deviceId, holder), "GetLockingClient");
    out << "locked    " << DeviceLine(devices, deviceId) << "  by " << holder << '\n';
  }
  out << "Locks are released when vxt ends.\n";
  return 0;
}

int Unlock(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  auto& receipts = session.Get<IInternalService_OperationReceipt>(VXT_Service_OperationReceipt);
  uint64_t token = 0;
  Check(devices.Unlock(&token), "Unlock");
  AwaitCompletion(receipts, token, "Unlock");
  for (uint32_t deviceId : ResolveAll(devices, arguments.lists.at("devices"))) {
    uint32_t broke = 0;
    Check(devices.BreakLock(deviceId, &broke), "BreakLock");
    out << (broke ? "unlocked  " : "free      ") << DeviceLine(devices, deviceId) << '\n';
  }
  return 0;
}

const bool lockRegistered = RegisterCommand(
    {"lock", "Lock devices, named by id (0x04000000) or identifier (Core0, Domain/Core0), all at once or none",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("devices", arguments.lists["devices"], "The devices to lock")->required();
       arguments.numbers["timeout"] = 0;
       command.add_option("-w,--wait", arguments.numbers["timeout"],
                          "Milliseconds to wait for devices another client holds (4294967295: for ever)");
     },
     &ReportingUserErrors<&Lock>});

const bool unlockRegistered = RegisterCommand(
    {"unlock", "Release this client's locks, and break the locks of the devices named, whoever holds them",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("devices", arguments.lists["devices"], "Devices whose locks to break");
     },
     &ReportingUserErrors<&Unlock>});

}  // namespace
}  // namespace vxt::cli
