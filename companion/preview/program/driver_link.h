#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <thread>

#include "companion/head_model.h"
#include "companion/pipe_server.h"
#include "companion/pose_history.h"
#include "preview/hub.h"

namespace preview {

// The pose that a frame shows.
struct ShownPose {
  std::uint32_t number = 0;  // the page's
  float ageMs = 0;           // from its writing to the frame
};

// Passes on to the driver what the pages want, on a thread of its own, which alone waits for the driver to read. Of what
// came meanwhile the newest counts. While no page says anything, the last pose is repeated: the virtual display hands over
// a frame for each.
class DriverLink final : public Listener {
 public:
  DriverLink();
  ~DriverLink() override;

  // Makes the pipes. False when another program has them.
  [[nodiscard]] bool Open();
  companion::PipeServer& Pipes() { return pipes_; }

  // The server's thread.
  void OnHead(const HeadMessage& head) override;
  void OnRate(std::uint32_t framesPerSecond) override;
  void OnRecenter() override;
  void OnController(const ControllerMessage& controller) override;
  void OnControllersGone() override;

  // Of a frame that came `when`, by the pose beside it. Nothing when there is none, or it is none of ours. Any thread.
  [[nodiscard]] std::optional<ShownPose> PoseOf(const companion::PoseSlot& slot,
                                                std::chrono::steady_clock::time_point when) const;

 private:
  struct Wishes {
    HeadMessage head;
    std::optional<std::uint32_t> rate;
    bool recenter = false;
    std::array<std::optional<ControllerMessage>, kControllers> controllers;
    bool controllersGone = false;
  };
  static constexpr std::size_t kNumbersKept = 4096;

  // Changes the wishes and wakes the thread.
  template <typename Change>
  void Wish(Change change);
  void Run();
  void Send(const Wishes& wishes, bool newConnection);
  void SendHead(const HeadMessage& head);
  void Recenter(const HeadMessage& head);
  void SendControllers(const Wishes& wishes);
  void SendMessage(const companion::Bytes& message, std::uint32_t poseNumber = 0);

  companion::PipeServer pipes_;

  std::mutex wishesMutex_;
  std::condition_variable changed_;
  Wishes wishes_;
  bool stop_ = false;
  bool wished_ = false;

  // The sending thread's own.
  HeadMessage straightAhead_;  // what the last recentering made so
  std::uint64_t posesSent_ = 0;

  mutable std::mutex historyMutex_;
  companion::HeadModel model_;
  companion::PoseHistory history_;
  std::array<std::uint32_t, kNumbersKept> pageNumbers_ = {};  // by the history's numbers

  std::thread thread_;
};

}  // namespace preview
