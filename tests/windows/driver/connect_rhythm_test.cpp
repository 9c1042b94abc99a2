// How long the link waits between its steps, as it asks the system for it: no clock is looked at.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "base/wait.h"
#include "silent_pipes.h"
#include "support/link_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

using bench::scenarios::SilentPipes;
using testing::Each;

constexpr DWORD kRetryMs = 100, kSecondPipeMs = 150;
// The writer of a connection waits for what there is to write, however long it takes.
constexpr DWORD kLongestRhythmMs = 60'000;

using WaitFunction = WINBOOL(WINAPI*)(volatile void*, void*, SIZE_T, DWORD);
WaitFunction systemsWait = nullptr;
std::mutex waitsMutex;
std::vector<DWORD> waitsAsked;

WINBOOL WINAPI RecordWait(volatile void* address, void* compared, SIZE_T size, DWORD timeoutMs) {
  if (timeoutMs <= kLongestRhythmMs) {
    const std::lock_guard lock(waitsMutex);
    waitsAsked.push_back(timeoutMs);
  }
  return systemsWait(address, compared, size, timeoutMs);
}

// Nothing but the link's connect thread waits for a time in this way while no frame is paced.
class ConnectRhythmTest : public LinkTest {
 protected:
  ConnectRhythmTest() {
    waitsAsked.clear();
    systemsWait = reinterpret_cast<WaitFunction>(
        ReplaceImport(module.Handle(), "WaitOnAddress", reinterpret_cast<void*>(&RecordWait)));
  }
  ~ConnectRhythmTest() override { Unload(); }

  static std::vector<DWORD> Asked() {
    const std::lock_guard lock(waitsMutex);
    return waitsAsked;
  }
  [[nodiscard]] static bool WaitForAsks(std::size_t count) {
    return bench::WaitUntil([=] { return Asked().size() >= count; }, std::chrono::milliseconds(kTimeoutMs));
  }
};

TEST_F(ConnectRhythmTest, TriesAgainAfterAHundredMillisecondsEachTime) {
  InitAndActivateHeadset();
  ASSERT_TRUE(WaitForAsks(8));
  EXPECT_THAT(Asked(), Each(kRetryMs));
}

TEST_F(ConnectRhythmTest, GivesTheCompanionAHundredAndFiftyMillisecondsBetweenThePipes) {
  Connect();
  ASSERT_TRUE(WaitForAsks(6));
  std::vector<DWORD> waits = Asked();
  const auto between = std::ranges::find(waits, kSecondPipeMs);
  ASSERT_NE(between, waits.end());
  waits.erase(between);
  EXPECT_THAT(waits, Each(kRetryMs));
}

TEST_F(ConnectRhythmTest, TriesALateSecondPipeEveryHundredMilliseconds) {
  const SilentPipes fromDriver(SilentPipes::Which::kOnlyFromDriver);
  InitAndActivateHeadset();
  ASSERT_TRUE(bench::WaitUntil([] { return std::ranges::count(Asked(), kSecondPipeMs) > 0; },
                               std::chrono::milliseconds(kTimeoutMs)));
  ASSERT_TRUE(WaitForAsks(Asked().size() + 5));
  const std::vector<DWORD> waits = Asked();
  EXPECT_EQ(std::ranges::count(waits, kSecondPipeMs), 1) << "the first pipe stays open";
  EXPECT_EQ(std::ranges::count(waits, kRetryMs) + 1, std::ranges::ssize(waits));
}

}  // namespace
}  // namespace ombrel::test
