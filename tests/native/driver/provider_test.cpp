// The provider between a runtime and a companion, neither of which is always well.
#include <stdexcept>

#include "provider_fixture.h"
#include "support/bytes.h"

namespace ombrel::test {
namespace {

class AnnouncementTest : public ProviderTest {
 protected:
  // The runtime notes the device and then fails.
  void ThrowWhenAnnounced(vr::ETrackedDeviceClass thrower) {
    host_.onDeviceAdded = [note = host_.onDeviceAdded, thrower](auto deviceClass, auto* device) {
      note(deviceClass, device);
      if (deviceClass == thrower) throw std::runtime_error("no room for a device");
    };
  }
  // Of a device that is no more, the address sanitizer tells.
  void ExpectBothToWork() {
    ASSERT_EQ(Added().size(), 2U);
    for (const std::uint32_t index : {0U, kBaseStation}) {
      EXPECT_EQ(Added()[index]->Activate(index), vr::VRInitError_None);
      EXPECT_TRUE(PoseOf(*Added()[index]).poseIsValid);
    }
  }
};

TEST_F(AnnouncementTest, ABaseStationWhoseAnnouncementThrowsEndsNoInit) {
  ThrowWhenAnnounced(vr::TrackedDeviceClass_TrackingReference);
  EXPECT_EQ(provider_.Init(&host_), vr::VRInitError_None);
  EXPECT_EQ(log_.All().back(), "Fake sensor registered with result 0\n");
  ExpectBothToWork();
}

TEST_F(AnnouncementTest, AHeadsetWhoseAnnouncementThrowsStays) {
  ThrowWhenAnnounced(vr::TrackedDeviceClass_HMD);
  EXPECT_EQ(provider_.Init(&host_), vr::VRInitError_None);
  EXPECT_EQ(log_.All().back(), "Fake sensor registered with result 1\n");
  ExpectBothToWork();
}

TEST_F(ProviderTest, NoEventButAVibrationMakesAPulse) {
  StartSession();
  constexpr std::uint32_t kVibration = 1700;
  RunFrameWithEventsOfController({{kVibration + 1, 0.001F}, {kVibration - 1, 0.002F}, {kVibration, 0.003F}});
  const auto pulse = companion_.Receive();
  ASSERT_TRUE(pulse.has_value());
  EXPECT_EQ(pulse->type, 11U);
  const Bytes duration = Bytes().U16(3000).U16(0);
  ASSERT_EQ(pulse->payload.size(), 12U);
  EXPECT_EQ(std::vector(pulse->payload.begin() + 8, pulse->payload.end()), duration.Get());
}

TEST_F(ProviderTest, TheBaseStationsPoseGoesOnAfterCleanup) {
  StartSession();
  provider_.Cleanup();
  poses_.Clear();
  for (int frame = 0; frame < 2; ++frame) provider_.RunFrame();
  EXPECT_EQ(poses_.All(), (Journal::Lines{"1", "1"}));
}

}  // namespace
}  // namespace ombrel::test
