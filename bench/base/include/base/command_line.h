#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace bench {

// A command line that Windows' C runtime takes apart into the same arguments again, whatever is in them.
[[nodiscard]] std::wstring CommandLine(const std::filesystem::path& program, const std::vector<std::string>& arguments);

}  // namespace bench
