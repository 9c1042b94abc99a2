// What the activation of a controller writes and creates, and what records do before it and after Deactivate.
#include <gmock/gmock.h>

#include <array>

#include "controller_fixture.h"

namespace ombrel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ControllerActivationTest : public ControllerFixture {
 protected:
  vr::ITrackedDeviceServerDriver& Added() { return *runtime.Host().Added().back().driver; }
  std::vector<std::string> PathsMade() {
    std::vector<std::string> paths;
    const auto container = bench::FakeProperties::ContainerOf(kIndex);
    for (const bench::InputComponent& component : runtime.Input().Components()) {
      if (component.container == container) paths.push_back(component.path);
    }
    return paths;
  }
  static bench::ControllerRecord Holding(std::uint64_t buttons) {
    bench::ControllerRecord record;
    record.pressedButtons = buttons;
    return record;
  }
};

TEST_F(ControllerActivationTest, WritesItsPropertiesInOrder) {
  Announce(0);
  const std::size_t before = runtime.Properties().Writes().size();
  Added().Activate(kIndex);
  std::vector<std::string> texts;
  const auto writes = runtime.Properties().Writes();
  for (std::size_t i = before; i < writes.size(); ++i) {
    EXPECT_EQ(writes[i].container, bench::FakeProperties::ContainerOf(kIndex));
    EXPECT_EQ(writes[i].entriesInCall, 1U);
    const bool text = writes[i].tag == vr::k_unStringPropertyTag;
    texts.push_back(std::to_string(writes[i].property) + ' ' +
                    (text ? std::string(writes[i].bytes.begin(), writes[i].bytes.end() - 1)
                          : std::to_string(writes[i].bytes.at(0)) + " of " + std::to_string(writes[i].bytes.size())));
  }
  EXPECT_THAT(texts, ElementsAre("1029 2 of 4", "2004 18 of 8", "1001 OmbrelController", "1002 OmbrelControllerV02ID0",
                                 "1003 vr_controller_vive_1_5", "1037 {ombrel}/input/controller_profile.json"));
}

TEST_F(ControllerActivationTest, CreatesItsInputsInTheOrderOfTheirKeys) {
  AddActive(0);
  EXPECT_THAT(PathsMade(),
              ElementsAre("/input/system/click", "/input/application_menu/click", "/input/grip/click",
                          "/input/trackpad/click", "/input/trigger/click", "/input/trackpad/touch", "/input/trackpad/x",
                          "/input/trackpad/y", "/input/trigger/value", "/output/haptic"));
}

TEST_F(ControllerActivationTest, GivesScalarsTheirUnits) {
  AddActive(0);
  const auto container = bench::FakeProperties::ContainerOf(kIndex);
  const auto units = [&](const char* path) { return runtime.Input().Find(container, path).value().scalarUnits; };
  EXPECT_EQ(units("/input/trackpad/x"), vr::VRScalarUnits_NormalizedTwoSided);
  EXPECT_EQ(units("/input/trackpad/y"), vr::VRScalarUnits_NormalizedTwoSided);
  EXPECT_EQ(units("/input/trigger/value"), vr::VRScalarUnits_NormalizedOneSided);
}

TEST_F(ControllerActivationTest, PutsTheTrackpadAt0Point8) {
  Announce(0);
  Added().Activate(kIndex);
  const auto updates = runtime.Input().Updates("/input/trackpad/x");
  ASSERT_EQ(updates.size(), 1U);
  EXPECT_EQ(updates[0].scalarValue, 0.8F);
  EXPECT_THAT(runtime.Input().Updates("/input/trackpad/y"), IsEmpty());
}

TEST_F(ControllerActivationTest, AButtonThatCannotBeMadeIsLoggedAndTheRestIsMade) {
  runtime.Input().FailCreate("/input/grip/click", vr::VRInputError_NameNotFound);
  runtime.Input().FailCreate("/input/trackpad/touch", vr::VRInputError_NameNotFound);
  AddActive(0);
  const std::string number = std::to_string(vr::VRInputError_NameNotFound);
  EXPECT_THAT(LogLines(),
              Contains("Error while creating boolean component /input/grip/click, error: " + number + " \n"));
  EXPECT_THAT(LogLines(),
              Contains("Error while creating boolean component /input/trackpad/touch, error: " + number + " \n"));
  EXPECT_EQ(PathsMade().size(), 8U);
}

TEST_F(ControllerActivationTest, AScalarThatCannotBeMadeIsNotWorthALine) {
  runtime.Input().FailCreate("/input/trigger/value", vr::VRInputError_NameNotFound);
  Announce(0);
  NewLogLines();
  Activate();
  EXPECT_THAT(NewLogLines(), ElementsAre("Controller: OmbrelControllerV02ID0 activated with id: 1\n"));
}

TEST_F(ControllerActivationTest, RecordsBeforeItChangeNothing) {
  Announce(0);
  for (int i = 0; i < 3; ++i) SendRecord(Holding(0x1));
  EXPECT_EQ(runtime.Poses().Count(kIndex), 0U);
  Activate();
  EXPECT_THAT(NewUpdates(), IsEmpty());
  SendRecord(Holding(0x1));
  EXPECT_THAT(NewUpdates(), ElementsAre("/input/system/click true"));
}

TEST_F(ControllerActivationTest, RecordsTakeEffectAfterDeactivateToo) {
  vr::ITrackedDeviceServerDriver& controller = AddActive(0);
  controller.Deactivate();
  SendRecord(Holding(0x1));
  EXPECT_THAT(NewUpdates(), ElementsAre("/input/system/click true"));
  EXPECT_EQ(runtime.Poses().Count(kIndex), 1U);
}

TEST_F(ControllerActivationTest, ASerialNumberCountsBelowZero) {
  Announce(static_cast<std::uint32_t>(-7));
  EXPECT_EQ(runtime.Host().Added().back().serial, "OmbrelControllerV02ID-7");
}

TEST_F(ControllerActivationTest, ComponentsAreFoundInAnyCase) {
  vr::ITrackedDeviceServerDriver& controller = AddActive(0);
  EXPECT_EQ(controller.GetComponent("itrackeddeviceserverdriver_005"), &controller);
  EXPECT_EQ(controller.GetComponent("IVRControllerComponent_001"), nullptr);
  EXPECT_EQ(controller.GetComponent(""), nullptr);
}

TEST_F(ControllerActivationTest, ADebugRequestLeavesTheResponseAlone) {
  std::array<char, 4> response{'a', 'b', 'c', 'd'};
  AddActive(0).DebugRequest("anything", response.data(), response.size());
  EXPECT_THAT(response, ElementsAre('a', 'b', 'c', 'd'));
}

}  // namespace
}  // namespace ombrel::test
