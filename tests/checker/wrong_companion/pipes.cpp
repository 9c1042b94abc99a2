#include "pipes.h"

#include <array>
#include <cstring>
#include <stdexcept>

namespace {

constexpr DWORD kBufferBytes = 65536;

bench::OwnedHandle MakePipe(const char* name, DWORD access) {
  bench::OwnedHandle pipe(
      CreateNamedPipeA(name, access, PIPE_TYPE_BYTE | PIPE_WAIT, 1, kBufferBytes, kBufferBytes, 0, nullptr));
  if (!pipe) throw std::runtime_error("a pipe cannot be made");
  return pipe;
}

// Already connected is a success, too.
void WaitForClient(HANDLE pipe) { ConnectNamedPipe(pipe, nullptr); }

}  // namespace

Pipes::Pipes(const Faults& faults) : faults_(faults), in_(MakePipe(OMBREL_PIPE_FROM_DRIVER, PIPE_ACCESS_INBOUND)) {
  if (!faults.Has("late-second-pipe")) out_ = MakePipe(OMBREL_PIPE_TO_DRIVER, PIPE_ACCESS_OUTBOUND);
}

Pipes::~Pipes() { Disconnect(); }

void Pipes::Accept() {
  WaitForClient(in_.Get());
  if (!out_) {
    Sleep(400);
    out_ = MakePipe(OMBREL_PIPE_TO_DRIVER, PIPE_ACCESS_OUTBOUND);
  }
  WaitForClient(out_.Get());
  reading_ = true;
  reader_ = std::thread([this] {
    Read();
    reading_ = false;
  });
}

bool Pipes::Send(std::span<const std::uint8_t> bytes) const {
  DWORD written = 0;
  return WriteFile(out_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0;
}

// Messages come in pieces; the announcement is found by its length and type.
void Pipes::Read() {
  std::vector<std::uint8_t> stream;
  std::array<std::uint8_t, 4096> buffer;
  DWORD got = 0;
  while (ReadFile(in_.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) != 0) {
    stream.insert(stream.end(), buffer.begin(), buffer.begin() + got);
    OmbrelMessageHeader header{};
    while (stream.size() >= sizeof(header)) {
      std::memcpy(&header, stream.data(), sizeof(header));
      if (stream.size() < sizeof(header) + header.length) break;
      OmbrelFrameSharingInfo info{};
      if (header.type == OMBREL_FRAME_SHARING_INFO && header.length == sizeof(info)) {
        std::memcpy(&info, stream.data() + sizeof(header), sizeof(info));
        const std::lock_guard lock(mutex_);
        announcement_ = info;
      }
      stream.erase(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(sizeof(header) + header.length));
    }
    if (faults_.Has("unread") && Announcement()) return;
  }
}

std::optional<OmbrelFrameSharingInfo> Pipes::Announcement() const {
  const std::lock_guard lock(mutex_);
  return announcement_;
}

// A cancel that comes between two reads cancels nothing.
void Pipes::EndReading() {
  while (reading_) {
    CancelIoEx(in_.Get(), nullptr);
    Sleep(1);
  }
  if (reader_.joinable()) reader_.join();
}

void Pipes::CloseIn() {
  EndReading();
  in_.Reset();
}

void Pipes::Disconnect() {
  EndReading();
  if (in_) DisconnectNamedPipe(in_.Get());
  if (out_) DisconnectNamedPipe(out_.Get());
  const std::lock_guard lock(mutex_);
  announcement_.reset();
}
