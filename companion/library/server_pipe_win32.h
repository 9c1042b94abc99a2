#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "companion/unique_handle.h"

namespace companion {

// The server's end of one pipe. Every wait also ends when `stop` is signalled. One thread reads or connects,
// one thread at a time writes; the two may be different.
class ServerPipe {
 public:
  enum class Direction { FromDriver, ToDriver };

  explicit ServerPipe(HANDLE stop);

  // Makes the one instance of this pipe, for programs of this user on this machine. False when there is one of that name.
  bool Create(const std::string& name, Direction direction, std::uint32_t bufferBytes);
  bool Exists() const { return pipe_ != nullptr; }

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
  void Close() { pipe_.reset(); }

 private:
  bool Finish(BOOL started, OVERLAPPED& operation, DWORD& transferred, const ServerPipe* other = nullptr);

  HANDLE stop_;
  UniqueHandle pipe_;
  UniqueHandle readDone_;
  UniqueHandle writeDone_;
};

}  // namespace companion
