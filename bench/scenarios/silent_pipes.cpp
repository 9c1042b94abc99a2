#include "silent_pipes.h"

#include <optional>
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

// Starts an overlapped operation, waits for it and takes it back when the time is up: the bytes it moved.
template <typename Start>
std::optional<DWORD> Finish(const OwnedHandle& pipe, DWORD timeoutMs, Start start) {
  const OwnedHandle done(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  OVERLAPPED operation{};
  operation.hEvent = done.Get();
  DWORD moved = 0;
  if (!start(&operation)) {
    if (GetLastError() == ERROR_PIPE_CONNECTED) return moved;
    if (GetLastError() != ERROR_IO_PENDING) return std::nullopt;
  }
  if (WaitForSingleObject(done.Get(), timeoutMs) != WAIT_OBJECT_0) CancelIoEx(pipe.Get(), &operation);
  if (!GetOverlappedResult(pipe.Get(), &operation, &moved, TRUE)) return std::nullopt;
  return moved;
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
  const auto connect = [&](OVERLAPPED* operation) { return ConnectNamedPipe(end.pipe.Get(), operation); };
  end.isConnected = Finish(end.pipe, timeoutMs, connect).has_value();
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
  return Finish(toDriver_.pipe, timeoutMs, [&](OVERLAPPED* operation) {
           return WriteFile(toDriver_.pipe.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, operation);
         }) == bytes.size();
}

std::size_t SilentPipes::Read(std::span<std::uint8_t> buffer, std::uint32_t timeoutMs) {
  return Finish(fromDriver_.pipe, timeoutMs,
                [&](OVERLAPPED* operation) {
                  return ReadFile(fromDriver_.pipe.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), nullptr,
                                  operation);
                })
      .value_or(0);
}

}  // namespace bench::scenarios
