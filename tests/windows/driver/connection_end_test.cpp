// How either side sees the other end a connection: what the calls of the system answer, on real pipes.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <string>

#include "base/owned_handle.h"
#include "base/wait.h"
#include "companion/controller_record.h"
#include "companion/pipe_server.h"
#include "companion/tracking_update.h"
#include "support/driver_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

using bench::WaitUntil;

constexpr std::chrono::milliseconds kPatience{10'000};

// Why the driver's calls failed last; 0 as long as none did.
std::atomic<DWORD> openError, readError, writeError;
decltype(&CreateFileA) systemsOpen;
decltype(&ReadFile) systemsRead;
decltype(&WriteFile) systemsWrite;

template <typename Result>
Result Noted(Result result, bool failed, std::atomic<DWORD>& error) {
  const DWORD code = GetLastError();
  if (failed) error = code;
  SetLastError(code);
  return result;
}

HANDLE WINAPI OpenNoted(const char* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD how,
                        DWORD flags, HANDLE model) {
  const HANDLE opened = systemsOpen(name, access, share, security, how, flags, model);
  return Noted(opened, opened == INVALID_HANDLE_VALUE, openError);
}

WINBOOL WINAPI ReadNoted(HANDLE pipe, void* buffer, DWORD size, DWORD* got, OVERLAPPED* operation) {
  const WINBOOL done = systemsRead(pipe, buffer, size, got, operation);
  return Noted(done, !done, readError);
}

WINBOOL WINAPI WriteNoted(HANDLE pipe, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* operation) {
  const WINBOOL done = systemsWrite(pipe, bytes, size, written, operation);
  return Noted(done, !done, writeError);
}

// The companion's end of a pipe by the plainest calls. Nothing is read that has not come, so that nothing blocks.
class RawPipe {
 public:
  RawPipe(const std::string& name, DWORD access)
      : pipe_(CreateNamedPipeA(name.c_str(), access, PIPE_TYPE_BYTE, 1, 4096, 4096, 0, nullptr)) {}

  // What ConnectNamedPipe reports, 0 for success. Waits for the driver.
  DWORD Listen() { return ConnectNamedPipe(pipe_.Get(), nullptr) ? 0 : GetLastError(); }
  DWORD ReadOne() {
    std::uint8_t byte = 0;
    DWORD got = 0;
    return ReadFile(pipe_.Get(), &byte, 1, &got, nullptr) ? 0 : GetLastError();
  }
  DWORD Write(const companion::Bytes& bytes) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(bytes.size());
    return WriteFile(pipe_.Get(), bytes.data(), size, &written, nullptr) ? 0 : GetLastError();
  }
  // Only of the pipe that the driver writes.
  [[nodiscard]] bool WaitForDriverGone() {
    return WaitUntil([this] { return !PeekNamedPipe(pipe_.Get(), nullptr, 0, nullptr, nullptr, nullptr); }, kPatience);
  }
  void Disconnect() { EXPECT_TRUE(DisconnectNamedPipe(pipe_.Get())); }
  void Close() { pipe_.Reset(); }

 private:
  bench::OwnedHandle pipe_;
};

class ConnectionEndTest : public DriverTest {
 protected:
  ConnectionEndTest() {
    openError = readError = writeError = 0;
    Replace("CreateFileA", systemsOpen, &OpenNoted);
    Replace("ReadFile", systemsRead, &ReadNoted);
    Replace("WriteFile", systemsWrite, &WriteNoted);
  }
  ~ConnectionEndTest() override { Unload(); }

