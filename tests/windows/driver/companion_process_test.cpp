// Init looks for the companion's process: real ones. These tests are a program of their own, since elsewhere a process
// of that name runs all the time.
#include <gmock/gmock.h>

#include "support/driver_test.h"
#include "support/named_process.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class CompanionProcessTest : public DriverTest {
 protected:
  void ExpectNotFound() {
    EXPECT_EQ(InitAsItIs(), 108);
    EXPECT_THAT(LogLines(), ElementsAre("Pellmor not active\n"));
    EXPECT_TRUE(runtime.Host().Added().empty());
  }
};

TEST_F(CompanionProcessTest, InitFails) { ExpectNotFound(); }

TEST_F(CompanionProcessTest, OtherLetterCaseIsNotTheCompanion) {
  const NamedProcess lower("ombrel.exe");
  const NamedProcess upper("OMBREL.EXE");
  ExpectNotFound();
}

TEST_F(CompanionProcessTest, LongerNamesAreNotTheCompanion) {
  const NamedProcess longer("Ombrel.exe.exe");
  const NamedProcess prefixed("MyOmbrel.exe");
  ExpectNotFound();
}

TEST_F(CompanionProcessTest, InitWorksOnceTheCompanionRuns) {
  ASSERT_EQ(InitAsItIs(), 108);
  const NamedProcess companion("Ombrel.exe");
  EXPECT_EQ(InitAsItIs(), vr::VRInitError_None);
  EXPECT_EQ(LogLines().at(1), "Ombrel process is running\n");
}

TEST_F(CompanionProcessTest, CompanionThatHasEndedIsNotFound) {
  NamedProcess companion("Ombrel.exe");
  companion.End();
  ExpectNotFound();
}

}  // namespace
}  // namespace ombrel::test
