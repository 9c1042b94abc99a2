#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace ombrel::test {

// Gives the driver these bytes as a companion's, twice: in as few reads as it takes, and in small pieces. Behind them,
// and once more on a new connection, come messages that are good. Everything that reaches the runtime and the link's
// listeners must be what the protocol's page makes of the bytes, the orientations must be rotations wherever the bytes
// allow one, what the driver writes must be whole messages without a stray byte, and nothing may be waited for in vain.
// Says what is wrong; empty when nothing is.
[[nodiscard]] std::string CheckStream(std::span<const std::byte> bytes);

}  // namespace ombrel::test
