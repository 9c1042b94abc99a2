#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "support/server_pipe.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {

// A folder for the pipes' sockets, named to the driver by its environment. Made before any thread of the driver runs.
class PipeFolder {
 public:
  PipeFolder();

  [[nodiscard]] std::string PathOf(const std::string& pipe) const { return folder_.TextOf(pipe); }

 private:
  ScratchFolder folder_;
};

// The companion program's side of the link.
class FakeCompanion {
 public:
  struct Message {
    std::uint32_t type = 0;
    std::vector<std::byte> payload;
  };

  FakeCompanion()
      : in(folder_.PathOf("PellmorOmbrelTransmissionPipeV1In")),
        out(folder_.PathOf("PellmorOmbrelTransmissionPipeV1Out")) {}

  void Offer();
  [[nodiscard]] bool Accept();
  // Offers both pipes and waits for the driver in both.
  [[nodiscard]] bool Connect();
  void Disconnect();

  [[nodiscard]] bool Send(std::uint32_t type, std::span<const std::byte> payload = {}) const;
  // A TrackingUpdate of format 4 (quaternion and position).
  [[nodiscard]] bool SendPose(float x, float y, float z, float w) const;
  [[nodiscard]] std::optional<Message> Receive() const;

 private:
  PipeFolder folder_;

 public:
  ServerPipe in;   // the driver writes
  ServerPipe out;  // the driver reads
};

}  // namespace ombrel::test
