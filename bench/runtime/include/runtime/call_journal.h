#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace bench {

// One call, in the order in which the calls reached the stand-in.
struct JournalEntry {
  std::uint64_t sequence = 0;  // 0 for the first call, never reused
  std::int64_t ticks = 0;      // performance counter on arrival
  std::uint32_t threadId = 0;  // the calling thread
  std::string call;            // "Interface.Method"
  nlohmann::ordered_json arguments;
};

// The one ordered list of everything that crosses the boundary: the driver's calls into the
// runtime ("IVRSettings.GetBool") and the runtime's calls that matter for order ("driver.Init").
// Every method may be called from any thread.
class CallJournal {
 public:
  void Append(std::string call, nlohmann::ordered_json arguments);

  // A copy of the entries kept in memory, oldest first; with a name, only that call's.
  [[nodiscard]] std::vector<JournalEntry> Entries() const;
  [[nodiscard]] std::vector<JournalEntry> EntriesOf(std::string_view call) const;
  // Names only; with a prefix ("IVRProperties."), only those that begin with it.
  [[nodiscard]] std::vector<std::string> Calls(std::string_view prefix = {}) const;
  // How often the call came since the journal was made or cleared, kept in memory or not.
  [[nodiscard]] std::size_t Count(std::string_view call) const;
  void Clear();

  // Keeps only the newest entries in memory; long sessions would grow without a bound otherwise.
  void LimitMemory(std::size_t entries);
  // Writes every later entry as one JSON object a line. Throws std::runtime_error if the file
  // cannot be made.
  void RecordTo(const std::filesystem::path& file);

  // Waits until `condition` holds; it is checked again after every call that arrives. It runs
  // without the journal's lock, so it may use the journal and every other part of the stand-in.
  template <typename Condition>
  [[nodiscard]] bool WaitUntil(Condition condition, std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
      const std::uint64_t seen = NextSequence();
      if (condition()) {
        return true;
      }
      if (!WaitForNewerThan(seen, deadline)) {
        return condition();
      }
    }
  }

 private:
  [[nodiscard]] std::uint64_t NextSequence() const;
  bool WaitForNewerThan(std::uint64_t sequence, std::chrono::steady_clock::time_point deadline);

  mutable std::mutex mutex_;
  std::condition_variable appended_;
  std::deque<JournalEntry> entries_;
  std::vector<std::pair<std::string, std::size_t>> counts_;
  std::uint64_t nextSequence_ = 0;
  std::size_t memoryLimit_ = SIZE_MAX;
  std::ofstream recording_;
};

}  // namespace bench
