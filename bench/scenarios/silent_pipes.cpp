#include "silent_pipes.h"

#include <stdexcept>

#include "companion/pipe_server.h"

namespace bench::scenarios {

using namespace companion;

namespace {

OwnedHandle MakePipe(const std::string& name, DWORD access, DWORD bufferBytes, bool messageType) {
  const DWORD type = messageType ? PIPE_TYPE_MESSAGE : PIPE_TYPE_BYTE;  // and blocking
  OwnedHandle pipe(
      CreateNamedPipeA(name.c_str(), access | FILE_FLAG_OVERLAPPED, type, 1, bufferBytes, bufferBytes, 0, nullptr));
  if (!pipe) throw std::runtime_error("cannot make the pipe " + name);
  return pipe;
}

// Waits for an operation that was started, and takes it back when the time is up.
bool Finish(HANDLE pipe, BOOL started, OVERLAPPED& operation, DWORD& transferred, DWORD timeoutMs) {
  if (!started && GetLastError() != ERROR_IO_PENDING) return false;
  if (WaitForSingleObject(operation.hEvent, timeoutMs) != WAIT_OBJECT_0) CancelIoEx(pipe, &operation);
  return GetOverlappedResult(pipe, &operation, &transferred, TRUE) != FALSE;
}

}  // namespace

SilentPipes::SilentPipes(Which which, std::uint32_t bufferBytes, bool messageType) {
  const PipeServerOptions names;
  if (which != Which::kOnlyToDriver) {
    fromDriver_.pipe = MakePipe(names.fromDriverName, PIPE_ACCESS_INBOUND, bufferBytes, messageType);
  }
  if (which != Which::kOnlyFromDriver) {
    toDriver_.pipe = MakePipe(names.toDriverName, PIPE_ACCESS_OUTBOUND, bufferBytes, messageType);
  }
}

bool SilentPipes::WaitForClient(End& end, std::uint32_t timeoutMs) {
  if (!end.pipe || end.isConnected) return true;
  const OwnedHandle done(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  OVERLAPPED operation{};
  operation.hEvent = done.Get();
  const BOOL started = ConnectNamedPipe(end.pipe.Get(), &operation);
  DWORD transferred = 0;
  end.isConnected = (!started && GetLastError() == ERROR_PIPE_CONNECTED) ||
                    Finish(end.pipe.Get(), started, operation, transferred, timeoutMs);
  return end.isConnected;
}

bool SilentPipes::WaitForFirstPipe(std::uint32_t timeoutMs) { return WaitForClient(fromDriver_, timeoutMs); }

void SilentPipes::DisconnectFirstPipe() {
  DisconnectNamedPipe(fromDriver_.pipe.Get());
  fromDriver_.isConnected = false;
}

bool SilentPipes::WaitForDriver(std::uint32_t timeoutMs) {
  return WaitForClient(fromDriver_, timeoutMs) && WaitForClient(toDriver_, timeoutMs);
}

bool SilentPipes::Write(std::span<const std::uint8_t> bytes, std::uint32_t timeoutMs) {
  const OwnedHandle done(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  OVERLAPPED operation{};
  operation.hEvent = done.Get();
  const BOOL started =
      WriteFile(toDriver_.pipe.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
  DWORD written = 0;
  return Finish(toDriver_.pipe.Get(), started, operation, written, timeoutMs) && written == bytes.size();
}

std::size_t SilentPipes::Read(std::span<std::uint8_t> buffer, std::uint32_t timeoutMs) {
  const OwnedHandle done(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  OVERLAPPED operation{};
  operation.hEvent = done.Get();
  const BOOL started =
      ReadFile(fromDriver_.pipe.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), nullptr, &operation);
  DWORD got = 0;
  return Finish(fromDriver_.pipe.Get(), started, operation, got, timeoutMs) ? got : 0;
}

}  // namespace bench::scenarios
