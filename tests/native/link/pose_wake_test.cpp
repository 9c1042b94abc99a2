// No lost wake-up: a pose that comes between a frame's check and its wait.
#include <atomic>

#include "core_fixture.h"

namespace ombrel::test {
namespace {

constexpr int kFrames = 10'000;
constexpr int kMoments = 500;  // different ones between the frame's last step and its wait

class PoseWakeTest : public OmbrelCoreTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Stream() && Receive());
    // The fixture's frame is answered; from here on each frame needs one pose.
    core_->OnTrackingUpdated();
    renderer_->onCall = [this](const std::string& line) {
      if (line.starts_with("AcquireOutput")) ++aboutToWait_;
    };
  }
  void HandOffAll() {
    for (int frame = 0; frame < kFrames && !isOver_; ++frame) {
      core_->Frames().HandOffTexture(5);
      ++done_;
      renderer_->journal.Clear();
    }
  }
  // Without giving the processor away at first, so that the moment is met.
  [[nodiscard]] static bool Reaches(const std::atomic<int>& count, int value) {
    for (int i = 0; i < 20'000; ++i) {
      if (count >= value) return true;
    }
    return WaitUntil([&] { return count >= value; });
  }
  // True when the frame goes on.
  [[nodiscard]] bool AnswerFrame(int frame) {
    if (!Reaches(aboutToWait_, frame + 1)) return false;
    for (std::atomic<int> pause{frame % kMoments}; pause > 0; --pause) {
    }
    core_->OnTrackingUpdated();
    return Reaches(done_, frame + 1);
  }

  std::atomic<int> aboutToWait_{0}, done_{0};
  std::atomic<bool> isOver_{false};
};

TEST_F(PoseWakeTest, IsNeverMissed) {
  Background frames([this] { HandOffAll(); });
  int answered = 0;
  while (answered < kFrames && AnswerFrame(answered)) ++answered;
  isOver_ = true;
  if (answered < kFrames) core_->StopLink();
  EXPECT_EQ(answered, kFrames) << "a frame waits for a pose that has come";
  EXPECT_TRUE(frames.Finishes());
}

}  // namespace
}  // namespace ombrel::test
