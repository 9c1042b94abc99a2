// One allocation fails while the link's reader takes a message in: that message may be lost, and nothing else.
#include <gmock/gmock.h>

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string>

#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "support/link_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

std::atomic<DWORD> readerThread = 0;
std::atomic<int> allocationsBeforeFailure = -1;  // of the reader; negative: none fails

void* FailingMalloc(std::size_t size) {
  if (GetCurrentThreadId() == readerThread && allocationsBeforeFailure >= 0 && allocationsBeforeFailure-- == 0) {
    return nullptr;
  }
  return std::malloc(size);
}

class NoMemoryTest : public LinkTest {
 protected:
  void SetUp() override {
    Connect();
    static_cast<void>(SendForPose(companion::EncodeQuaternionAndPosition({}, {})));
    readerThread = runtime.Poses().Latest(0)->threadId;
  }
  // Sends a record; whether an allocation failed for it.
  bool SendRecord(std::uint32_t controllerId, int allocations) {
    allocationsBeforeFailure = allocations;
    Send(companion::EncodeControllerUpdate({.controllerId = controllerId}));
    Fence();
    return allocationsBeforeFailure.exchange(-1) < 0;
  }
  bool IsAnnounced(std::uint32_t controllerId) {
    const auto added = runtime.Host().Added();
    return std::ranges::count(added, "OmbrelControllerV02ID" + std::to_string(controllerId),
                              &bench::AddedDevice::serial) == 1;
  }
};

TEST_F(NoMemoryTest, AControllerIsAnnouncedWhenThereIsMemoryForIt) {
  const ModuleImport failing(module.Handle(), "malloc", reinterpret_cast<void*>(&FailingMalloc));
  std::uint32_t id = 1;
  for (int allocation = 0; SendRecord(++id, allocation); ++allocation) {
    SendRecord(id, -1);
    EXPECT_TRUE(IsAnnounced(id)) << "after allocation " << allocation << " failed";
  }
  EXPECT_GT(id, 3U) << "no allocation failed";
  EXPECT_EQ(server.Connections(), 1U);
}

}  // namespace
}  // namespace ombrel::test
