// Init looks for the companion's process: lists of processes that no system would give a test.
#include <gmock/gmock.h>

#include "support/driver_test.h"
#include "support/process_list_script.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class CompanionProcessListTest : public DriverTest {
 protected:
  void ExpectNotFound() {
    EXPECT_EQ(InitAsItIs(), 108);
    EXPECT_THAT(LogLines(), ElementsAre("Pellmor not active\n"));
    EXPECT_TRUE(runtime.Host().Added().empty());
  }
};

TEST_F(CompanionProcessListTest, FirstEntryIsNeverCompared) {
  const ProcessListScript list(module.Handle(), {"Ombrel.exe", "other.exe"});
  ExpectNotFound();
}

TEST_F(CompanionProcessListTest, SecondEntryIsCompared) {
  const ProcessListScript list(module.Handle(), {"System", "Ombrel.exe"});
  EXPECT_EQ(InitAsItIs(), vr::VRInitError_None);
}

TEST_F(CompanionProcessListTest, LastEntryIsCompared) {
  const ProcessListScript list(module.Handle(), {"System", "a.exe", "b.exe", "Ombrel.exe"});
  EXPECT_EQ(InitAsItIs(), vr::VRInitError_None);
}

TEST_F(CompanionProcessListTest, EmptyListHasNoCompanion) {
  const ProcessListScript list(module.Handle(), {});
  ExpectNotFound();
}

TEST_F(CompanionProcessListTest, WithoutASnapshotThereIsNoCompanion) {
  ProcessListScript list(module.Handle(), {});
  list.FailSnapshots();
  ExpectNotFound();
}

TEST_F(CompanionProcessListTest, WalkEndsAtAnyAnswerButOne) {
  ProcessListScript list(module.Handle(), {"System", "a.exe", "Ombrel.exe"});
  list.AnswerAt(1, 2);
  ExpectNotFound();
}

TEST_F(CompanionProcessListTest, EntriesAreAskedForWithTheirSize) {
  const ProcessListScript list(module.Handle(), {"System"});
  static_cast<void>(InitAsItIs());
  EXPECT_THAT(list.EntrySizes(), ElementsAre(304U));
}

}  // namespace
}  // namespace ombrel::test
