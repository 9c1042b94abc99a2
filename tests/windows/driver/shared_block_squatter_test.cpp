// Somebody else has made an object of the block's name before the driver does: the name can be known.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <thread>

#include "base/owned_handle.h"
#include "support/driver_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

// What the unseeded generator gives on a fresh thread.
constexpr const char* kName = "frAQBc8Wsa1xVPfvJcrgRYwTiizs2trQF69AzBlax3CF3EDNhm3soLBPh7";

const void* driversView = nullptr;
const void* letGo = nullptr;

void* WINAPI KeepView(HANDLE mapping, DWORD access, DWORD high, DWORD low, SIZE_T size) {
  return const_cast<void*>(driversView = MapViewOfFile(mapping, access, high, low, size));
}

BOOL WINAPI KeepWhatIsLetGo(const void* view) {
  letGo = view;
  return UnmapViewOfFile(view);
}

DWORD StateOf(const void* address) {
  MEMORY_BASIC_INFORMATION region{};
  VirtualQuery(address, &region, sizeof(region));
  return region.State;
}

bench::OwnedHandle MakeMapping(DWORD protection, DWORD size) {
  return bench::OwnedHandle(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, protection, 0, size, kName));
}

class SharedBlockSquatterTest : public DriverTest {
 protected:
  SharedBlockSquatterTest() { driversView = letGo = nullptr; }

  // What the driver maps and lets go again meanwhile is kept above.
  void InitOnAFreshThread() {
    const ModuleImport view(module.Handle(), "MapViewOfFile", reinterpret_cast<void*>(&KeepView));
    const ModuleImport end(module.Handle(), "UnmapViewOfFile", reinterpret_cast<void*>(&KeepWhatIsLetGo));
    std::thread([this] { EXPECT_EQ(Init(), vr::VRInitError_None); }).join();
  }
};

TEST_F(SharedBlockSquatterTest, MemoryOfTheirsIsUsed) {
  const bench::OwnedHandle theirs = MakeMapping(PAGE_READWRITE, 128);
  ASSERT_TRUE(theirs);
  InitOnAFreshThread();
  EXPECT_EQ(StateOf(driversView), DWORD{MEM_COMMIT});
  EXPECT_EQ(letGo, nullptr);
}

TEST_F(SharedBlockSquatterTest, AddressesWithoutMemoryAreLetGo) {
  const bench::OwnedHandle theirs = MakeMapping(PAGE_READWRITE | SEC_RESERVE, 128);
  const void* view = MapViewOfFile(theirs.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 128);
  ASSERT_EQ(StateOf(view), DWORD{MEM_RESERVE});
  InitOnAFreshThread();
  ASSERT_NE(driversView, nullptr) << "it can be mapped";
  EXPECT_EQ(letGo, driversView) << "but not be written to";
  EXPECT_EQ(Headset().Activate(0), vr::VRInitError_None);
  UnmapViewOfFile(view);
}

TEST_F(SharedBlockSquatterTest, WhatIsNoMemoryAtAllIsDoneWithout) {
  const bench::OwnedHandle event(CreateEventA(nullptr, FALSE, FALSE, kName));
  ASSERT_TRUE(event);
  InitOnAFreshThread();
  EXPECT_EQ(driversView, nullptr);
  EXPECT_EQ(Headset().Activate(0), vr::VRInitError_None);
}

}  // namespace
}  // namespace ombrel::test
