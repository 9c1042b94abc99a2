#include "devices/controller_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "context/driver_context.h"
#include "support/hooked_runtime.h"
#include "support/journal.h"
#include "support/tell_tale.h"

namespace ombrel::test {
namespace {

class ControllerDeviceTest : public testing::Test {
 protected:
  ControllerDeviceTest() {
    EXPECT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
    runtime_.onPose = [this](auto, const vr::DriverPose_t& pose, auto) {
      calls_.Add("pose " + std::to_string(pose.vecPosition[0]));
    };
    runtime_.onBoolean = [this](auto, bool) { calls_.Add("input"); };
    runtime_.onScalar = [this](auto, float) { calls_.Add("input"); };
  }
  ~ControllerDeviceTest() override { Context().Clear(); }

  // Of a place, buttons and axes that follow from the number; an even one holds every button.
  void Update(std::uint32_t number) {
    device_.UpdateFromRecord(ReadRecord<ombrel::ControllerUpdate>(ControllerUpdate(7, number)));
  }
  [[nodiscard]] vr::DriverPose_t Pose() {
    vr::DriverPose_t pose{};
    EXPECT_EQ(device_.GetPose(&pose), &pose);
    return pose;
  }

  HookedRuntime runtime_;
  Journal calls_;
  ControllerDevice device_{nullptr, &runtime_, 7};
};

TEST_F(ControllerDeviceTest, SendsThePoseOfARecordBeforeItsInputs) {
  device_.Activate(1);
  calls_.Clear();
  Update(2);
  const Journal::Lines calls = calls_.All();
  EXPECT_EQ(calls.front(), "pose 2.000000");
  EXPECT_EQ(std::ranges::count(calls, "input"), 9) << "five clicks, a touch and three axes";
  EXPECT_EQ(calls.size(), 10U);
}

TEST_F(ControllerDeviceTest, HasThePoseThatItWasMadeWithUntilARecordBehindItsActivation) {
  const vr::DriverPose_t made = Pose();
  Update(2);
  const vr::DriverPose_t before = Pose();
  EXPECT_EQ(std::memcmp(&before, &made, sizeof(made)), 0);
  device_.Activate(1);
  const vr::DriverPose_t activated = Pose();
  EXPECT_EQ(std::memcmp(&activated, &made, sizeof(made)), 0);
  Update(4);
  EXPECT_EQ(Pose().vecPosition[0], 4.0);
}

}  // namespace
}  // namespace ombrel::test
