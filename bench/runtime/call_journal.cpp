#include "runtime/call_journal.h"

#include <algorithm>
#include <stdexcept>

#include "base/clock.h"
#include "runtime/matching.h"
#include "runtime/thread_id.h"

namespace bench {
namespace {

// Replaces bytes that are no UTF-8: a driver may log anything, and a record must not be lost for it.
std::string JsonLine(const JournalEntry& entry) {
  const nlohmann::ordered_json line = {{"sequence", entry.sequence},
                                       {"ticks", entry.ticks},
                                       {"thread", entry.threadId},
                                       {"call", entry.call},
                                       {"arguments", entry.arguments}};
  return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace

void CallJournal::Append(std::string call, nlohmann::ordered_json arguments) {
  {
    const std::lock_guard lock(mutex_);
    const auto counter = std::ranges::find(counts_, call, &std::pair<std::string, std::size_t>::first);
    if (counter == counts_.end()) {
      counts_.emplace_back(call, 1);
    } else {
      ++counter->second;
    }
    entries_.push_back({nextSequence_++, NowTicks(), runtime::ThreadId(), std::move(call), std::move(arguments)});
    if (recording_.is_open()) {
      recording_ << JsonLine(entries_.back()) << '\n';
    }
    while (entries_.size() > memoryLimit_) {
      entries_.pop_front();
    }
  }
  appended_.notify_all();
}

std::vector<JournalEntry> CallJournal::Entries() const {
  const std::lock_guard lock(mutex_);
  return {entries_.begin(), entries_.end()};
}

std::vector<JournalEntry> CallJournal::EntriesOf(std::string_view call) const {
  const std::lock_guard lock(mutex_);
  return runtime::Matching(entries_, [call](const JournalEntry& entry) { return entry.call == call; });
}

std::vector<std::string> CallJournal::Calls(std::string_view prefix) const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> names;
  for (const JournalEntry& entry : entries_) {
    if (entry.call.starts_with(prefix)) names.push_back(entry.call);
  }
  return names;
}

std::size_t CallJournal::Count(std::string_view call) const {
  const std::lock_guard lock(mutex_);
  const auto counter = std::ranges::find(counts_, call, &std::pair<std::string, std::size_t>::first);
  return counter == counts_.end() ? 0 : counter->second;
}

void CallJournal::Clear() {
  const std::lock_guard lock(mutex_);
  entries_.clear();
  counts_.clear();
}

void CallJournal::LimitMemory(std::size_t entries) {
  const std::lock_guard lock(mutex_);
  memoryLimit_ = entries;
  while (entries_.size() > memoryLimit_) {
    entries_.pop_front();
  }
}

void CallJournal::RecordTo(const std::filesystem::path& file) {
  const std::lock_guard lock(mutex_);
  recording_.open(file, std::ios::binary | std::ios::trunc);
  if (!recording_) {
    throw std::runtime_error("cannot write the call record " + file.string());
  }
}

std::uint64_t CallJournal::NextSequence() const {
  const std::lock_guard lock(mutex_);
  return nextSequence_;
}

bool CallJournal::WaitForNewerThan(std::uint64_t sequence, std::chrono::steady_clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  return appended_.wait_until(lock, deadline, [&] { return nextSequence_ != sequence; });
}

}  // namespace bench
