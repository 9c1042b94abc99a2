#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/child_process.h"
#include "test_files/scratch_folder.h"

// A program that runs beside the test, ended with its owner. What it prints goes into a file.
class Program {
 public:
  // Throws std::runtime_error when the program cannot be started.
  void Start(const std::filesystem::path& path, const std::vector<std::string>& arguments,
             const std::filesystem::path& output);
  // The exit code; nothing when the program still runs after `timeoutMs`.
  std::optional<std::uint32_t> Wait(std::uint32_t timeoutMs = 30000) { return process_->WaitForEnd(timeoutMs); }
  void CloseInput() { process_->CloseInput(); }
  std::string Output() const;

 private:
  std::optional<bench::ChildProcess> process_;
  std::filesystem::path output_;
};

// The value of a --name=value on the test's command line; fails the test when there is none.
std::string TestArgument(const std::string& name);
