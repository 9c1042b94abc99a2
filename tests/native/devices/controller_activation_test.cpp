// What the activation of a controller writes and creates, and what records do before it and after Deactivate.
#include <array>
#include <cstring>

#include "controller_fixture.h"

namespace ombrel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ControllerActivationTest : public ControllerTest {
 protected:
  static companion::ControllerRecord Holding(std::uint64_t buttons) { return {.pressedButtons = buttons}; }
};

TEST_F(ControllerActivationTest, WritesItsPropertiesInOrder) {
  Activate();
  EXPECT_THAT(PropertyLines(runtime_),
              ElementsAre("1: 1029 2 4 2", "1: 2004 3 8 18", "1: 1001 5 17 OmbrelController",
                          "1: 1002 5 23 OmbrelControllerV02ID0", "1: 1003 5 23 vr_controller_vive_1_5",
                          "1: 1037 5 39 {ombrel}/input/controller_profile.json"));
}

TEST_F(ControllerActivationTest, CreatesItsInputsInTheOrderOfTheirKeysAndPutsTheTrackpadAt0Point8) {
  Activate();
  EXPECT_THAT(
      InputLines(runtime_),
      ElementsAre("create 1 /input/system/click", "create 1 /input/application_menu/click",
                  "create 1 /input/grip/click", "create 1 /input/trackpad/click", "create 1 /input/trigger/click",
                  "create 1 /input/trackpad/touch", "create 1 /input/trackpad/x", "create 1 /input/trackpad/y",
                  "create 1 /input/trigger/value", "create 1 /output/haptic", "/input/trackpad/x 0.800000"));
}

TEST_F(ControllerActivationTest, GivesScalarsTheirUnits) {
  Activate();
  const auto container = bench::FakeProperties::ContainerOf(kIndex);
  const auto units = [&](const char* path) { return runtime_.Input().Find(container, path).value().scalarUnits; };
  EXPECT_EQ(units("/input/trackpad/x"), vr::VRScalarUnits_NormalizedTwoSided);
  EXPECT_EQ(units("/input/trackpad/y"), vr::VRScalarUnits_NormalizedTwoSided);
  EXPECT_EQ(units("/input/trigger/value"), vr::VRScalarUnits_NormalizedOneSided);
}

TEST_F(ControllerActivationTest, AButtonThatCannotBeMadeIsLoggedAndTheRestIsMade) {
  runtime_.Input().FailCreate("/input/grip/click", vr::VRInputError_NameNotFound);
  runtime_.Input().FailCreate("/input/trackpad/touch", vr::VRInputError_NameNotFound);
  Activate();
  const std::string number = std::to_string(vr::VRInputError_NameNotFound);
  EXPECT_THAT(runtime_.Log().Lines(),
              Contains("Error while creating boolean component /input/grip/click, error: " + number + " \n"));
  EXPECT_THAT(runtime_.Log().Lines(),
              Contains("Error while creating boolean component /input/trackpad/touch, error: " + number + " \n"));
  EXPECT_EQ(runtime_.Input().Components().size(), 8U);
}

TEST_F(ControllerActivationTest, AScalarThatCannotBeMadeIsNotWorthALine) {
  runtime_.Input().FailCreate("/input/trigger/value", vr::VRInputError_NameNotFound);
  Activate();
  EXPECT_THAT(runtime_.Log().Lines(), ElementsAre("Controller: OmbrelControllerV02ID0 activated with id: 1\n"));
}

TEST_F(ControllerActivationTest, DoesWithoutInputs) {
  Context().Clear();
  runtime_.Withhold("IVRDriverInput_001");
  ASSERT_EQ(Context().Init(&runtime_), vr::VRInitError_None);
  Activate();
  companion::ControllerRecord record = Holding(0x1);
  record.axes[0] = {0.5F, 0.5F};
  SendRecord(record);
  EXPECT_THAT(InputLines(runtime_), IsEmpty());
  EXPECT_EQ(PosesSent(), 1U);
}

TEST_F(ControllerActivationTest, RecordsBeforeItChangeNothing) {
  const vr::DriverPose_t made = Pose();
  for (int i = 0; i < 3; ++i) SendRecord(Holding(0x1));
  Activate();
  EXPECT_EQ(PosesSent(), 0U);
  const vr::DriverPose_t activated = Pose();
  EXPECT_EQ(std::memcmp(&activated, &made, sizeof(made)), 0);
  SendRecord(Holding(0x1));
  EXPECT_THAT(NewInputs(), ElementsAre("/input/system/click true"));
}

TEST_F(ControllerActivationTest, RecordsTakeEffectAfterDeactivateToo) {
  Activate();
  controller_.Deactivate();
  SendRecord(Holding(0x1));
  EXPECT_THAT(NewInputs(), ElementsAre("/input/system/click true"));
  EXPECT_EQ(PosesSent(), 1U);
}

TEST_F(ControllerActivationTest, ThePoseOfARecordIsSentBeforeItsInputs) {
  Activate();
  runtime_.Journal().Clear();
  SendRecord(Holding(0x1));
  EXPECT_THAT(runtime_.Journal().Calls(),
              ElementsAre("IVRServerDriverHost.TrackedDevicePoseUpdated", "IVRDriverInput.UpdateBooleanComponent"));
}

TEST_F(ControllerActivationTest, ComponentsAreFoundInAnyCase) {
  EXPECT_EQ(controller_.GetComponent("itrackeddeviceserverdriver_005"), &controller_);
  EXPECT_EQ(controller_.GetComponent("IVRControllerComponent_001"), nullptr);
  EXPECT_EQ(controller_.GetComponent(""), nullptr);
}

TEST_F(ControllerActivationTest, ADebugRequestLeavesTheResponseAlone) {
  std::array<char, 4> response{'a', 'b', 'c', 'd'};
  controller_.DebugRequest("anything", response.data(), response.size());
  EXPECT_THAT(response, ElementsAre('a', 'b', 'c', 'd'));
}

}  // namespace
}  // namespace ombrel::test
