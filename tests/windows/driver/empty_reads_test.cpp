// Reads that complete with 0 bytes, one after the other: a companion causes them by zero-byte writes.
#include <gmock/gmock.h>

#include <windows.h>

#include <atomic>
#include <chrono>

#include "base/wait.h"
#include "support/link_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

std::atomic<int> emptyReads = 0;

BOOL WINAPI ReadNothing(HANDLE, void*, DWORD, DWORD* got, OVERLAPPED*) {
  ++emptyReads;
  *got = 0;
  return TRUE;
}

class EmptyReadsTest : public LinkTest {
 protected:
  EmptyReadsTest() { emptyReads = 0; }
};

TEST_F(EmptyReadsTest, AreNotTheEndOfTheConnection) {
  Connect();
  {
    const ModuleImport empty(module.Handle(), "ReadFile", reinterpret_cast<void*>(&ReadNothing));
    Send(companion::EncodeQuaternionAndPosition({}, {}));
    ASSERT_TRUE(bench::WaitUntil([] { return emptyReads > 100; }, std::chrono::milliseconds(kTimeoutMs)));
  }
  Fence();
  EXPECT_EQ(server.Connections(), 1U);
}

}  // namespace
}  // namespace ombrel::test
