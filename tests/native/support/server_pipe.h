#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace ombrel::test {

// One of the companion's pipes, as a local socket that one client can open, like a pipe with a single instance. Waits
// end after kPatience. One thread at a time.
class ServerPipe {
 public:
  explicit ServerPipe(std::string path) : path_(std::move(path)) {}
  ~ServerPipe();
  ServerPipe(const ServerPipe&) = delete;
  ServerPipe& operator=(const ServerPipe&) = delete;

  // From now on it can be opened.
  void Offer();
  // Whether a client opens it within that time.
  [[nodiscard]] bool IsOpened(int timeoutMs) const;
  // Waits for the client, and offers no more.
  [[nodiscard]] bool Accept();
  // A client that has opened it but was not accepted is thrown out.
  void Withdraw();
  void Disconnect();

  [[nodiscard]] bool Send(std::span<const std::byte> bytes) const;
  // As many bytes, or fewer when the client has gone or sends no more.
  [[nodiscard]] std::vector<std::byte> Receive(std::size_t size) const;
  // Whether there is anything to receive within that time.
  [[nodiscard]] bool HasData(int timeoutMs) const;
  // Waits for the client to close its end; what it sent before is dropped.
  [[nodiscard]] bool WaitForClientGone() const;

 private:
  std::string path_;
  int listener_ = -1;
  int client_ = -1;
};

}  // namespace ombrel::test
