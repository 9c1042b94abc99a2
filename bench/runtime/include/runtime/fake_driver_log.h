#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"

namespace bench {

// IVRDriverLog_001: keeps every text exactly as the driver passed it, one element a call.
// Callable from any thread.
class FakeDriverLog : public vr::IVRDriverLog {
 public:
  explicit FakeDriverLog(CallRecorder& recorder) : recorder_(recorder) {}

  [[nodiscard]] std::vector<std::string> Lines() const;
  // Those since the last call of this.
  std::vector<std::string> TakeNew();
  [[nodiscard]] bool Contains(const std::string& line) const;
  // Repeats each later text on standard output as well, after `prefix`.
  void EchoToStandardOutput(const std::string& prefix);

  void Log(const char* pchLogMessage) override;

 private:
  CallRecorder& recorder_;
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
  std::size_t taken_ = 0;
  bool echo_ = false;
  std::string echoPrefix_;
};

}  // namespace bench
