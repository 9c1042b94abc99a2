#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/owned_handle.h"

namespace bench {

// A program in a process of its own, killed with its owner if it still runs. Its standard input is a pipe: programs
// that live until it ends go with this process, however that ends. One thread, but for the streams.
class ChildProcess {
 public:
  enum class Output { kShared, kPipe };  // this program's own, or a pipe to be read here

  // Throws std::runtime_error when the program cannot be started.
  explicit ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments = {},
                        Output output = Output::kShared);
  // Standard output and standard error go to the file.
  ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& output);
  ~ChildProcess() { Kill(); }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] std::uint32_t Id() const { return id_; }
  [[nodiscard]] HANDLE Process() const { return process_.Get(); }
  // Its exit code once it has ended; nothing when it runs on for `timeoutMs`.
  [[nodiscard]] std::optional<std::uint32_t> WaitForEnd(std::uint32_t timeoutMs) const;
  [[nodiscard]] bool IsRunning() const { return !WaitForEnd(0); }
  // Ends it on the spot, as a crash would, and returns when it is gone.
  void Kill();

  // The write end of its standard input, and the read end of its standard output if that is a pipe.
  [[nodiscard]] HANDLE Input() const { return input_.Get(); }
  [[nodiscard]] HANDLE OutputEnd() const { return output_.Get(); }
  // Its standard input is at its end.
  void CloseInput() { input_.Reset(); }

 private:
  void Start(const std::filesystem::path& program, const std::vector<std::string>& arguments, HANDLE output,
             HANDLE error);

  OwnedHandle process_;
  OwnedHandle input_;
  OwnedHandle output_;
  std::uint32_t id_ = 0;
};

}  // namespace bench
