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

TEST(VxtClient, UnknownConfigurationOrCommandIsRefused) {
  const VxtRun run = RunVxt("--config NoSuchBoard info");
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.output.rfind("vxt: SelectConfigurationByName failed with 0x", 0), 0u) << run.output;
  EXPECT_NE(run.output.find("NoSuchBoard"), std::string::npos) << run.output;
  const VxtRun unknown = RunVxt("frobnicate");
  EXPECT_NE(unknown.exitStatus, 0);
  EXPECT_NE(unknown.output.find("frobnicate"), std::string::npos) << unknown.output;
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
