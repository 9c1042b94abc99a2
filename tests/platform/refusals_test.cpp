// What comes of a system that refuses.
#include <gtest/gtest.h>

#include <windows.h>
// windows.h must come first.
#include <timeapi.h>

#include <string>

#include "platform/clock.h"
#include "platform/named_objects.h"
#include "platform/thread.h"
#include "sharing/import_patch.h"

namespace ombrel::test {
namespace {

int calls = 0;

HANDLE WINAPI RefuseThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) {
  ++calls;
  return nullptr;
}
MMRESULT WINAPI RefuseCapabilities(TIMECAPS*, UINT) { return MMSYSERR_ERROR; }
MMRESULT WINAPI NotePeriod(UINT) {
  ++calls;
  return TIMERR_NOERROR;
}
SIZE_T WINAPI RefuseQuery(LPCVOID, PMEMORY_BASIC_INFORMATION, SIZE_T) {
  ++calls;
  return 0;
}

class RefusalsTest : public testing::Test {
 protected:
  RefusalsTest() { calls = 0; }

  // In place of a function that this program imports.
  template <typename Function>
  [[nodiscard]] static bench::ImportPatch Instead(const char* name, Function* replacement) {
    return {GetModuleHandleA(nullptr), nullptr, name, reinterpret_cast<void*>(replacement)};
  }
};

TEST_F(RefusalsTest, AThreadThatIsNotToBeHadIsNotJoined) {
  Thread thread;
  {
    const auto patch = Instead("CreateThread", &RefuseThread);
    EXPECT_FALSE(thread.Start([] {}));
  }
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(thread.JoinFor(0));
  EXPECT_TRUE(thread.Start([] {}));
}

TEST_F(RefusalsTest, AResolutionThatIsNotKnownIsNotRaised) {
  const auto capabilities = Instead("timeGetDevCaps", &RefuseCapabilities);
  const auto period = Instead("timeBeginPeriod", &NotePeriod);
  RaiseTimerResolution();
  EXPECT_EQ(calls, 0);
}

TEST_F(RefusalsTest, MemoryIsNotHadUnderTheNameOfAMutex) {
  const std::string name = "ombrel_refusals_" + std::to_string(GetCurrentProcessId());
  const OwnedHandle mutex = CreateNamedMutex(name);
  ASSERT_TRUE(mutex);
  NamedMemory memory;
  EXPECT_FALSE(memory.Create(name, 64));
  EXPECT_EQ(memory.Data(), nullptr);
}

TEST_F(RefusalsTest, MemoryOfWhichNothingIsKnownIsNotTouched) {
  const std::string name = "ombrel_refusals_" + std::to_string(GetCurrentProcessId());
  NamedMemory memory;
  {
    const auto patch = Instead("VirtualQuery", &RefuseQuery);
    EXPECT_FALSE(memory.Create(name, 64));
  }
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(memory.Data(), nullptr);
  EXPECT_TRUE(memory.Create(name, 64));
}

}  // namespace
}  // namespace ombrel::test
