// A companion asks for the end of the session: a real process first, then what a test process cannot be, by functions
// put in the place of the system's.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "companion/messages.h"
#include "support/link_test.h"
#include "support/module_import.h"
#include "support/named_process.h"
#include "support/process_list_script.h"

namespace ombrel::test {
namespace {

class ShutdownRequestTest : public LinkTest {
 protected:
  void SetUp() override { Connect(); }
  // Returns when the driver has done all that it does.
  void RequestShutdown() {
    Send(companion::EncodeShutdownRequest());
    Fence();
  }
};

TEST_F(ShutdownRequestTest, EndsTheRightOneAmongSimilarNames) {
  const NamedProcess otherCase("VRMONITOR.EXE");
  const NamedProcess monitor("vrmonitor.exe");
  const NamedProcess prefixed("myvrmonitor.exe");
  RequestShutdown();
  EXPECT_EQ(monitor.WaitForEnd(kTimeoutMs), 0U);
  EXPECT_TRUE(otherCase.IsRunning());
  EXPECT_TRUE(prefixed.IsRunning());
}

// What the driver was told of its own program, and what it then ended.
const char* ownPath = nullptr;
HANDLE ended = nullptr;
UINT endedWith = 99;
DWORD openedId = 0;

// As the system does it: a path that does not fit is cut off, and the answer is then the buffer's whole size.
DWORD WINAPI OwnPath(HMODULE, char* buffer, DWORD size) {
  if (ownPath == nullptr) return 0;
  const auto length = static_cast<DWORD>(std::min<std::size_t>(std::strlen(ownPath), size - 1));
  std::memcpy(buffer, ownPath, length);
  buffer[length] = '\0';
  return std::strlen(ownPath) < size ? length : size;
}

WINBOOL WINAPI EndNothing(HANDLE process, UINT code) {
  ended = process;
  endedWith = code;
  return TRUE;
}

HANDLE WINAPI OpenNothing(DWORD, WINBOOL, DWORD id) {
  openedId = id;
  return CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

class ScriptedShutdownTest : public ShutdownRequestTest {
 protected:
  void Request(const char* path) {
    ownPath = path;
    ended = nullptr;
    endedWith = 99;
    openedId = 0;
    const ModuleImport pathImport(module.Handle(), "GetModuleFileNameA", reinterpret_cast<void*>(&OwnPath));
    const ModuleImport endImport(module.Handle(), "TerminateProcess", reinterpret_cast<void*>(&EndNothing));
    const ModuleImport openImport(module.Handle(), "OpenProcess", reinterpret_cast<void*>(&OpenNothing));
    RequestShutdown();
  }
};

TEST_F(ScriptedShutdownTest, EndsItsOwnProcessWhenThePathBeginsWithVrserver) {
  const ProcessListScript list(module.Handle(), {"System", "vrmonitor.exe"});
  Request("vrserver.exe");
  EXPECT_EQ(ended, GetCurrentProcess());
  EXPECT_EQ(endedWith, 0U);
  EXPECT_EQ(openedId, 0U) << "the monitor is left alone";
}

// The longest that fits into the system's own limit has 259 characters.
TEST_F(ScriptedShutdownTest, EndsTheMonitorHoweverLongThePathIs) {
  for (const std::size_t length : {259U, 260U, 261U, 1000U, 32767U}) {
    const ProcessListScript list(module.Handle(), {"System", "vrmonitor.exe"});
    Request(("C:\\" + std::string(length - 3, 'x')).c_str());
    EXPECT_EQ(openedId, 1001U) << length;
    EXPECT_NE(ended, GetCurrentProcess()) << length;
  }
}

TEST_F(ScriptedShutdownTest, LooksAtTheBeginningOfAPathThatIsTooLong) {
  for (const std::size_t length : {259U, 260U, 261U, 1000U, 32767U}) {
    const ProcessListScript list(module.Handle(), {"System", "vrmonitor.exe"});
    Request(("vrserver" + std::string(length - 8, 'x')).c_str());
    EXPECT_EQ(ended, GetCurrentProcess()) << length;
    EXPECT_EQ(openedId, 0U) << length;
  }
}

TEST_F(ScriptedShutdownTest, DoesNothingWithoutItsOwnPath) {
  const ProcessListScript list(module.Handle(), {"System", "vrmonitor.exe"});
  Request(nullptr);
  EXPECT_EQ(ended, nullptr);
  EXPECT_EQ(openedId, 0U);
}

}  // namespace
}  // namespace ombrel::test
