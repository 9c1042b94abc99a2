#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/owned_handle.h"
#include "companion/message_assembler.h"

// The driver's end of the pipes with plain file calls, opened and written in the way the protocol page tells.
class PlainClient {
 public:
  // Retries each pipe until it is there or the time is over. False when one did not come.
  bool Open(const std::string& inName, const std::string& outName, std::uint32_t timeoutMs = 5000);
  void Close();

  // Length, type and payload in three writes.
  bool WriteMessage(std::span<const std::uint8_t> message);
  bool WriteBytes(std::span<const std::uint8_t> bytes);
  // The next whole message; nothing when the other side is gone.
  std::optional<companion::Message> Read();
  // Whether anything waits to be read.
  bool HasMore() const;
  // Exactly so many bytes, or fewer when the other side is gone.
  std::vector<std::uint8_t> ReadBytes(std::size_t count);

 private:
  static bench::OwnedHandle OpenWhenThere(const std::string& name, DWORD access, std::uint32_t timeoutMs);

  bench::OwnedHandle in_;
  bench::OwnedHandle out_;
};

// Pipe names that no other test and no driver uses.
struct PipeNames {
  explicit PipeNames(const std::string& test);
  std::string in;
  std::string out;
};
