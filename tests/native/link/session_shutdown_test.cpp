#include "link/session_shutdown.h"

#include <gtest/gtest.h>

namespace ombrel::test {
namespace {

TEST(IsRuntimeServerPath, IsTrueOnlyForAPathThatBeginsWithTheName) {
  EXPECT_TRUE(IsRuntimeServerPath("vrserver"));
  EXPECT_TRUE(IsRuntimeServerPath("vrserver.exe"));
  EXPECT_TRUE(IsRuntimeServerPath("vrserverX\\other.exe"));
  EXPECT_FALSE(IsRuntimeServerPath(R"(C:\runtime\bin\win64\vrserver.exe)"));
  EXPECT_FALSE(IsRuntimeServerPath("xvrserver"));
}

TEST(IsRuntimeServerPath, LooksAtLetterCaseAndLength) {
  EXPECT_FALSE(IsRuntimeServerPath("VRServer.exe"));
  EXPECT_FALSE(IsRuntimeServerPath("vrserve"));
  EXPECT_FALSE(IsRuntimeServerPath(""));
}

TEST(FindMonitorProcess, FindsIt) {
  EXPECT_EQ(FindMonitorProcess({{4, "System"}, {10, "vrmonitor.exe"}, {11, "vrserver.exe"}}), 10U);
}

TEST(FindMonitorProcess, NeverLooksAtTheFirstEntry) {
  EXPECT_EQ(FindMonitorProcess({{10, "vrmonitor.exe"}}), std::nullopt);
  EXPECT_EQ(FindMonitorProcess({{10, "vrmonitor.exe"}, {11, "vrserver.exe"}}), std::nullopt);
}

TEST(FindMonitorProcess, TakesTheLastOfSeveral) {
  EXPECT_EQ(FindMonitorProcess({{4, "System"}, {10, "vrmonitor.exe"}, {12, "vrmonitor.exe"}, {11, "a.exe"}}), 12U);
}

TEST(FindMonitorProcess, LooksAtLetterCaseAndTheWholeName) {
  EXPECT_EQ(FindMonitorProcess({{4, "System"},
                                {5, "VRMonitor.exe"},
                                {6, "vrmonitor.EXE"},
                                {7, "vrmonitor"},
                                {8, "vrmonitor.exe.bak"},
                                {9, "xvrmonitor.exe"}}),
            std::nullopt);
}

TEST(FindMonitorProcess, FindsNothingInAnEmptyList) { EXPECT_EQ(FindMonitorProcess({}), std::nullopt); }

}  // namespace
}  // namespace ombrel::test
