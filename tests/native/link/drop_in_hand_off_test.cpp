// The companion goes while one frame is being copied and another waits for its turn.
#include <atomic>

#include "core_fixture.h"

namespace ombrel::test {
namespace {

class DropInHandOffTest : public OmbrelCoreTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(Stream() && Receive());
    renderer_->onCall = [this](const std::string& line) {
      if (line.starts_with("CopyToOutput 5")) copying_.load()->Pass();
      if (line.starts_with("CopyToOutput 6")) NoteSecondCopy();
    };
  }
  // The first frame holds the lock when the companion goes: whoever closes the gate waits for the lock, and behind him
  // the second frame, which the gate has let in. True when the second was left out.
  bool DropIn() {
    Barrier copying;
    copying_ = &copying;
    secondCopied_ = false;
    Background first([this] { core_->Frames().HandOffTexture(5); });
    EXPECT_TRUE(copying.WaitForVisitor());
    companion_.Disconnect();
    EXPECT_TRUE(WaitUntil([this] { return !core_->Client().IsConnected(); }));
    EXPECT_TRUE(first.StaysBlocked());
    Background second([this] { core_->Frames().HandOffTexture(6); });
    EXPECT_TRUE(second.StaysBlocked()) << "behind the gate, which cannot be closed yet";
    copying.Open();
    EXPECT_TRUE(first.Finishes() && second.Finishes());
    return !secondCopied_;
  }

  std::atomic<bool> copiedWhileClosed_{false};

 private:
  void NoteSecondCopy() {
    secondCopied_ = true;
    // Layers that nobody takes: the gate is closed.
    std::vector<LayerRecord> probe{{1, 1, &bounds_}};
    core_->Frames().HandOffLayers(0, probe, pose_);
    if (!probe.empty()) copiedWhileClosed_ = true;
  }

  std::atomic<Barrier*> copying_{nullptr};
  std::atomic<bool> secondCopied_{false};
};

TEST_F(DropInHandOffTest, AFrameThatMeetsTheClosedGateBehindTheLockIsNotCopied) {
  int leftOut = 0;
  // The second frame may also have its turn before the gate is closed, which is no fault.
  for (int attempt = 0; attempt < 20 && leftOut < 3; ++attempt) {
    if (DropIn()) ++leftOut;
    ASSERT_FALSE(copiedWhileClosed_);
    ASSERT_TRUE(companion_.Connect() && WaitForStreaming() && Receive());
  }
  EXPECT_EQ(leftOut, 3);
}

}  // namespace
}  // namespace ombrel::test
