// vxt login / vxt logout: credentials for devices that grant debug access in
// levels.
//
//   vxt login debugger --level Debug          asks for the password, unechoed
//   vxt login debugger --level Debug TargetDomain0
//   vxt logout
//
// Credentials are held by the library's process: in a shell session they
// last until logout or the session's end; a single command forgets them.
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <ostream>
#include <string>

#include "CommandRegistry.h"
#include "DeviceNames.h"

namespace vxt::cli {
namespace {

// One line of standard input; not echoed when it is a terminal.
std::string ReadPassword() {
  termios before{};
  const bool terminal = isatty(STDIN_FILENO) != 0 && tcgetattr(STDIN_FILENO, &before) == 0;
  if (terminal) {
    std::cerr << "Password: " << std::flush;
    termios quiet = before;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
  }
  std::string password;
  std::getline(std::cin, password);
  if (terminal) {
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    std::cerr << '\n';
  }
  return password;
}

int Login(const CommandArguments& arguments, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  auto& authorization = session.Get<IInternalService_Authorization>(VXT_Service_Authorization);
  std::string password = ReadPassword();
  const VXT_Result result = authorization.SetCredentials(arguments.text.at("user").c_str(), password.c_str());
  std::fill(password.begin(), password.end(), '\0');
  Check(result, "SetCredentials");
  const std::string& level = arguments.text.at("level");
  if (level.empty()) {
    out << "credentials set\n";
    return 0;
  }
  auto& devices = session.Get<IInternalService_Device>(VXT_Service_Device);
  const uint32_t device = ResolveDevice(devices, arguments.text.at("device"));
  Check(authorization.Authorize(device, level.c_str()), "Authorize");
  char inForce[VXT_AUTHORIZATION_LEVEL_NAME_SIZE] = "";
  Check(authorization.QueryAuthorizationLevel(device, inForce), "QueryAuthorizationLevel");
  out << "authorized: " << inForce << '\n';
  return 0;
}

int Logout(const CommandArguments&, const SessionOptions& options, std::ostream& out) {
  Session session(options);
  Check(session.Get<IInternalService_Authorization>(VXT_Service_Authorization).ClearCredentials(), "ClearCredentials");
  out << "credentials cleared\n";
  return 0;
}

const bool loginRegistered = RegisterCommand(
    {"login", "Give credentials (the password is read from standard input) and ask for an authorization level",
     [](CLI::App& command, CommandArguments& arguments) {
       command.add_option("user", arguments.text["user"], "The user name")->required();
       arguments.text["level"] = "";
       command.add_option("-l,--level", arguments.text["level"], "The authorization level to ask for");
       arguments.text["device"] = "TargetDomain0";
       command.add_option("device", arguments.text["device"], "The device (default TargetDomain0)");
     },
     &ReportingUserErrors<&Login>});

const bool logoutRegistered = RegisterCommand({"logout", "Clear the credentials given by login",
                                               [](CLI::App&, CommandArguments&) {}, &ReportingUserErrors<&Logout>});

}  // namespace
}  // namespace vxt::cli
