#include "platform/process.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace ombrel::test {
namespace {

// The native body is for tests, which must outlive what the driver ends.
TEST(NativeProcesses, AreNotListedAndNotEnded) {
  EXPECT_EQ(CurrentProcessId(), static_cast<std::uint32_t>(getpid()));
  EXPECT_TRUE(ListProcesses().empty());
  EXPECT_TRUE(OwnExecutablePath().empty());
  TerminateProcessById(CurrentProcessId());
  TerminateOwnProcess();
}

}  // namespace
}  // namespace ombrel::test
