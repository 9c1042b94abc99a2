#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/child_process.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {

// A process of its own that does nothing under a given name, from a folder of its own: file names are looked up without
// regard to case, so two names that differ only in case must not share one. Ended with its owner.
class NamedProcess {
 public:
  // Returns when the system lists the process under that name. Throws std::runtime_error if it cannot be started.
  explicit NamedProcess(const std::string& executableName);
  ~NamedProcess();
  NamedProcess(const NamedProcess&) = delete;
  NamedProcess& operator=(const NamedProcess&) = delete;

  [[nodiscard]] bool IsRunning() const { return process_->IsRunning(); }
  // Its exit code once it has ended; nothing when it runs on for `timeoutMs`.
  [[nodiscard]] std::optional<std::uint32_t> WaitForEnd(std::uint32_t timeoutMs) const {
    return process_->WaitForEnd(timeoutMs);
  }

 private:
  ScratchFolder folder_;
  std::unique_ptr<bench::ChildProcess> process_;
};

}  // namespace ombrel::test
