#include "server_pipe_win32.h"

namespace bench {
namespace {

constexpr DWORD kLookInterval = 20;  // ms

}  // namespace

ServerPipe::ServerPipe(HANDLE stop)
    : stop_(stop),
      readDone_(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      writeDone_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}

bool ServerPipe::Create(const std::string& name, Direction direction, const PipeServerOptions& options) {
  const DWORD access = direction == Direction::FromDriver ? PIPE_ACCESS_INBOUND : PIPE_ACCESS_OUTBOUND;
  const DWORD type = options.messageType ? PIPE_TYPE_MESSAGE : PIPE_TYPE_BYTE;
  pipe_ =
      OwnedHandle(CreateNamedPipeA(name.c_str(), access | FILE_FLAG_OVERLAPPED, type | PIPE_READMODE_BYTE | PIPE_WAIT,
                                   options.maxInstances, options.bufferBytes, options.bufferBytes, 0, nullptr));
  return Exists();
}

bool ServerPipe::Finish(BOOL started, OVERLAPPED& operation, DWORD& transferred, const ServerPipe* other) {
  if (!started && GetLastError() != ERROR_IO_PENDING) return false;
  const HANDLE ends[] = {operation.hEvent, stop_};
  DWORD ended = WAIT_TIMEOUT;
  while (ended == WAIT_TIMEOUT && !(other != nullptr && other->ClientLeft())) {
    ended = WaitForMultipleObjects(2, ends, FALSE, other == nullptr ? INFINITE : kLookInterval);
  }
  if (ended != WAIT_OBJECT_0) CancelIoEx(pipe_.Get(), &operation);
  return GetOverlappedResult(pipe_.Get(), &operation, &transferred, TRUE) != FALSE;
}

bool ServerPipe::WaitForClient(const ServerPipe* other) {
  OVERLAPPED operation{};
  operation.hEvent = readDone_.Get();
  const BOOL started = ConnectNamedPipe(pipe_.Get(), &operation);
  if (!started && GetLastError() == ERROR_PIPE_CONNECTED) return true;
  DWORD transferred = 0;
  return Finish(started, operation, transferred, other);
}

bool ServerPipe::ClientLeft() const {
  DWORD waiting = 0;
  return !PeekNamedPipe(pipe_.Get(), nullptr, 0, nullptr, &waiting, nullptr) && GetLastError() == ERROR_BROKEN_PIPE;
}

std::size_t ServerPipe::Read(std::span<std::uint8_t> buffer) {
  OVERLAPPED operation{};
  operation.hEvent = readDone_.Get();
  const BOOL started = ReadFile(pipe_.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), nullptr, &operation);
  DWORD transferred = 0;
  return Finish(started, operation, transferred) ? transferred : 0;
}

bool ServerPipe::Write(std::span<const std::uint8_t> bytes) {
  OVERLAPPED operation{};
  operation.hEvent = writeDone_.Get();
  const BOOL started = WriteFile(pipe_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
  DWORD transferred = 0;
  return Finish(started, operation, transferred) && transferred == bytes.size();
}

void ServerPipe::Flush() {
  if (Exists()) FlushFileBuffers(pipe_.Get());
}

void ServerPipe::Disconnect() {
  if (Exists()) DisconnectNamedPipe(pipe_.Get());
}

}  // namespace bench
