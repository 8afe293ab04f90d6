// vxt gdbserver: serves GDB's remote protocol for one target domain, as an
// ordinary client of the library, until interrupted (Ctrl-C).
//
//   vxt gdbserver --port 1234 [--domain D] [--address A]
//   (gdb) target remote :1234
//
// `monitor LINE` runs LINE as a command of a vxt session on the server's
// own connection, and sends its output back to GDB.
#include <sstream>

#include "CommandLine.h"
#include "CommandRegistry.h"
#include "DeviceNames.h"
#include "GdbServer.h"
#include "StopSignals.h"

namespace vxt::cli {
namespace {

std::string RunMonitorLine(const std::string& line, LastingConnection& connection) {
  std::ostringstream out;
  std::ostringstream err;
  CommandLine commandLine(CommandLine::Scope::Session);
  int status = 0;
  if (const auto refused = commandLine.Parse(line, out, err))
    status = *refused;
  else
    status = commandLine.Run(&connection, out);
  std::string output = out.str() + err.str();
  if (status != 0) output += "(exit status " + std::to_string(status) + ")\n";
  return output;
}

int ServeGdb(const CommandArguments& arguments, const SessionOptions& given, std::ostream& out) {
  // Before the library starts any thread, so that all of them inherit it.
  BlockStopSignals();
  LastingConnection own(given);
  SessionOptions options = given;
  if (options.lasting == nullptr) options.lasting = &own;
  Session session(options);
  auto& devices = Session::Get<IInternalService_Device>(VXT_Service_Device);
  const std::string& domainName = arguments.text.at("domain");
  uint32_t domainId = 0;
  if (domainName.empty()) {
    const TargetDomains domains = ReadTargetDomains(devices);
    if (domains.ids.empty()) throw std::runtime_error("the target has no target domain");
    domainId = domains.ids.front();
  } else {
    domainId = ResolveDevice(devices, domainName);
  }
  gdb::TargetAccess target(domainId);
  gdb::ServerOptions server;
  server.address = arguments.text.at("address");
  server.port = static_cast<uint16_t>(arguments.numbers.at("port"));
  LastingConnection* connection = options.lasting;
  return gdb::RunServer(server, target, [connection](const std::string& line) {
    return RunMonitorLine(line, *connection);
  }, out);
}

const bool registered = RegisterCommand(
    {"gdbserver", "Serve GDB's remote protocol for a target domain until interrupted (Ctrl-C)",
     [](CLI::App& command, CommandArguments& arguments) {
       arguments.numbers["port"] = 0;
       arguments.text["domain"] = "";
       arguments.text["address"] = "127.0.0.1";
       command.add_option("--port", arguments.numbers["port"], "TCP port; 0 picks a free one")
           ->check(CLI::Range(0, 65535));
       command.add_option("--domain", arguments.text["domain"], "Target domain (id or identifier); default: the first");
       command.add_option("--address", arguments.text["address"], "Address to listen on")->capture_default_str();
     },
     &ReportingUserErrors<&ServeGdb>});

}  // namespace
}  // namespace vxt::cli
