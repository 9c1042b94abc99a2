#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <thread>
#include <vector>

#include "base/owned_handle.h"
#include "companion/pipe_server.h"

namespace bench::speed {

// A companion with a bare thread in the driver's place, on pipes of other names: it reads, says how much came, and
// reads again.
class BareReader {
 public:
  // Called on the reader's thread, as soon as a read has come back.
  using OnBytes = std::function<void(std::size_t bytes)>;

  // Throws std::runtime_error when it cannot be connected.
  BareReader(std::size_t bufferBytes, OnBytes onBytes);
  ~BareReader();
  BareReader(const BareReader&) = delete;
  BareReader& operator=(const BareReader&) = delete;

  void Send(std::span<const std::uint8_t> message);

 private:
  void Read();

  companion::PipeServer companion_;
  OwnedHandle toCompanion_, fromCompanion_;
  std::vector<char> buffer_;
  OnBytes onBytes_;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

}  // namespace bench::speed
