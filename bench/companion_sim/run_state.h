#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "companion/messages.h"
#include "picture_request.h"

namespace bench {

// Thrown on a script's thread when the run ends before the script does.
struct RunEnded : std::runtime_error {
  RunEnded() : std::runtime_error("the run ended") {}
};

// What the threads of a run tell each other. All methods may be called on any thread.
class RunState {
 public:
  // Ends every wait below with RunEnded.
  void End();
  bool Ended() const { return ended_; }

  // Sleeps; throws RunEnded when the run ends meanwhile.
  void SleepUntil(std::chrono::steady_clock::time_point until);
  void Sleep(double seconds);

  void SetFrames(std::uint64_t frames) { frames_ = frames; }
  std::uint64_t Frames() const { return frames_; }

  void AddHaptic(const companion::HapticPulse& pulse);
  // Takes one pulse of that kind out of those received; false when there is none.
  bool TakeHaptic(std::uint32_t controllerId, std::uint16_t durationMicroseconds);
  std::uint64_t HapticsReceived() const { return hapticsReceived_; }

  PictureRequest& PictureWanted() { return pictureWanted_; }

  // A requirement of the run that was not met.
  void Fail(std::string reason);
  std::vector<std::string> Failures() const;

 private:
  mutable std::mutex mutex_;
  std::condition_variable ending_;
  std::atomic<bool> ended_ = false;
  std::atomic<std::uint64_t> frames_ = 0;
  std::atomic<std::uint64_t> hapticsReceived_ = 0;
  std::vector<companion::HapticPulse> haptics_;
  PictureRequest pictureWanted_;
  std::vector<std::string> failures_;
};

}  // namespace bench
