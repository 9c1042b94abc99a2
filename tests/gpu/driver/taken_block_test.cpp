// Somebody else has made a memory block of the name that the driver is going to use.
#include <future>

#include "base/owned_handle.h"
#include "companion/shared_block.h"
#include "direct_fixture.h"

namespace ombrel::test {
namespace {

// What the unseeded generator gives on a fresh thread.
constexpr const char* kName = "frAQBc8Wsa1xVPfvJcrgRYwTiizs2trQF69AzBlax3CF3EDNhm3soLBPh7";

class TakenBlockTest : public DirectTest {
 protected:
  void StartOnAFreshThread() {
    std::async(std::launch::async, [this] { Init(); }).get();
    Activate();
    Connect();
  }
};

TEST_F(TakenBlockTest, GetsThePosesAsTheDriversOwnWould) {
  const bench::OwnedHandle theirs(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 128, kName));
  ASSERT_TRUE(theirs);
  companion::SharedBlock block;
  ASSERT_TRUE(block.Open(kName));
  StartOnAFreshThread();
  for (int frame = 0; frame < 2; ++frame) {
    SubmitLayer(MakeEye(kRed), PoseNumber(frame + 1));
    ASSERT_TRUE(HandOver());
    EXPECT_EQ(block.ReadSlot(frame), SlotOfPose(frame + 1));
  }
  EXPECT_EQ(TakeAnnouncement().name, kName) << "the companion is sent there";
}

// Then there is no block: frames go on without poses beside them.
TEST_F(TakenBlockTest, WithoutMemoryKeepsNoFrameBack) {
  const bench::OwnedHandle theirs(
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_RESERVE, 0, 128, kName));
  ASSERT_TRUE(theirs);
  StartOnAFreshThread();
  for (int frame = 0; frame < 2; ++frame) {
    SubmitLayer(MakeEye(kRed), PoseNumber(frame + 1));
    ASSERT_TRUE(HandOver());
  }
}

}  // namespace
}  // namespace ombrel::test
