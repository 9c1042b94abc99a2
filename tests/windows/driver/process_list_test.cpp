// How the driver walks the system's list of processes: lists that no system would give a test.
#include <gmock/gmock.h>

#include "support/driver_test.h"
#include "support/process_list_script.h"

namespace ombrel::test {
namespace {

class ProcessListTest : public DriverTest {};

TEST_F(ProcessListTest, EndsAtAnyAnswerButOne) {
  ProcessListScript list(module.Handle(), {"System", "a.exe", "Ombrel.exe"});
  list.AnswerAt(1, 2);
  EXPECT_EQ(InitAsItIs(), 108);
  list.AnswerAt(1, 1);
  EXPECT_EQ(InitAsItIs(), vr::VRInitError_None);
}

TEST_F(ProcessListTest, IsEmptyWithoutASnapshot) {
  ProcessListScript list(module.Handle(), {"System", "Ombrel.exe"});
  list.FailSnapshots();
  EXPECT_EQ(InitAsItIs(), 108);
}

TEST_F(ProcessListTest, IsAskedForWithTheSizeOfAnEntry) {
  const ProcessListScript list(module.Handle(), {"System"});
  static_cast<void>(InitAsItIs());
  EXPECT_THAT(list.EntrySizes(), testing::ElementsAre(304U));
}

}  // namespace
}  // namespace ombrel::test
