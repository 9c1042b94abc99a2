// The graphics device is lost: the connection ends, and the next one comes when there is a device again.
#include <chrono>

#include "core_fixture.h"

namespace ombrel::test {
namespace {

class DeviceLossTest : public OmbrelCoreTest {
 protected:
  // Frame after frame, until the link has gone down.
  [[nodiscard]] bool PresentUntilDown() {
    return WaitUntil([this] {
      HandOff(77);
      return listener_.journal.Count("down") == 1;
    });
  }
};

TEST_F(DeviceLossTest, EndsTheConnectionAndTheNextOneHasANewDevice) {
  ASSERT_TRUE(Stream() && Receive());
  companion_.Offer();
  renderer_->deviceLost = true;
  EXPECT_TRUE(PresentUntilDown());
  ASSERT_TRUE(companion_.Accept() && listener_.journal.WaitForLine("up", 2));
  EXPECT_EQ(Calls(), (Lines{"RemakeDevice", "CreateOutputTextures", "AcquireOutput 0 16", "ClearOutput 0"}));
  EXPECT_TRUE(WaitForStreaming());
  EXPECT_TRUE(Receive()) << "the new textures are announced";
}

TEST_F(DeviceLossTest, EndsTheConnectionOfAVirtualDisplay) {
  ASSERT_TRUE(Stream() && Receive());
  renderer_->deviceLost = true;
  core_->Frames().HandOffTexture(5);
  EXPECT_TRUE(listener_.journal.WaitForLine("down"));
  EXPECT_EQ(renderer_->journal.Count("CopyToOutput 5 1 16"), 0U);
}

TEST_F(DeviceLossTest, LayersWaitForTheNextConnection) {
  ASSERT_TRUE(Stream() && Receive());
  renderer_->deviceLost = true;
  layers_ = {{1, 2, &bounds_}};
  HandOff(77);
  EXPECT_EQ(layers_.size(), 1U);
  ASSERT_TRUE(listener_.journal.WaitForLine("down"));
  ASSERT_TRUE(companion_.Connect() && WaitUntil([this] {
                HandOff();
                return layers_.empty();
              }));
  EXPECT_EQ(renderer_->journal.Count("ComposeLayer 0 1 2"), 1U);
}

TEST_F(DeviceLossTest, NoConnectionComesBeforeTheDeviceIsMadeWhichIsTriedOnceASecond) {
  ASSERT_TRUE(Stream() && Receive());
  renderer_->canRemakeDevice = false;
  companion_.Offer();
  const auto begin = std::chrono::steady_clock::now();
  renderer_->deviceLost = true;
  EXPECT_TRUE(PresentUntilDown());
  ASSERT_TRUE(WaitForCall("RemakeDevice", 3));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1990));
  EXPECT_EQ(listener_.journal.Count("up"), 1U);
  renderer_->canRemakeDevice = true;
  EXPECT_TRUE(companion_.Accept() && WaitForStreaming());
}

TEST_F(DeviceLossTest, WithoutACompanionTheDeviceIsMadeAnewBeforeOneComes) {
  PrepareOutput();
  SetUpCore();
  renderer_->deviceLost = true;
  EXPECT_TRUE(WaitForCall("RemakeDevice"));
  EXPECT_TRUE(ConnectWhole() && WaitForStreaming());
}

TEST_F(DeviceLossTest, IsSeenWhenAConnectionGetsNoOutputs) {
  PrepareOutput();
  renderer_->onCall = [this](const std::string& line) {
    if (line == "CreateOutputTextures") renderer_->deviceLost = !renderer_->canCreateOutputs;
    if (line == "RemakeDevice") renderer_->canCreateOutputs = true;
  };
  renderer_->canCreateOutputs = false;
  SetUpCore();
  ASSERT_TRUE(companion_.Connect());
  EXPECT_TRUE(listener_.journal.WaitForLine("down"));
  EXPECT_TRUE(companion_.Connect() && WaitForStreaming());
}

TEST_F(DeviceLossTest, IsSeenWhenAnActivationGetsNoOutputs) {
  SetUpCore();
  ASSERT_TRUE(ConnectWhole());
  renderer_->canCreateOutputs = false;
  renderer_->deviceLost = true;
  PrepareOutput();
  EXPECT_TRUE(listener_.journal.WaitForLine("down"));
}

TEST_F(DeviceLossTest, ADeviceThatIsThereIsNeverMadeAnew) {
  ASSERT_TRUE(Stream());
  companion_.Offer();
  companion_.Disconnect();
  ASSERT_TRUE(companion_.Accept() && WaitForStreaming());
  EXPECT_EQ(renderer_->journal.Count("RemakeDevice"), 0U);
}

}  // namespace
}  // namespace ombrel::test
