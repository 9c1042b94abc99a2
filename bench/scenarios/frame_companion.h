#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "companion/frame_reader.h"
#include "companion/pipe_server.h"
#include "driver_life.h"

namespace bench::scenarios {

// The stand-in's own devices, made when they are first asked for and kept: the runtime's and the companion's.
[[nodiscard]] Microsoft::WRL::ComPtr<ID3D11Device> RuntimeDevice();
[[nodiscard]] Microsoft::WRL::ComPtr<ID3D11Device> CompanionDevice();

inline constexpr std::uint32_t kPatienceMs = 15'000;

// A companion in this process that takes frames. One thread.
class FrameCompanion {
 public:
  FrameCompanion() : frames_(CompanionDevice()) {}

  // Offers the pipes, once their names are free, and waits for the driver. False when either takes too long.
  [[nodiscard]] bool Connect();
  void Close();

  // Takes an announcement that has come, or comes within the time, and opens its textures.
  [[nodiscard]] bool TakeAnnouncement(std::uint32_t timeoutMs);
  // The next frame's pose slot.
  [[nodiscard]] std::optional<companion::PoseSlot> TakeFrame(std::uint32_t timeoutMs);

  [[nodiscard]] companion::PipeServer& Pipes() { return pipes_; }
  [[nodiscard]] companion::FrameReader& Frames() { return frames_; }
  [[nodiscard]] const companion::FrameSharingInfo& Announced() const { return announced_; }

 private:
  companion::PipeServer pipes_;
  companion::FrameReader frames_;
  companion::FrameSharingInfo announced_;
};

// Calls `play`, which plays a frame and returns its number, until the companion has taken `count` frames, the first one
// after an announcement if its textures are not open yet. What went wrong; empty if nothing did.
[[nodiscard]] std::string TakeFrames(FrameCompanion& companion, int count, const std::function<float()>& play);

// Plays frames in the way of the life's mode until the companion has taken `count` of them, as TakeFrames does. Layers
// have to come with the pose that they were submitted with.
[[nodiscard]] std::string PlayFrames(DriverLife& life, FrameCompanion& companion, int count);

// Sends poses all the time, from a thread of its own.
class PoseStream {
 public:
  explicit PoseStream(companion::PipeServer& pipes);
  ~PoseStream();
  PoseStream(const PoseStream&) = delete;
  PoseStream& operator=(const PoseStream&) = delete;

 private:
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

// Sends a pose; whether the headset then shows it.
[[nodiscard]] bool PoseArrives(DriverLife& life, companion::PipeServer& pipes, float x);

// Plays that many frames; a fault fails the scenario.
bool CheckFrames(ScenarioRun& run, DriverLife& life, FrameCompanion& companion, int count);
// A fresh companion connects and gets frames and poses through. Notes how long that took.
void CheckNewCompanion(ScenarioRun& run, DriverLife& life);
// The same with a companion whose owner goes on with it; false when something failed.
bool CheckConnection(ScenarioRun& run, DriverLife& life, FrameCompanion& companion, int frames = 3);

}  // namespace bench::scenarios
