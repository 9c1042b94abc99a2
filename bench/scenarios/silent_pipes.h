#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>

#include "base/owned_handle.h"

namespace bench::scenarios {

// The companion's ends of the pipes for one connection, which do nothing by themselves: nobody reads unless Read is
// called. One thread.
class SilentPipes {
 public:
  enum class Which { kBoth, kOnlyFromDriver, kOnlyToDriver };

  // `bufferBytes` 0: unbuffered pipes, on which a write blocks until it is read. Throws std::runtime_error when a pipe
  // cannot be made.
  explicit SilentPipes(Which which = Which::kBoth, std::uint32_t bufferBytes = 65536, bool messageType = false);

  // Waits until the driver has opened the pipe (the pipes that are there).
  [[nodiscard]] bool WaitForDriver(std::uint32_t timeoutMs);
  [[nodiscard]] bool WaitForFirstPipe(std::uint32_t timeoutMs);  // the one from the driver
  // Throws the driver out of that pipe, which may then be waited for again.
  void DisconnectFirstPipe();
  // False when the driver did not take it in time.
  [[nodiscard]] bool Write(std::span<const std::uint8_t> bytes, std::uint32_t timeoutMs = 2000);
  // Bytes read within the time; 0 if none came.
  [[nodiscard]] std::size_t Read(std::span<std::uint8_t> buffer, std::uint32_t timeoutMs);

 private:
  struct End {
    OwnedHandle pipe;
    bool isConnected = false;
  };
  [[nodiscard]] static bool WaitForClient(End& end, std::uint32_t timeoutMs);

  End fromDriver_;
  End toDriver_;
};

}  // namespace bench::scenarios
