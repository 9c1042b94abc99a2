#pragma once

#include <memory>
#include <string>
#include <vector>

namespace ombrel::test {

// Lets a loaded driver see a list of processes that a test has written, in the place of the system's. One at a time.
class ProcessListScript {
 public:
  ProcessListScript(void* module, std::vector<std::string> names);
  ~ProcessListScript();
  ProcessListScript(const ProcessListScript&) = delete;
  ProcessListScript& operator=(const ProcessListScript&) = delete;

  // The walk answers `value` instead of 1 for the entry of that position.
  void AnswerAt(std::size_t position, int value);
  // No snapshot can be taken.
  void FailSnapshots();
  // The entry sizes that the driver set, one for each walk.
  [[nodiscard]] std::vector<unsigned> EntrySizes() const;

 private:
  class Hooks;
  std::unique_ptr<Hooks> hooks_;
};

}  // namespace ombrel::test
