#include "server_pipe_win32.h"

#include "own_access_win32.h"

namespace companion {
namespace {

constexpr DWORD kLookInterval = 20;  // ms

}  // namespace

ServerPipe::ServerPipe(HANDLE stop)
    : stop_(stop),
      readDone_(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      writeDone_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}

bool ServerPipe::Create(const std::string& name, Direction direction, std::uint32_t bufferBytes) {
  OwnAccess access;
  if (access.Get() == nullptr) return false;
  // A stranger's pipe of this name is refused, too: by Windows, while Wine 8 takes no notice of the flag.
  const DWORD open = (direction == Direction::FromDriver ? PIPE_ACCESS_INBOUND : PIPE_ACCESS_OUTBOUND) |
                     FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE;
  const DWORD mode = PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS;
  const HANDLE pipe = CreateNamedPipeA(name.c_str(), open, mode, 1, bufferBytes, bufferBytes, 0, access.Get());
  if (pipe != INVALID_HANDLE_VALUE) pipe_.reset(pipe);
  return Exists();
}

bool ServerPipe::Finish(BOOL started, OVERLAPPED& operation, DWORD& transferred, const ServerPipe* other) {
  if (!started && GetLastError() != ERROR_IO_PENDING) return false;
  const HANDLE ends[] = {operation.hEvent, stop_};
  DWORD ended = WAIT_TIMEOUT;
  while (ended == WAIT_TIMEOUT && !(other != nullptr && other->ClientLeft())) {
    ended = WaitForMultipleObjects(2, ends, FALSE, other == nullptr ? INFINITE : kLookInterval);
  }
  if (ended != WAIT_OBJECT_0) CancelIoEx(pipe_.get(), &operation);
  return GetOverlappedResult(pipe_.get(), &operation, &transferred, TRUE) != FALSE;
}

bool ServerPipe::WaitForClient(const ServerPipe* other) {
  OVERLAPPED operation{};
  operation.hEvent = readDone_.get();
  const BOOL started = ConnectNamedPipe(pipe_.get(), &operation);
  if (!started && GetLastError() == ERROR_PIPE_CONNECTED) return true;
  DWORD transferred = 0;
  return Finish(started, operation, transferred, other);
}

bool ServerPipe::ClientLeft() const {
  DWORD waiting = 0;
  return !PeekNamedPipe(pipe_.get(), nullptr, 0, nullptr, &waiting, nullptr) && GetLastError() == ERROR_BROKEN_PIPE;
}

std::size_t ServerPipe::Read(std::span<std::uint8_t> buffer) {
  OVERLAPPED operation{};
  operation.hEvent = readDone_.get();
  const BOOL started = ReadFile(pipe_.get(), buffer.data(), static_cast<DWORD>(buffer.size()), nullptr, &operation);
  DWORD transferred = 0;
  return Finish(started, operation, transferred) ? transferred : 0;
}

bool ServerPipe::Write(std::span<const std::uint8_t> bytes) {
  OVERLAPPED operation{};
  operation.hEvent = writeDone_.get();
  const BOOL started = WriteFile(pipe_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation);
  DWORD transferred = 0;
  return Finish(started, operation, transferred) && transferred == bytes.size();
}

void ServerPipe::Flush() {
  if (Exists()) FlushFileBuffers(pipe_.get());
}

void ServerPipe::Disconnect() {
  if (Exists()) DisconnectNamedPipe(pipe_.get());
}

}  // namespace companion
