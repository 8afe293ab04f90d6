// vxt: a command-line client of the InProc_Vxt library on the simulated
// target.
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Session.h"

int main(int argc, char** argv) {
  CLI::App app{"vxt: hardware debug from the command line, through InProc_Vxt"};
  app.require_subcommand(1);

  vxt::cli::SessionOptions options;
  bool trace = false;
  app.add_option("-c,--config", options.configuration,
                 "Target configuration: a name that 'vxt configs' lists, or a description file");
  app.add_flag("-t,--trace", trace, "Show the library's trace (loads the \"Trace\" logging preset)");
  app.add_option("-p,--preset", options.loggingPreset, "Load this logging preset after connecting");

  CLI::App* configs = app.add_subcommand("configs", "List the available target configurations");
  CLI::App* info = app.add_subcommand("info", "Connect and show what the library and the target say about themselves");

  CLI11_PARSE(app, argc, argv);
  if (trace) options.loggingPreset = "Trace";

  try {
    if (configs->parsed()) {
      vxt::cli::ListConfigurations(std::cout);
    } else if (info->parsed()) {
      vxt::cli::Session session(options);
      vxt::cli::ShowInfo(session, std::cout);
    }
  } catch (const vxt::cli::CallFailed& failure) {
    std::cerr << "vxt: " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
