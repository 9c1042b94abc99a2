#include "runtime/call_recorder.h"

namespace bench {

void CallRecorder::ThrowFrom(const std::string& call, int times) {
  const std::lock_guard lock(mutex_);
  faults_[call] = times;
}

void CallRecorder::Enter(const std::string& call, nlohmann::ordered_json arguments) {
  if (keepsNothing_) {
    return;
  }
  journal_.Append(call, std::move(arguments));
  const std::lock_guard lock(mutex_);
  const auto fault = faults_.find(call);
  if (fault != faults_.end() && fault->second > 0) {
    --fault->second;
    throw ScriptedFault(call + " failed as scripted");
  }
}

}  // namespace bench
