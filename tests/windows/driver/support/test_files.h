#pragma once

#include <filesystem>

namespace ombrel::test {

// What the build tells the tests through the environment. Both throw std::runtime_error when it did not.

// The driver library as it is shipped.
[[nodiscard]] std::filesystem::path DriverLibrary();
// A program that does nothing, to be copied under the names of processes that are looked for.
[[nodiscard]] std::filesystem::path IdleProgram();

// A new empty folder; the owner removes it.
[[nodiscard]] std::filesystem::path MakeTemporaryFolder();

}  // namespace ombrel::test
