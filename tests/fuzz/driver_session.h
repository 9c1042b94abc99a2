#pragma once

#include <openvr_driver.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hmd/hmd_driver.h"
#include "link/listeners.h"
#include "runtime/fake_runtime.h"
#include "server_driver_ombrel.h"

namespace ombrel::test {

// The whole driver, from the pipes' bytes to the runtime's calls, in the world of one thread. Frames and server ticks
// come between the reads. Keeps a line for everything that a companion's bytes bring about.
class DriverSession final : public ITrackingUpdatedListener,
                            public IFramerateUpdatedListener,
                            public IControllerUpdatedListener {
 public:
  DriverSession();

  // Takes the connections, each in pieces of the sizes that `nextPiece` gives, and cleans up.
  void Run(std::vector<std::vector<std::byte>> connections, std::function<std::size_t()> nextPiece);

  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }
  // For each "tracking" line: what was published, and what the runtime was given.
  [[nodiscard]] const std::vector<LinkPoseRecord>& Records() const { return records_; }
  [[nodiscard]] const std::vector<vr::DriverPose_t>& HeadPoses() const { return headPoses_; }
  // What went wrong on the way; empty when nothing did.
  [[nodiscard]] const std::string& Problem() const { return problem_; }

  void OnTrackingUpdated() override;
  void OnFramerateUpdated(std::uint32_t framesPerSecond) override;
  void OnControllerUpdated(const ControllerUpdate* record) override;

 private:
  void OnDeviceAdded(vr::ETrackedDeviceClass deviceClass, vr::ITrackedDeviceServerDriver* device);
  void OnPose(const bench::PoseRecord& record);
  void OnInput(const bench::InputUpdate& update);
  bool NextEvent(vr::VREvent_t* event);
  void BeforeRead();
  void PresentFrame();
  void Complain(const std::string& problem);

  bench::FakeRuntime runtime_;
  std::unique_ptr<CServerDriver_Ombrel> provider_;
  HMDDriver* headset_ = nullptr;
  std::uint32_t devices_ = 0;
  std::uint32_t vibrating_ = 0;  // the device that the next tick makes vibrate, or 0
  std::vector<std::string> lines_;
  std::vector<LinkPoseRecord> records_;
  std::vector<vr::DriverPose_t> headPoses_;
  vr::DriverPose_t lastHeadPose_{};
  std::string problem_;
};

}  // namespace ombrel::test
