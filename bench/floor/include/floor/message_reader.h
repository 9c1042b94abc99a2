#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

namespace bench::floor {

// A bare thread at the driver's end of a pair of pipes: it reads, says how much came, and reads again.
class MessageReader {
 public:
  // Called on the reader's thread, as soon as a read has come back.
  using OnBytes = std::function<void(std::size_t bytes)>;

  // The names are those of the pipes that the driver writes and reads. Throws std::runtime_error when either cannot be
  // opened.
  MessageReader(const char* toCompanion, const char* fromCompanion, std::size_t bufferBytes, OnBytes onBytes);
  ~MessageReader();
  MessageReader(const MessageReader&) = delete;
  MessageReader& operator=(const MessageReader&) = delete;

 private:
  void Read();

  HANDLE toCompanion_ = nullptr;
  HANDLE fromCompanion_ = nullptr;
  std::vector<char> buffer_;
  OnBytes onBytes_;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

}  // namespace bench::floor
