#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "base/owned_handle.h"

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

  [[nodiscard]] std::uint32_t Id() const { return id_; }
  [[nodiscard]] bool IsRunning() const;
  // Its exit code once it has ended; nothing when it runs on for `timeoutMs`.
  [[nodiscard]] std::optional<std::uint32_t> WaitForEnd(std::uint32_t timeoutMs) const;
  // Ends it and returns when the system lists it no longer.
  void End();

 private:
  void Start(const std::filesystem::path& program);

  std::filesystem::path folder_;
  bench::OwnedHandle process_;
  bench::OwnedHandle standardInput_;  // the program ends when this closes
  std::uint32_t id_ = 0;
};

}  // namespace ombrel::test
