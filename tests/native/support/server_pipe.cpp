#include "support/server_pipe.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "support/wait.h"

namespace ombrel::test {
namespace {

void CloseSocket(int& socket) {
  if (socket >= 0) close(std::exchange(socket, -1));
}

bool WaitReadable(int socket, int timeoutMs) {
  pollfd state{socket, POLLIN, 0};
  return poll(&state, 1, timeoutMs) > 0;
}

constexpr int kPatienceMs = static_cast<int>(kPatience.count());

}  // namespace

ServerPipe::~ServerPipe() {
  Withdraw();
  Disconnect();
}

void ServerPipe::Offer() {
  Withdraw();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path_.size() >= sizeof(address.sun_path)) throw std::length_error("socket path");
  path_.copy(address.sun_path, path_.size());
  listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  unlink(path_.c_str());
  if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 || listen(listener_, 1) != 0) {
    throw std::runtime_error("cannot offer " + path_);
  }
}

bool ServerPipe::IsOpened(int timeoutMs) const { return WaitReadable(listener_, timeoutMs); }

bool ServerPipe::Accept() {
  if (!WaitReadable(listener_, kPatienceMs)) return false;
  // Nobody else can get in once the name is gone.
  unlink(path_.c_str());
  Disconnect();
  client_ = accept(listener_, nullptr, nullptr);
  CloseSocket(listener_);
  return client_ >= 0;
}

void ServerPipe::Withdraw() {
  if (listener_ < 0) return;
  unlink(path_.c_str());
  CloseSocket(listener_);
}

void ServerPipe::Disconnect() { CloseSocket(client_); }

bool ServerPipe::Send(std::span<const std::byte> bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = send(client_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(sent));
  }
  return true;
}

std::vector<std::byte> ServerPipe::Receive(std::size_t size) const {
  std::vector<std::byte> bytes(size);
  std::size_t got = 0;
  while (got < size && WaitReadable(client_, kPatienceMs)) {
    const ssize_t count = recv(client_, bytes.data() + got, size - got, 0);
    if (count <= 0) break;
    got += static_cast<std::size_t>(count);
  }
  bytes.resize(got);
  return bytes;
}

bool ServerPipe::HasData(int timeoutMs) const { return WaitReadable(client_, timeoutMs); }

bool ServerPipe::WaitForClientGone() const {
  std::array<std::byte, 4096> dropped;
  while (WaitReadable(client_, kPatienceMs)) {
    if (recv(client_, dropped.data(), dropped.size(), 0) <= 0) return true;
  }
  return false;
}

}  // namespace ombrel::test