  void Connect() {
    InitAndActivateHeadset();
    Listen();
  }
  void Listen() {
    for (RawPipe* pipe : {&in_, &out_}) EXPECT_THAT(pipe->Listen(), testing::AnyOf(0U, ERROR_PIPE_CONNECTED));
  }
  void ExpectDriverGone() {
    ASSERT_TRUE(in_.WaitForDriverGone());
    EXPECT_EQ(in_.ReadOne(), ERROR_BROKEN_PIPE);
    // The driver closes one handle after the other.
    EXPECT_TRUE(WaitUntil([&] { return out_.Write({1}) == ERROR_NO_DATA; }, kPatience));
    for (RawPipe* pipe : {&in_, &out_}) EXPECT_EQ(pipe->Listen(), ERROR_NO_DATA);
  }
  void ExpectPoseToArrive() {
    const std::size_t poses = runtime.Poses().Count(0);
    EXPECT_EQ(out_.Write(companion::EncodeQuaternionAndPosition({}, {})), 0U);
    EXPECT_TRUE(WaitUntil([&] { return runtime.Poses().Count(0) > poses; }, kPatience));
  }
  void ExpectToStayConnected() {
    Sleep(400);  // some rounds of the connect thread, each of which would end it
    ExpectPoseToArrive();
    EXPECT_EQ(readError, 0U);
  }
  // Lets a controller vibrate until a write of the driver has failed.
  void ExpectWriteToFailBy(DWORD code) {
    EXPECT_EQ(out_.Write(companion::EncodeControllerUpdate({.controllerId = 7})), 0U);
    ASSERT_TRUE(WaitUntil([&] { return runtime.Host().Added().size() == 2; }, kPatience));
    runtime.Host().Added().at(1).driver->Activate(1);
    runtime.Host().PushHaptic(bench::FakeProperties::ContainerOf(1), 1, 0.01F, 100, 1);
    Provider().RunFrame();
    EXPECT_TRUE(WaitUntil([] { return writeError != 0; }, kPatience));
    EXPECT_EQ(writeError, code);
  }

  RawPipe in_{companion::PipeServerOptions().fromDriverName, PIPE_ACCESS_INBOUND};
  RawPipe out_{companion::PipeServerOptions().toDriverName, PIPE_ACCESS_OUTBOUND};

 private:
  template <typename Function>
  void Replace(const char* name, Function& systems, Function ours) {
    systems = reinterpret_cast<Function>(ReplaceImport(module.Handle(), name, reinterpret_cast<void*>(ours)));
  }
};

TEST_F(ConnectionEndTest, TheDriversIsSeenInBothPipes) {
  Connect();
  EXPECT_EQ(out_.Write({1, 0, 1, 0, 3, 0, 0, 0}), 0U);  // a payload of 65,537 bytes
  ExpectDriverGone();
}

TEST_F(ConnectionEndTest, TheSessionsIsSeenLikeTheDrivers) {
  Connect();
  Provider().Cleanup();
  ExpectDriverGone();
}

TEST_F(ConnectionEndTest, APipeIsBusyUntilItIsDisconnected) {
  Connect();
  EXPECT_EQ(out_.Write({1, 0, 1, 0, 3, 0, 0, 0}), 0U);
  ASSERT_TRUE(in_.WaitForDriverGone());
  EXPECT_TRUE(WaitUntil([] { return openError == ERROR_PIPE_BUSY; }, kPatience));
  in_.Disconnect();
  out_.Disconnect();
  Listen();
  ExpectPoseToArrive();
}

TEST_F(ConnectionEndTest, WithoutPipesThereIsNothingToOpen) {
  in_.Close();
  out_.Close();
  InitAndActivateHeadset();
  EXPECT_TRUE(WaitUntil([] { return openError == ERROR_FILE_NOT_FOUND; }, kPatience));
}

TEST_F(ConnectionEndTest, ClosingOutEndsIt) {
  Connect();
  out_.Close();
  ASSERT_TRUE(in_.WaitForDriverGone());
  EXPECT_EQ(readError, ERROR_BROKEN_PIPE);
}

TEST_F(ConnectionEndTest, DisconnectingOutEndsIt) {
  Connect();
  out_.Disconnect();
  ASSERT_TRUE(in_.WaitForDriverGone());
  EXPECT_EQ(readError, ERROR_PIPE_NOT_CONNECTED);
}

TEST_F(ConnectionEndTest, ClosingInAloneGoesUnnoticed) {
  Connect();
  ExpectPoseToArrive();  // In was there when the connection was made
  in_.Close();
  ExpectWriteToFailBy(ERROR_NO_DATA);
  ExpectToStayConnected();
}

TEST_F(ConnectionEndTest, DisconnectingInAloneGoesUnnoticed) {
  Connect();
  ExpectPoseToArrive();  // In was there when the connection was made
  in_.Disconnect();
  ExpectWriteToFailBy(ERROR_PIPE_NOT_CONNECTED);
  ExpectToStayConnected();
}

}  // namespace
}  // namespace ombrel::test
