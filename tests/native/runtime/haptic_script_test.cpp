#include "haptic_script.h"

#include <gtest/gtest.h>

#include <fstream>

#include "toy_session.h"

namespace bench {
namespace {

class HapticScriptTest : public testing::Test {
 protected:
  HapticScript Script(const char* text) {
    const auto file = std::filesystem::temp_directory_path() / "haptic_script_test.json";
    std::ofstream(file, std::ios::binary) << text;
    return HapticScript(file);
  }
  void Advance(HapticScript& script, double seconds) { script.Advance(seconds, toy.runtime, toy.session); }
  // By value: elsewhere than on Windows the event is packed.
  vr::VREvent_HapticVibration_t NextVibration() {
    vr::VREvent_t event{};
    EXPECT_TRUE(toy.runtime.Host().PollNextEvent(&event, sizeof event));
    EXPECT_EQ(event.eventType, vr::VREvent_Input_HapticVibration);
    return event.data.hapticVibration;
  }

  ToySession toy;
};

TEST_F(HapticScriptTest, APulseIsQueuedOnceWhenItIsDue) {
  HapticScript script = Script(R"([{"at": 1.5, "duration": 0.25, "frequency": 80, "amplitude": 0.5}])");
  const auto container = toy.AddController("hand");
  Advance(script, 1.4);
  EXPECT_EQ(toy.runtime.Host().QueuedEvents(), 0U);
  Advance(script, 1.6);
  Advance(script, 1.7);
  ASSERT_EQ(toy.runtime.Host().QueuedEvents(), 1U);
  const vr::VREvent_HapticVibration_t vibration = NextVibration();
  EXPECT_EQ(vibration.containerHandle, container);
  EXPECT_EQ(vibration.fDurationSeconds, 0.25F);
  EXPECT_EQ(vibration.fFrequency, 80.0F);
  EXPECT_EQ(vibration.fAmplitude, 0.5F);
}

TEST_F(HapticScriptTest, ARepeatedPulseComesAtItsDistance) {
  HapticScript script = Script(R"([{"at": 1, "every": 2}])");
  toy.AddController("hand");
  for (const double seconds : {1.0, 2.9, 3.0, 4.9, 5.0}) Advance(script, seconds);
  EXPECT_EQ(script.Sent(), 3U);
}

TEST_F(HapticScriptTest, ControllersAreCountedInTheOrderOfTheirActivation) {
  HapticScript script = Script(R"([{"controller": 1}])");
  toy.AddController("left");
  Advance(script, 1.0);
  EXPECT_EQ(script.Sent(), 0U);  // waits for the second
  const auto second = toy.AddController("right");
  Advance(script, 2.0);
  EXPECT_EQ(NextVibration().containerHandle, second);
}

TEST_F(HapticScriptTest, NamesTheHapticComponentOfTheController) {
  HapticScript script = Script(R"([{"at": 0}])");
  const auto container = toy.AddController("hand");
  vr::VRInputComponentHandle_t handle = 0;
  toy.runtime.Input().CreateHapticComponent(container, "/output/haptic", &handle);
  Advance(script, 0.0);
  EXPECT_EQ(NextVibration().componentHandle, handle);
}

TEST_F(HapticScriptTest, RefusesWhatIsNoScript) {
  EXPECT_THROW(Script(R"({"at": 0})"), std::runtime_error);
  EXPECT_THROW(Script(R"([{"at": "soon"}])"), std::runtime_error);
  EXPECT_THROW(HapticScript("no/such/file.json"), std::runtime_error);
}

}  // namespace
}  // namespace bench
