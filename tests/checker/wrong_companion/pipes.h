#pragma once

#include <ombrel/protocol.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "base/owned_handle.h"
#include "faults.h"

// The companion's ends of both pipes, for one connection after the other.
class Pipes {
 public:
  explicit Pipes(const Faults& faults);
  ~Pipes();
  Pipes(const Pipes&) = delete;
  Pipes& operator=(const Pipes&) = delete;

  // Waits for the driver on both pipes.
  void Accept();
  // False once the driver has gone.
  bool Send(std::span<const std::uint8_t> bytes) const;
  template <class Structure>
  bool SendStructure(std::uint32_t type, const Structure& payload) const {
    std::vector<std::uint8_t> bytes(sizeof(OmbrelMessageHeader) + sizeof(payload));
    const OmbrelMessageHeader header{sizeof(payload), type};
    std::memcpy(bytes.data(), &header, sizeof(header));
    std::memcpy(bytes.data() + sizeof(header), &payload, sizeof(payload));
    return Send(bytes);
  }
  // The announcement, once it has come.
  [[nodiscard]] std::optional<OmbrelFrameSharingInfo> Announcement() const;
  void CloseIn();
  // Ends the connection; Accept may be called again.
  void Disconnect();

 private:
  void Read();
  void EndReading();

  const Faults& faults_;
  bench::OwnedHandle in_, out_;
  std::thread reader_;
  std::atomic<bool> reading_ = false;
  mutable std::mutex mutex_;
  std::optional<OmbrelFrameSharingInfo> announcement_;
};
