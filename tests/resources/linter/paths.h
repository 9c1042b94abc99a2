#pragma once

#include <filesystem>

namespace ombrel::test {

// What the build tells the tests through the environment. Both throw std::runtime_error when it did not.

// The driver's folder as it is shipped.
[[nodiscard]] std::filesystem::path DriverFolder();
// The root of the tree.
[[nodiscard]] std::filesystem::path SourceRoot();

}  // namespace ombrel::test
