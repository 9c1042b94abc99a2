#include "plain_client.h"

bool PlainClient::Open(const std::string& inName, const std::string& outName, std::uint32_t timeoutMs) {
  in_ = OpenWhenThere(inName, GENERIC_WRITE, timeoutMs);
  if (in_) out_ = OpenWhenThere(outName, GENERIC_READ, timeoutMs);
  return in_ && out_;
}

bench::OwnedHandle PlainClient::OpenWhenThere(const std::string& name, DWORD access, std::uint32_t timeoutMs) {
  const ULONGLONG until = GetTickCount64() + timeoutMs;
  while (true) {
    bench::OwnedHandle pipe(CreateFileA(name.c_str(), access, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (pipe || GetTickCount64() >= until) return pipe;
    Sleep(5);
  }
}

void PlainClient::Close() {
  in_.Reset();
  out_.Reset();
}

bool PlainClient::WriteMessage(std::span<const std::uint8_t> message) {
  return WriteBytes(message.first(4)) && WriteBytes(message.subspan(4, 4)) && WriteBytes(message.subspan(8));
}

bool PlainClient::WriteBytes(std::span<const std::uint8_t> bytes) {
  DWORD written = 0;
  return WriteFile(in_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
         written == bytes.size();
}

std::vector<std::uint8_t> PlainClient::ReadBytes(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  std::size_t have = 0;
  while (have < count) {
    DWORD got = 0;
    if (!ReadFile(out_.Get(), bytes.data() + have, static_cast<DWORD>(count - have), &got, nullptr)) break;
    have += got;
  }
  bytes.resize(have);
  return bytes;
}

bool PlainClient::HasMore() const {
  DWORD waiting = 0;
  return PeekNamedPipe(out_.Get(), nullptr, 0, nullptr, &waiting, nullptr) && waiting != 0;
}

std::optional<companion::Message> PlainClient::Read() {
  const auto head = ReadBytes(8);
  if (head.size() < 8) return std::nullopt;
  const auto header = companion::ReadAs<OmbrelMessageHeader>(head);
  auto payload = ReadBytes(header->length);
  if (payload.size() < header->length) return std::nullopt;
  return companion::Message{header->type, std::move(payload)};
}

PipeNames::PipeNames(const std::string& test) {
  const std::string stem = R"(\\.\pipe\companion_test_)" + std::to_string(GetCurrentProcessId()) + '_' + test;
  in = stem + "In";
  out = stem + "Out";
}
