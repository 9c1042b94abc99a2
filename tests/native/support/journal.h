#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace ombrel::test {

// What happened, one line each, in order. Any thread may add, read and wait; waits end after kPatience.
class Journal {
 public:
  using Lines = std::vector<std::string>;

  void Add(std::string line);
  [[nodiscard]] Lines All() const;
  [[nodiscard]] Lines From(std::size_t first) const;
  [[nodiscard]] std::size_t Size() const;
  [[nodiscard]] std::size_t Count(const std::string& line) const;
  void Clear();

  [[nodiscard]] bool WaitForSize(std::size_t size) const;
  [[nodiscard]] bool WaitForLine(const std::string& line, std::size_t times = 1) const;

 private:
  [[nodiscard]] bool WaitFor(const std::function<bool()>& ready) const;
  [[nodiscard]] std::size_t CountLocked(const std::string& line) const;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  Lines lines_;
};

}  // namespace ombrel::test
