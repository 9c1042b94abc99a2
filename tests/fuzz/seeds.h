#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace ombrel::test {

using Seeds = std::map<std::string, std::vector<std::byte>>;

// The streams that the corpus begins with, by file names: each message that the protocol's page shows a companion
// sending, and the edges of what it says.
[[nodiscard]] Seeds MakeSeeds(const std::map<std::string, std::vector<std::uint8_t>>& shownByThePage);

}  // namespace ombrel::test
