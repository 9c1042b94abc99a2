#include "floor/message_reader.h"

#include <chrono>
#include <stdexcept>
#include <string>

namespace bench::floor {
namespace {

HANDLE Open(const char* name, DWORD access) {
  const HANDLE pipe = CreateFileA(name, access, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (pipe == INVALID_HANDLE_VALUE) throw std::runtime_error(std::string("cannot open ") + name);
  return pipe;
}

}  // namespace

MessageReader::MessageReader(const char* toCompanion, const char* fromCompanion, std::size_t bufferBytes,
                             OnBytes onBytes)
    : toCompanion_(Open(toCompanion, GENERIC_WRITE)),
      fromCompanion_(Open(fromCompanion, GENERIC_READ)),
      buffer_(bufferBytes),
      onBytes_(std::move(onBytes)),
      thread_([this] { Read(); }) {}

MessageReader::~MessageReader() {
  // A cancel between two reads cancels nothing.
  while (!ended_) {
    CancelIoEx(fromCompanion_, nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  thread_.join();
  CloseHandle(fromCompanion_);
  CloseHandle(toCompanion_);
}

void MessageReader::Read() {
  DWORD got = 0;
  while (ReadFile(fromCompanion_, buffer_.data(), static_cast<DWORD>(buffer_.size()), &got, nullptr) != 0)
    onBytes_(got);
  ended_ = true;
}

}  // namespace bench::floor
