#include "bare_reader.h"

#include <chrono>
#include <stdexcept>
#include <string>

namespace bench::speed {
namespace {

constexpr const char* kToCompanion = R"(\\.\pipe\OmbrelBenchBaselineIn)";
constexpr const char* kFromCompanion = R"(\\.\pipe\OmbrelBenchBaselineOut)";

OwnedHandle Open(const char* name, DWORD access) {
  OwnedHandle pipe(CreateFileA(name, access, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!pipe) throw std::runtime_error(std::string("cannot open ") + name);
  return pipe;
}

}  // namespace

BareReader::BareReader(std::size_t bufferBytes, OnBytes onBytes)
    : companion_({.fromDriverName = kToCompanion, .toDriverName = kFromCompanion}),
      buffer_(bufferBytes),
      onBytes_(std::move(onBytes)) {
  constexpr std::uint32_t kPatienceMs = 20'000;
  if (!companion_.Open()) throw std::runtime_error("cannot make the bare reader's pipes");
  toCompanion_ = Open(kToCompanion, GENERIC_WRITE);
  fromCompanion_ = Open(kFromCompanion, GENERIC_READ);
  if (!companion_.WaitForConnection(kPatienceMs)) throw std::runtime_error("the bare reader is not connected");
  thread_ = std::thread([this] { Read(); });
}

BareReader::~BareReader() {
  // A cancel between two reads cancels nothing.
  while (!ended_) {
    CancelIoEx(fromCompanion_.Get(), nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  thread_.join();
}

void BareReader::Send(std::span<const std::uint8_t> message) {
  if (!companion_.Send(message)) throw std::runtime_error("sending to the bare reader failed");
}

void BareReader::Read() {
  DWORD got = 0;
  const auto size = static_cast<DWORD>(buffer_.size());
  while (ReadFile(fromCompanion_.Get(), buffer_.data(), size, &got, nullptr) != 0) onBytes_(got);
  ended_ = true;
}

}  // namespace bench::speed
