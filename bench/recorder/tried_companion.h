#pragma once

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "base/child_process.h"

namespace bench {

// The companion that is tried, started in its own folder. What it prints goes to a file and, as it comes, to standard
// error.
class TriedCompanion {
 public:
  // `command` is the program and its arguments. Throws std::runtime_error when it cannot be started.
  TriedCompanion(const std::vector<std::string>& command, const std::filesystem::path& log);
  // Companions wait for the next driver, and are killed; one that ends with the connection is given the time.
  ~TriedCompanion();
  TriedCompanion(const TriedCompanion&) = delete;
  TriedCompanion& operator=(const TriedCompanion&) = delete;

 private:
  ChildProcess process_;
  std::jthread showing_;
};

// Why this program cannot be tried now; empty when it can.
[[nodiscard]] std::string WhyNotToTry(const std::filesystem::path& companion);

}  // namespace bench
