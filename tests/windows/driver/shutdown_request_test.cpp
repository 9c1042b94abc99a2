// A companion asks for the end of the session: which process is ended. Real processes first, then what a test process
// cannot be, by functions put in the place of the system's.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <memory>
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
    Send(bench::EncodeShutdownRequest());
    Fence();
  }
};

TEST_F(ShutdownRequestTest, EndsTheMonitor) {
  const NamedProcess monitor("vrmonitor.exe");
  RequestShutdown();
  EXPECT_EQ(monitor.WaitForEnd(kTimeoutMs), 0U);
}

TEST_F(ShutdownRequestTest, OfAnyLengthEndsTheMonitor) {
  const NamedProcess monitor("vrmonitor.exe");
  Send(bench::EncodeMessage(bench::MessageType::ShutdownRequest, bench::Bytes(321, 7)));
  Fence();
  EXPECT_EQ(monitor.WaitForEnd(kTimeoutMs), 0U);
}

TEST_F(ShutdownRequestTest, LeavesOtherNamesAlone) {
  const NamedProcess otherCase("VRMonitor.exe");
  const NamedProcess longer("vrmonitor.exe.exe");
  const NamedProcess prefixed("myvrmonitor.exe");
  const NamedProcess server_("vrserver.exe");
  RequestShutdown();
  for (const NamedProcess* process : {&otherCase, &longer, &prefixed, &server_}) EXPECT_TRUE(process->IsRunning());
}

TEST_F(ShutdownRequestTest, EndsTheRightOneAmongSimilarNames) {
  const NamedProcess otherCase("VRMONITOR.EXE");
  const NamedProcess monitor("vrmonitor.exe");
  const NamedProcess prefixed("myvrmonitor.exe");
  RequestShutdown();
  EXPECT_EQ(monitor.WaitForEnd(kTimeoutMs), 0U);
  EXPECT_TRUE(otherCase.IsRunning());
  EXPECT_TRUE(prefixed.IsRunning());
}

TEST_F(ShutdownRequestTest, EndsOnlyTheLastOfSeveral) {
  std::vector<std::unique_ptr<NamedProcess>> monitors;
  for (int i = 0; i < 3; ++i) monitors.push_back(std::make_unique<NamedProcess>("vrmonitor.exe"));
  std::uint32_t last = 0;
  for (const ListedProcess& process : ListedProcesses()) {
    if (process.name == "vrmonitor.exe") last = process.id;
  }
  RequestShutdown();
  for (const auto& monitor : monitors) {
    if (monitor->Id() == last) {
      EXPECT_EQ(monitor->WaitForEnd(kTimeoutMs), 0U);
    } else {
      EXPECT_TRUE(monitor->IsRunning());
    }
  }
}

TEST_F(ShutdownRequestTest, WithoutAMonitorHarmsNobody) { RequestShutdown(); }

TEST_F(ShutdownRequestTest, CanBeRepeated) {
  for (int i = 0; i < 2; ++i) {
    const NamedProcess monitor("vrmonitor.exe");
    RequestShutdown();
    EXPECT_EQ(monitor.WaitForEnd(kTimeoutMs), 0U);
  }
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

TEST_F(ScriptedShutdownTest, EndsTheMonitorWhenThePathOnlyContainsVrserver) {
  const ProcessListScript list(module.Handle(), {"System", "vrmonitor.exe"});
  Request("C:\\Steam\\bin\\win64\\vrserver.exe");
  EXPECT_EQ(openedId, 1001U);
  EXPECT_NE(ended, GetCurrentProcess());
  EXPECT_EQ(endedWith, 0U);
}

TEST_F(ScriptedShutdownTest, TakesAPathOfSevenCharactersForAnother) {
  const ProcessListScript list(module.Handle(), {"System", "vrmonitor.exe"});
  Request("vrserve");
  EXPECT_EQ(openedId, 1001U);
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

TEST_F(ScriptedShutdownTest, NeverLooksAtTheFirstProcess) {
  const ProcessListScript list(module.Handle(), {"vrmonitor.exe", "other.exe"});
  Request("C:\\host.exe");
  EXPECT_EQ(openedId, 0U);
  EXPECT_EQ(ended, nullptr);
}

TEST_F(ScriptedShutdownTest, TakesTheLastOfSeveral) {
  const ProcessListScript list(module.Handle(), {"System", "vrmonitor.exe", "a.exe", "vrmonitor.exe", "b.exe"});
  Request("C:\\host.exe");
  EXPECT_EQ(openedId, 1003U);
}

TEST_F(ScriptedShutdownTest, SurvivesASnapshotThatFails) {
  ProcessListScript list(module.Handle(), {});
  list.FailSnapshots();
  Request("C:\\host.exe");
  EXPECT_EQ(ended, nullptr);
}

}  // namespace
}  // namespace ombrel::test
