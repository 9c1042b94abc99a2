#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "base/owned_handle.h"
#include "companion/pipe_server.h"

namespace bench {

// The server's end of one pipe. Every wait also ends when `stop` is signalled. One thread reads or connects,
// one thread at a time writes; the two may be different.
class ServerPipe {
 public:
  enum class Direction { FromDriver, ToDriver };

  explicit ServerPipe(HANDLE stop);

  bool Create(const std::string& name, Direction direction, const PipeServerOptions& options);
  bool Exists() const { return static_cast<bool>(pipe_); }

  // False when `stop` came first, the pipe failed, or the client of `other` left meanwhile.
  bool WaitForClient(const ServerPipe* other = nullptr);
  // Whether a client was here and has closed its end. Only for a pipe that the client writes.
  bool ClientLeft() const;
  // Bytes read; 0 when the client is gone or `stop` came.
  std::size_t Read(std::span<std::uint8_t> buffer);
  bool Write(std::span<const std::uint8_t> bytes);

  // Waits until the client has read all that was written, or is gone.
  void Flush();
  // Lets the next client in.
  void Disconnect();
  // The pipe is gone; what was written stays readable for the client that has it open.
  void Close() { pipe_.Reset(); }

 private:
  bool Finish(BOOL started, OVERLAPPED& operation, DWORD& transferred, const ServerPipe* other = nullptr);

  HANDLE stop_;
  OwnedHandle pipe_;
  OwnedHandle readDone_;
  OwnedHandle writeDone_;
};

}  // namespace bench
