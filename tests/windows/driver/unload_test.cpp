// The end of a driver while its companion stays: how long it takes, what it leaves, and that the library can go.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>
#include <malloc.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

#include "base/wait.h"
#include "handle_count.h"
#include "support/driver_threads.h"
#include "support/link_test.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// Sends poses from a thread of its own for as long as it lives.
class PoseStream {
 public:
  explicit PoseStream(companion::PipeServer& server)
      : thread_([this, &server] {
          while (!stop_) {
            static_cast<void>(server.Send(companion::EncodeQuaternionAndPosition({}, {})));
            std::this_thread::sleep_for(milliseconds(1));
          }
        }) {}
  ~PoseStream() {
    stop_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

// With Direct3D, which has threads of its own.
class UnloadTest : public LinkTest {
 protected:
  UnloadTest() : LinkTest(Graphics::kReal) {}

  milliseconds CleanupTime() {
    const auto begin = Clock::now();
    Provider().Cleanup();
    return std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
  }
};

TEST_F(UnloadTest, CleanupIsDoneInASecondAndAHalfWhileAReadIsBlocked) {
  Connect();
  EXPECT_LE(CleanupTime(), milliseconds(1500));
}

TEST_F(UnloadTest, CleanupIsDoneInASecondAndAHalfWhilePosesStream) {
  Connect();
  const PoseStream stream(server);
  EXPECT_LE(CleanupTime(), milliseconds(1500));
}

TEST_F(UnloadTest, CleanupLeavesNoThreadOfTheDriver) {
  const std::size_t before = ThreadsOfProcess();
  InitAndActivateHeadset();
  ASSERT_TRUE(server.Open());
  ASSERT_TRUE(server.WaitForConnection(kTimeoutMs));
  Fence();
  EXPECT_EQ(ThreadsOfModule(module.Handle()), 3U) << "one that connects, one that reads, one that writes";
  Provider().Cleanup();
  EXPECT_EQ(ThreadsOfModule(module.Handle()), 0U);
  server.Close();
  EXPECT_TRUE(bench::WaitUntil([&] { return ThreadsOfProcess() <= before; }, milliseconds(kTimeoutMs)))
      << "Direct3D ends its own in its time";
}

TEST_F(UnloadTest, NoPoseComesAfterCleanup) {
  Connect();
  const PoseStream stream(server);
  ASSERT_TRUE(WaitFor([&] { return PosesSent() > 20; }));
  Provider().Cleanup();
  const std::size_t poses = PosesSent();
  EXPECT_FALSE(runtime.Journal().WaitUntil([&] { return PosesSent() > poses; }, milliseconds(300)));
}

TEST_F(UnloadTest, LibraryMayGoAtOnceWhileTheCompanionKeepsSending) {
  Connect();
  const PoseStream stream(server);
  Unload();
  EXPECT_EQ(GetModuleHandleA("driver_ombrel.dll"), nullptr);
  EXPECT_TRUE(server.WaitForDisconnection(kTimeoutMs));
}

TEST_F(UnloadTest, LibraryThatIsAskedForItsProviderLeavesNoHandleWhenItGoes) {
  Unload();
  // Wine does not close its registry keys when it unloads this one of the driver's imports.
  const HMODULE imported = LoadLibraryA("winmm.dll");
  std::vector<std::int64_t> handles;
  for (int round = 0; round < 4; ++round) {
    bench::DriverModule driver(FromEnvironment("OMBREL_TEST_DRIVER"));
    EXPECT_NE(&driver.Provider(), nullptr);
    driver.Unload();
    handles.push_back(bench::scenarios::CountOwnHandles());
  }
  EXPECT_EQ(handles.back(), handles.front());
  FreeLibrary(imported);
}

// Of the heap that malloc takes from, in this program and in the driver alike.
std::size_t BytesAllocated() {
  const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
  std::size_t bytes = 0;
  PROCESS_HEAP_ENTRY entry{};
  HeapLock(heap);
  while (HeapWalk(heap, &entry)) {
    if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
  }
  HeapUnlock(heap);
  return bytes;
}

TEST_F(UnloadTest, LibraryThatIsAskedForItsProviderLeavesNoMemoryWhenItGoes) {
  Unload();
  std::array<std::size_t, 4> bytes{};
  for (std::size_t& now : bytes) {
    bench::DriverModule driver(FromEnvironment("OMBREL_TEST_DRIVER"));
    EXPECT_NE(&driver.Provider(), nullptr);
    driver.Unload();
    now = BytesAllocated();
  }
  EXPECT_GT(bytes.front(), 0U);
  EXPECT_EQ(bytes.back(), bytes.front());
}

}  // namespace
}  // namespace ombrel::test
