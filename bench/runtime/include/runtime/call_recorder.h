#pragma once

#include <map>
#include <mutex>
#include <stdexcept>
#include <string>

#include "runtime/call_journal.h"

namespace bench {

// What a scripted fault throws into the driver.
class ScriptedFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What every part of the stand-in does first on each call: write it down, then fail if a fault
// was scripted for it. Callable from any thread.
class CallRecorder {
 public:
  [[nodiscard]] CallJournal& Journal() { return journal_; }

  // Throws ScriptedFault from the next `times` calls of that name ("IVRSettings.GetBool").
  // The call is in the journal all the same.
  void ThrowFrom(const std::string& call, int times = 1);

  // From here on there is no journal and there are no faults: see FakeRuntime::KeepNothing.
  void KeepNothing() { keepsNothing_ = true; }
  [[nodiscard]] bool KeepsNothing() const { return keepsNothing_; }

  // Called by the stand-in's interfaces at the top of each method, without their own locks.
  void Enter(const std::string& call, nlohmann::ordered_json arguments = nlohmann::ordered_json::object());

 private:
  CallJournal journal_;
  std::mutex mutex_;
  std::map<std::string, int> faults_;
  bool keepsNothing_ = false;  // set before the driver's threads run
};

}  // namespace bench
