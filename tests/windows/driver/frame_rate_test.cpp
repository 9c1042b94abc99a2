#include <gmock/gmock.h>

#include "support/link_test.h"

namespace ombrel::test {
namespace {

class FrameRateTest : public LinkTest {
 protected:
  // The newest write of the display frequency, after the line that tells of it.
  bench::PropertyWriteRecord SendAndAwait(std::uint32_t framesPerSecond, const std::string& inTheLog) {
    Send(bench::EncodeFramerateUpdate(framesPerSecond));
    EXPECT_TRUE(WaitFor([&] { return runtime.Log().Contains(Line(inTheLog)); })) << LogLines().back();
    return runtime.Properties().Writes().back();
  }
  static std::string Line(const std::string& value) { return "Updating headset fps, new value: " + value + " \n"; }
};

TEST_F(FrameRateTest, BecomesAPropertyAndALine) {
  Connect();
  const auto write = SendAndAwait(72, "72.000000");
  EXPECT_EQ(write.property, vr::Prop_DisplayFrequency_Float);
  EXPECT_EQ(write.tag, vr::k_unFloatPropertyTag);
  EXPECT_EQ(write.As<float>(), 72.0F);
  EXPECT_EQ(write.container, bench::FakeProperties::ContainerOf(0));
  EXPECT_EQ(write.entriesInCall, 1U);
  EXPECT_EQ(write.writeType, vr::PropertyWrite_Set);
}

TEST_F(FrameRateTest, IsWrittenBeforeActivationTooAndKeptForIt) {
  ConnectInactive();
  EXPECT_EQ(SendAndAwait(90, "90.000000").container, vr::k_ulInvalidPropertyContainer);
  Headset().Activate(0);
  EXPECT_EQ(runtime.Properties().Get<float>(bench::FakeProperties::ContainerOf(0), vr::Prop_DisplayFrequency_Float),
            90.0F);
}

TEST_F(FrameRateTest, IsTakenAsASignedNumber) {
  Connect();
  EXPECT_EQ(SendAndAwait(0xFFFFFFFE, "-2.000000").As<float>(), -2.0F);
}

TEST_F(FrameRateTest, OfZeroHarmsNobody) {
  Connect();
  EXPECT_EQ(SendAndAwait(0, "0.000000").As<float>(), 0.0F);
  Fence();
}

TEST_F(FrameRateTest, IsLoggedWhenTheRuntimeRefusesTheProperty) {
  Connect();
  runtime.Properties().FailWrite(vr::Prop_DisplayFrequency_Float, vr::TrackedProp_PermissionDenied);
  SendAndAwait(75, "75.000000");
}

TEST_F(FrameRateTest, ChangesNothingElse) {
  Connect();
  const std::size_t poses = PosesSent();
  const std::size_t writes = runtime.Properties().Writes().size();
  SendAndAwait(72, "72.000000");
  EXPECT_EQ(PosesSent(), poses);
  EXPECT_EQ(runtime.Properties().Writes().size(), writes + 1);
  std::uint32_t width = 0, height = 0;
  Display().GetRecommendedRenderTargetSize(&width, &height);
  EXPECT_EQ(width, 500U);
}

}  // namespace
}  // namespace ombrel::test
