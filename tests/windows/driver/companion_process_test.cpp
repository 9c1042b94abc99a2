// Init looks for the companion's process among real ones. A program of its own, since elsewhere a process of that name
// runs all the time.
#include <gmock/gmock.h>

#include "support/driver_test.h"
#include "support/named_process.h"

namespace ombrel::test {
namespace {

class CompanionProcessTest : public DriverTest {};

TEST_F(CompanionProcessTest, InitFailsUntilItRunsAndOnceItHasEnded) {
  const NamedProcess other("ombrel.exe");
  EXPECT_EQ(InitAsItIs(), 108);
  EXPECT_THAT(NewLogLines(), testing::ElementsAre("Pellmor not active\n"));
  {
    const NamedProcess companion("Ombrel.exe");
    EXPECT_EQ(InitAsItIs(), vr::VRInitError_None);
    EXPECT_EQ(NewLogLines().front(), "Ombrel process is running\n");
  }
  Provider().Cleanup();
  EXPECT_EQ(InitAsItIs(), 108);
}

}  // namespace
}  // namespace ombrel::test
