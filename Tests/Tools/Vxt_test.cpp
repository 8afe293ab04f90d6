// The vxt client run as a user runs it: its output and exit status.
#include <gtest/gtest.h>

#include <string>

#include "VxtRun.h"

namespace {

using vxt::test::RunVxt;
using vxt::test::VxtRun;

TEST(VxtClient, ConfigsListsDefaultFirstThenTheDirectory) {
  const VxtRun run = RunVxt("configs");
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.output, "Default\nHostWithBmc\nTwoSocketServer\n");
}

TEST(VxtClient, InfoShowsTheLibraryAndThisClient) {
  const VxtRun run = RunVxt("info");
  EXPECT_EQ(run.exitStatus, 0) << run.output;
  EXPECT_NE(run.output.find("Library:          InProc_Vxt 1.2011.4508 (classification 100)\n"), std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find("Connected clients: 1\n"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("(this)\n"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("Target domains:   1\n"
                            "  0x02000000  TargetDomain0  (packages: 1, cores: 2, threads: 4, TAP controllers: 3)\n"),
            std::string::npos)
      << run.output;
}

TEST(VxtClient, UnknownConfigurationIsTheLibrarysRefusal) {
  const VxtRun run = RunVxt("--config NoSuchBoard info");
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.output.rfind("vxt: SelectConfigurationByName failed with 0x", 0), 0u) << run.output;
  EXPECT_NE(run.output.find("NoSuchBoard"), std::string::npos) << run.output;
}

TEST(VxtClient, GlobalOptionsMayFollowTheCommand) {
  const std::string server = "  0x02000000  Server  (packages: 2, cores: 8, threads: 16, TAP controllers: 3)\n";
  for (const char* arguments : {"--config TwoSocketServer info", "info --config TwoSocketServer", "info -c TwoSocketServer"}) {
    const VxtRun run = RunVxt(arguments);
    EXPECT_EQ(run.exitStatus, 0) << arguments << "\n" << run.output;
    EXPECT_NE(run.output.find(server), std::string::npos) << arguments << "\n" << run.output;
  }
  const VxtRun traced = RunVxt("topology --trace");
  EXPECT_EQ(traced.exitStatus, 0) << traced.output;
  EXPECT_NE(traced.output.find("] In  InProc_Device::GetNumTargetDomainDeviceIds() [ClientID: "), std::string::npos)
      << traced.output;
}

TEST(VxtClient, EveryCommandLineTheParserRefusesExitsWithTwo) {
  struct Case {
    const char* arguments;
    const char* firstLine;
  };
  const Case cases[] = {
      {"", "vxt: hardware debug from the command line, through InProc_Vxt"},
      {"frobnicate", "vxt: unknown command or argument 'frobnicate'"},
      {"info extra", "vxt: unknown command or argument 'extra'"},
      {"info --loud", "vxt: unknown command or argument '--loud'"},
      {"lock", "devices is required"},
      {"lock Core0 --wait soon", "Could not convert: --wait = soon"},
      {"info --config", "--config: 1 required TEXT missing"},
      {"-e configs info", "vxt: -e runs its own commands; give it no other command"},
      {"shell /no/such/script", "vxt: cannot read the script '/no/such/script'"},
  };
  for (const Case& c : cases) {
    const VxtRun run = RunVxt(c.arguments);
    EXPECT_EQ(run.exitStatus, 2) << c.arguments << "\n" << run.output;
    EXPECT_EQ(run.output.substr(0, run.output.find('\n')), c.firstLine) << c.arguments;
  }
  const VxtRun help = RunVxt("lock --help");
  EXPECT_EQ(help.exitStatus, 0) << help.output;
}

TEST(VxtClient, PresetFromTheCommandLineIsLoadedOrRefused) {
  const VxtRun loaded = RunVxt("--preset Errors info");
  EXPECT_EQ(loaded.exitStatus, 0) << loaded.output;
  EXPECT_NE(loaded.output.find("Logging presets:  Default Trace InterfaceTrace Errors* Off  (* loaded)\n"),
            std::string::npos)
      << loaded.output;

  const VxtRun refused = RunVxt("--preset Loud info");
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_EQ(refused.output.rfind("vxt: LoadLoggingPreset failed with 0x", 0), 0u) << refused.output;
}

TEST(VxtClient, TraceShowsEveryCallOnStandardError) {
  const VxtRun quiet = RunVxt("info");
  EXPECT_EQ(quiet.output.find("In  InProc_General::"), std::string::npos) << quiet.output;

  const VxtRun traced = RunVxt("--trace info");
  EXPECT_EQ(traced.exitStatus, 0) << traced.output;
  EXPECT_NE(traced.output.find("] In  InProc_General::GetImplementationVersion() [ClientID: "), std::string::npos)
      << traced.output;
  EXPECT_NE(traced.output.find("] Out InProc_Vxt::Disconnect() ErrorCode = 0x00000000\n"), std::string::npos)
      << traced.output;
}

}  // namespace
