#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "platform/pipe.h"

namespace ombrel {
namespace {

// A pipe \\.\pipe\Name is a local socket "Name" in the folder that OMBREL_PIPE_DIR names. Cancelling shuts the socket
// down, which also ends reads and writes to come: callers only cancel what they are about to close.
std::string SocketPath(const char* name) {
  const char* folder = std::getenv("OMBREL_PIPE_DIR");
  const char* last = std::strrchr(name, '\\');
  return std::string(folder != nullptr ? folder : ".") + "/" + (last != nullptr ? last + 1 : name);
}

}  // namespace

bool PipeClient::Open(const char* name, Direction /*direction*/) {
  Close();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = SocketPath(name);
  if (path.size() >= sizeof(address.sun_path)) return false;
  std::memcpy(address.sun_path, path.c_str(), path.size());
  OwnedHandle socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) return false;
  handle_ = std::move(socket);
  return true;
}

bool PipeClient::IsPeerGone() const {
  pollfd state{handle_.Get(), POLLIN | POLLOUT, 0};
  return poll(&state, 1, 0) > 0 && (state.revents & (POLLHUP | POLLERR)) != 0;
}

bool PipeClient::ReadSome(void* buffer, std::size_t capacity, std::size_t& got) {
  const ssize_t count = recv(handle_.Get(), buffer, capacity, 0);
  got = count > 0 ? static_cast<std::size_t>(count) : 0;
  return count > 0;
}

bool PipeClient::WriteAll(const void* bytes, std::size_t size) {
  const auto* next = static_cast<const char*>(bytes);
  while (size > 0) {
    const ssize_t written = send(handle_.Get(), next, size, MSG_NOSIGNAL);
    if (written <= 0) return false;
    next += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

void PipeClient::CancelIo() {
  if (handle_) shutdown(handle_.Get(), SHUT_RDWR);
}

}  // namespace ombrel
