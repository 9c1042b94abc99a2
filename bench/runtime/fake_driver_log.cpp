#include "runtime/fake_driver_log.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace bench {

std::vector<std::string> FakeDriverLog::Lines() const {
  const std::lock_guard lock(mutex_);
  return lines_;
}

std::vector<std::string> FakeDriverLog::TakeNew() {
  const std::lock_guard lock(mutex_);
  const auto first = lines_.begin() + static_cast<std::ptrdiff_t>(std::exchange(taken_, lines_.size()));
  return {first, lines_.end()};
}

bool FakeDriverLog::Contains(const std::string& line) const {
  const std::lock_guard lock(mutex_);
  return std::ranges::find(lines_, line) != lines_.end();
}

void FakeDriverLog::EchoToStandardOutput(const std::string& prefix) {
  const std::lock_guard lock(mutex_);
  echo_ = true;
  echoPrefix_ = prefix;
}

void FakeDriverLog::Log(const char* pchLogMessage) {
  const std::string text = pchLogMessage != nullptr ? pchLogMessage : "";
  if (recorder_.KeepsNothing()) {
    return;
  }
  {
    // Kept before the journal announces it: who waits on the journal finds the line here.
    const std::lock_guard lock(mutex_);
    lines_.push_back(text);
    if (echo_) {
      std::fputs((echoPrefix_ + text).c_str(), stdout);
      std::fflush(stdout);
    }
  }
  recorder_.Enter("IVRDriverLog.Log", {{"text", text}});
}

}  // namespace bench
