#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace ombrel::test {

class StreamModel;

// Holds what the driver wrote on one connection against the protocol's page: whole messages of its two kinds, at most
// one announcement, haptic pulses for controllers that the companion has, and zeros wherever nothing is said. Says what
// is wrong; empty when nothing is.
[[nodiscard]] std::string CheckWritten(std::span<const std::byte> bytes, const StreamModel& model);

}  // namespace ombrel::test
