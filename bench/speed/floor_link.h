#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>

#include "companion/pipe_server.h"
#include "floor/message_reader.h"

namespace bench::speed {

// A companion with the bare reader at the other end, on pipes like the driver's under other names.
class FloorLink {
 public:
  FloorLink(std::size_t bufferBytes, floor::MessageReader::OnBytes onBytes)
      : reader_(Opened(companion_), kFrom, bufferBytes, std::move(onBytes)) {
    constexpr std::uint32_t kPatienceMs = 20'000;
    if (!companion_.WaitForConnection(kPatienceMs)) throw std::runtime_error("the bare reader is not connected");
  }
  void Send(std::span<const std::uint8_t> message) {
    if (!companion_.Send(message)) throw std::runtime_error("sending to the bare reader failed");
  }

 private:
  static constexpr const char* kTo = R"(\\.\pipe\OmbrelBenchFloorIn)";
  static constexpr const char* kFrom = R"(\\.\pipe\OmbrelBenchFloorOut)";

  static const char* Opened(PipeServer& companion) {
    if (!companion.Open()) throw std::runtime_error("cannot make the bare reader's pipes");
    return kTo;
  }

  PipeServer companion_{{.fromDriverName = kTo, .toDriverName = kFrom}};
  floor::MessageReader reader_;
};

}  // namespace bench::speed
