#pragma once

#include <cstdint>
#include <memory>

#include "preview/hub.h"
#include "preview/messages.h"

namespace preview {

// Bounds of what strangers can make the server keep.
struct ServerLimits {
  std::size_t connections = 64;     // in all; more are closed at once
  std::uint32_t requestMs = 5000;   // for a request and its answer
  std::uint32_t silenceMs = 20000;  // of a page that does not even answer a ping
};

// Serves the pages and their WebSockets on this machine's loopback addresses alone, on a thread of its own.
class Server {
 public:
  // Port 0: one that is free. Throws std::exception when the port is taken. The listener must outlive the server.
  Server(std::uint16_t port, Listener& listener, const ServerLimits& limits = {});
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  [[nodiscard]] std::uint16_t Port() const;

  // Any thread.
  [[nodiscard]] bool WantsFrame() const;
  void Publish(Frame frame);
  void SetDriver(bool connected);
  void Pulse(std::uint32_t controllerId, std::uint32_t durationMicroseconds);

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace preview
