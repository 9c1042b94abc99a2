// What the inputs of a record become: transitions of buttons and touches, and values of axes that changed.
#include <limits>

#include "controller_fixture.h"

namespace ombrel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ControllerInputsTest : public ControllerTest {
 protected:
  void SetUp() override { Activate(); }
  void Press(std::uint64_t buttons) { SendInputs(buttons, 0); }
  void Touch(std::uint64_t buttons) { SendInputs(0, buttons); }
  void SendInputs(std::uint64_t pressed, std::uint64_t touched) {
    SendRecord({.pressedButtons = pressed, .touchedButtons = touched});
  }
  void MoveAxis(std::size_t axis, float x, float y) {
    companion::ControllerRecord record;
    record.axes[axis] = {x, y};
    SendRecord(record);
  }
};

TEST_F(ControllerInputsTest, OnlyTheButtonThatCameDownIsSent) {
  Press(0x4);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/grip/click true"));
  Press(0x200000004);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trigger/click true"));
}

TEST_F(ControllerInputsTest, ReleasesGoOutInTheOrderOfTheBits) {
  Press(0x3);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/system/click true", "/input/application_menu/click true"));
  Press(0);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/system/click false", "/input/application_menu/click false"));
}

TEST_F(ControllerInputsTest, PressesGoOutBeforeReleasesAndTouchesLast) {
  SendInputs(0x100000001, 0);
  NewInputs();
  SendInputs(0x200000006, 0x100000000);
  EXPECT_THAT(NewInputs(),
              ElementsAre("/input/application_menu/click true", "/input/grip/click true", "/input/trigger/click true",
                          "/input/system/click false", "/input/trackpad/click false", "/input/trackpad/touch true"));
}

TEST_F(ControllerInputsTest, TouchingIsNotPressing) {
  Touch(0x100000000);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trackpad/touch true"));
  Touch(0);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trackpad/touch false"));
  Press(0x100000000);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trackpad/click true"));
}

TEST_F(ControllerInputsTest, HeldButtonsAreSentOnce) {
  for (int i = 0; i < 3; ++i) Press(0x1);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/system/click true"));
}

TEST_F(ControllerInputsTest, BitsWithoutAButtonAreIgnored) {
  SendInputs(0x80 | 0x8000000000000000, 0x3);
  EXPECT_THAT(NewInputs(), IsEmpty());
}

TEST_F(ControllerInputsTest, AnErrorIsLoggedAndTheRestIsSent) {
  runtime_.Input().FailUpdate("/input/system/click", vr::VRInputError_NoData);
  Press(0x3);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/system/click true", "/input/application_menu/click true"));
  EXPECT_THAT(runtime_.Log().Lines(), Contains("Error while updating boolean component /input/system/click, error: " +
                                               std::to_string(vr::VRInputError_NoData) + " \n"));
}

TEST_F(ControllerInputsTest, BothOfTheTrackpadsValuesGoOutWhenOneChanged) {
  MoveAxis(0, 0, 0.5F);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trackpad/x 0.000000", "/input/trackpad/y 0.500000"));
}

TEST_F(ControllerInputsTest, TheTriggersUnusedNumberSendsItsValueAgain) {
  MoveAxis(1, 0.25F, 0);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trigger/value 0.250000"));
  MoveAxis(1, 0.25F, 1);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trigger/value 0.250000"));
}

TEST_F(ControllerInputsTest, AFullTriggerIsNoClickAndNothingIsClamped) {
  MoveAxis(1, 1.5F, 0);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trigger/value 1.500000"));
}

TEST_F(ControllerInputsTest, OtherAxesAreIgnored) {
  for (const std::size_t axis : {2U, 3U, 4U}) MoveAxis(axis, 1, 1);
  EXPECT_THAT(NewInputs(), IsEmpty());
}

// A NaN compares unequal to everything, itself included.
TEST_F(ControllerInputsTest, NotANumberIsSentWithEveryRecord) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (int i = 0; i < 2; ++i) MoveAxis(0, nan, 0);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/trackpad/x nan", "/input/trackpad/y 0.000000", "/input/trackpad/x nan",
                                       "/input/trackpad/y 0.000000"));
}

TEST_F(ControllerInputsTest, ARestingTrackpadStaysWhereTheActivationLeftIt) {
  MoveAxis(0, 0, 0);
  EXPECT_THAT(NewInputs(), IsEmpty());
  const auto container = bench::FakeProperties::ContainerOf(kIndex);
  EXPECT_EQ(runtime_.Input().ScalarValue(container, "/input/trackpad/x"), 0.8F);
  EXPECT_EQ(runtime_.Input().ScalarValue(container, "/input/trackpad/y"), std::nullopt);
}

TEST_F(ControllerInputsTest, AControllerThatIsGoneStillTellsOfItsInputs) {
  companion::ControllerRecord record;
  record.trackingState = 2;
  record.pressedButtons = 0x4;
  record.axes[1] = {0.5F, 0};
  SendRecord(record);
  EXPECT_THAT(NewInputs(), ElementsAre("/input/grip/click true", "/input/trigger/value 0.500000"));
}

}  // namespace
}  // namespace ombrel::test
