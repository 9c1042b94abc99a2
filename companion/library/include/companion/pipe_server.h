#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "companion/messages.h"

namespace companion {

struct PipeServerOptions {
  std::string fromDriverName = OMBREL_PIPE_FROM_DRIVER;
  std::string toDriverName = OMBREL_PIPE_TO_DRIVER;
  std::uint32_t bufferBytes = 65536;  // of each pipe; 0: every write waits for its reader
};

struct ReceivedMessage {
  std::int64_t ticks = 0;        // performance counter when the last byte had come
  std::uint32_t connection = 0;  // 1 for the first connection
  Message message;
};

// The companion's end of the link: makes both pipes, lets the driver in again and again, and collects what it sends. Only
// programs of the same user on the same machine may open the pipes.
// All methods may be called on any thread; messages are read on a thread of the server's own.
class PipeServer {
 public:
  explicit PipeServer(PipeServerOptions options = {});
  ~PipeServer();
  PipeServer(const PipeServer&) = delete;
  PipeServer& operator=(const PipeServer&) = delete;

  // Creates both pipes. False when one cannot be made now (another program has one of that name, be it a companion or a
  // stranger who wants the driver's messages) or the server is open.
  bool Open();
  // Ends the connection and removes both pipes. What was sent can still be read by the driver. The destructor does it, too.
  void Close();

  bool Connected() const;
  // Connections so far.
  std::uint32_t Connections() const;
  // True once both pipes have a client; false after `timeoutMs`.
  bool WaitForConnection(std::uint32_t timeoutMs) const;
  // True once no client is there.
  bool WaitForDisconnection(std::uint32_t timeoutMs) const;

  // Writes the bytes in one piece; senders on several threads take turns. False when there is no connection.
  // Blocks while the pipe is full, until the driver reads, goes, or Close() is called.
  bool Send(std::span<const std::uint8_t> bytes);
  // Waits until the driver has read everything that was sent.
  void Flush();

  // The oldest message not taken yet; nothing after `timeoutMs`.
  std::optional<ReceivedMessage> Next(std::uint32_t timeoutMs);

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace companion
