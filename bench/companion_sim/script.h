#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "nlohmann/json.hpp"

namespace bench {

// A script is {"steps": [...]}: each step is an object whose "do" names it, the other keys are its arguments.
// docs: bench/companion_sim/README.md lists them.
struct Script {
  std::vector<nlohmann::json> steps;
};

// Throws std::runtime_error or a JSON exception that says what is wrong; unknown steps and arguments are found here.
Script ParseScript(const std::string& text);
Script LoadScript(const std::filesystem::path& path);

}  // namespace bench
