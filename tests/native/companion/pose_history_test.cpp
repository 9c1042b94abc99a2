#include "companion/pose_history.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace companion {
namespace {

PoseSlot SlotOf(const PoseMatrix& pose) {
  PoseSlot slot{};
  std::copy(pose.begin(), pose.end(), slot.begin());
  slot[15] = 1;
  return slot;
}

PoseMatrix PoseAt(float yaw, float z) { return ToPoseMatrix(YawPitchToQuaternion({yaw, 0}), {0, 1.7F, z}); }

class PoseHistoryTest : public testing::Test {
 protected:
  PoseHistory history_{0, 100};
};

TEST_F(PoseHistoryTest, StartsWithTheStandingPoseAsNumberZero) {
  const auto match = history_.Match(SlotOf(PoseAt(0, 0)), 1e-3F);
  ASSERT_TRUE(match);
  EXPECT_EQ(match->sent.number, 0U);
}

TEST_F(PoseHistoryTest, FindsTheClosestNotTheFirstWithinTolerance) {
  history_.Add(1, PoseAt(0.5F, 0.0001F));
  history_.Add(2, PoseAt(0.5F, 0.0002F));
  history_.Add(3, PoseAt(0.5F, 0.0003F));
  EXPECT_EQ(history_.Match(SlotOf(PoseAt(0.5F, 0.0002F)), 1e-3F)->sent.number, 2U);
}

TEST_F(PoseHistoryTest, OfEqualPosesTheNewestIsMeant) {
  history_.Add(1, PoseAt(0.5F, 0));
  history_.Add(2, PoseAt(0.5F, 0));
  EXPECT_EQ(history_.Match(SlotOf(PoseAt(0.5F, 0)), 1e-3F)->sent.number, 2U);
}

TEST_F(PoseHistoryTest, APoseThatWasNotSentMatchesNothing) {
  history_.Add(1, PoseAt(0.5F, 0));
  EXPECT_FALSE(history_.Match(SlotOf(PoseAt(0.6F, 0)), 1e-3F));
  EXPECT_FALSE(history_.Match(SlotOf(PoseAt(0.5F, 0.01F)), 1e-3F));
}

TEST_F(PoseHistoryTest, ASlotThatIsNoPoseMatchesNothing) {
  PoseSlot slot = SlotOf(PoseAt(0, 0));
  slot[15] = 0;
  EXPECT_FALSE(history_.Match(slot, 1e-3F));
  slot = SlotOf(PoseAt(0, 0));
  slot[5] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_FALSE(history_.Match(slot, 1e-3F));
}

TEST_F(PoseHistoryTest, ForgetsWhatIsTooOldButOne) {
  history_.Add(10, PoseAt(0.1F, 0));
  history_.Add(20, PoseAt(0.2F, 0));
  history_.Add(200, PoseAt(0.3F, 0));
  EXPECT_FALSE(history_.Match(SlotOf(PoseAt(0.1F, 0)), 1e-3F));
  EXPECT_TRUE(history_.Match(SlotOf(PoseAt(0.2F, 0)), 1e-3F)) << "it stood until number 3 was sent";
}

}  // namespace
}  // namespace companion
