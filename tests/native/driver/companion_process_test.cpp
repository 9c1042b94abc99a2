// Init looks for the companion among the system's processes.
#include "companion_process.h"

#include "provider_fixture.h"

namespace ombrel::test {
namespace {

TEST(IsCompanionRunning, ComparesAllButTheFirstProcess) {
  EXPECT_FALSE(IsCompanionRunning({{4, "Ombrel.exe"}, {8, "other.exe"}}));
  EXPECT_TRUE(IsCompanionRunning({{4, "System"}, {8, "Ombrel.exe"}}));
  EXPECT_TRUE(IsCompanionRunning({{4, "System"}, {8, "a.exe"}, {12, "Ombrel.exe"}}));
  EXPECT_FALSE(IsCompanionRunning({}));
}

TEST(IsCompanionRunning, LooksAtLetterCaseAndTheWholeName) {
  for (const char* name : {"ombrel.exe", "OMBREL.EXE", "Ombrel.exe.exe", "MyOmbrel.exe", "Ombrel"}) {
    EXPECT_FALSE(IsCompanionRunning({{4, "System"}, {8, name}})) << name;
  }
}

TEST_F(ProviderTest, InitFailsWithoutACompanionAndWorksOnceItRuns) {
  TheProcesses().listed = {{4, "System"}, {8, "other.exe"}};
  EXPECT_EQ(Init(), vr::VRInitError_Init_HmdNotFound);
  EXPECT_EQ(runtime_.Log().TakeNew(), Lines{"Pellmor not active\n"});
  EXPECT_TRUE(Added().empty());
  TheProcesses() = {};
  EXPECT_EQ(Init(), vr::VRInitError_None);
  EXPECT_EQ(runtime_.Log().TakeNew().front(), "Ombrel process is running\n");
}

}  // namespace
}  // namespace ombrel::test
