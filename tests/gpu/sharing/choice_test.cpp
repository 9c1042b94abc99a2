// Direct3D's own sharing or the stand-in's: what the question finds, and what follows from the answer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/child_process.h"
#include "sharing/counters.h"
#include "sharing/device_observer.h"
#include "sharing/question.h"
#include "sharing/sharing_device.h"
#include "side.h"

namespace bench::test {
namespace {

using testing::HasSubstr;

SharingAnswer Yes() { return {}; }
SharingAnswer No() { return {"a step"}; }

std::filesystem::path CompanionProgram() { return std::getenv("OMBREL_COMPANION"); }

class ChoiceTest : public testing::Test {
 protected:
  void TearDown() override {
    SetObserver(DeviceGroup::kOwn, nullptr);
    ChooseSharing(Sharing::kStandIn);
  }
};

TEST_F(ChoiceTest, AMachineThatSharesIsLeftToItself) {
  const SharingDecision decision = ChooseSharing({}, Yes);
  EXPECT_EQ(decision.sharing, Sharing::kOwn);
  EXPECT_EQ(SharingInUse(), Sharing::kOwn);
  const std::int64_t before = ReadCounters(DeviceGroup::kOwn).liveDevices;
  const Side side;
  EXPECT_EQ(ReadCounters(DeviceGroup::kOwn).liveDevices, before);
}

TEST_F(ChoiceTest, AMachineThatDoesNotShareGetsTheStandIn) {
  const SharingDecision decision = ChooseSharing({}, No);
  EXPECT_EQ(decision.sharing, Sharing::kStandIn);
  EXPECT_THAT(decision.Text(), HasSubstr("stand-in sharing: this Direct3D does not share textures (a step)"));
  const std::int64_t before = ReadCounters(DeviceGroup::kOwn).liveDevices;
  const Side side;
  EXPECT_EQ(ReadCounters(DeviceGroup::kOwn).liveDevices, before + 1);
}

TEST_F(ChoiceTest, AWishIsFollowedWithoutAsking) {
  const auto nobody = []() -> SharingAnswer { throw std::logic_error("asked"); };
  EXPECT_EQ(ChooseSharing(Sharing::kOwn, nobody).sharing, Sharing::kOwn);
  EXPECT_EQ(ChooseSharing(Sharing::kStandIn, nobody).sharing, Sharing::kStandIn);
}

TEST_F(ChoiceTest, NothingOfAModuleIsReplacedWhereTheMachineShares) {
  ChooseSharing({}, Yes);
  HMODULE module = LoadLibraryA(std::getenv("SHARING_MODULE"));
  using MakeDevice = HRESULT (*)(ID3D11Device**, ID3D11DeviceContext**);
  const auto make = reinterpret_cast<MakeDevice>(reinterpret_cast<void*>(GetProcAddress(module, "MakeDevice")));
  EXPECT_TRUE(InterceptModule(module));
  ComPtr<ID3D11Device> device;
  ASSERT_EQ(make(&device, nullptr), S_OK);
  EXPECT_EQ(ReadCounters(DeviceGroup::kIntercepted).liveDevices, 0);
  device.Reset();
  FreeLibrary(module);
}

TEST_F(ChoiceTest, PublishingIsAFlushWhereTheMachineShares) {
  ChooseSharing({}, Yes);
  const Side side;
  const auto plain = side.Create(Description(0));
  EXPECT_EQ(PublishSharedTexture(plain.Get()), E_INVALIDARG);
  const auto shared = side.Create(Description(D3D11_RESOURCE_MISC_SHARED));
  if (!shared) GTEST_SKIP() << "this Direct3D makes no shared texture";
  EXPECT_EQ(PublishSharedTexture(shared.Get()), S_OK);
}

TEST_F(ChoiceTest, TheQuestionIsAnsweredByDevicesAndProcessesThatShare) {
  EXPECT_EQ(AskSharing(Sharing::kStandIn, CompanionProgram()).failedStep, "");
}

TEST_F(ChoiceTest, ASecondProcessThatTakesNoTurnIsNoSharing) {
  EXPECT_EQ(AskSharing(Sharing::kStandIn, "nowhere.exe").failedStep, "a second process cannot take its turn");
}

// Each of the calls that sharing takes, failing.
TEST_F(ChoiceTest, TheQuestionNamesTheStepThatDidNotGo) {
  struct Failing : DeviceObserver {
    std::optional<HRESULT> Answer(DeviceCall call) override {
      return call == fails ? std::optional<HRESULT>(E_NOTIMPL) : std::nullopt;
    }
    DeviceCall fails{};
  } failing;
  SetObserver(DeviceGroup::kOwn, &failing);
  const std::pair<DeviceCall, const char*> steps[] = {
      {DeviceCall::kCreateTexture2D, "making a texture"}, {DeviceCall::kQueryKeyedMutex, "no keyed mutex"},
      {DeviceCall::kGetSharedHandle, "no handle"},        {DeviceCall::kOpenSharedResource, "cannot be opened"},
      {DeviceCall::kAcquireSync, "taking a keyed mutex"}, {DeviceCall::kReleaseSync, "giving a keyed mutex back"}};
  for (const auto& [call, step] : steps) {
    failing.fails = call;
    EXPECT_THAT(AskSharing(Sharing::kStandIn, CompanionProgram()).failedStep, HasSubstr(step));
  }
}

// What a program says of itself when it was told which to take.
TEST_F(ChoiceTest, AReportSaysWhichSharingItWas) {
  for (const char* name : {"own", "stand-in"}) {
    const auto file = std::filesystem::temp_directory_path() / "choice_test.json";
    const ChildProcess program(CompanionProgram(),
                               {"--sharing", name, "--connect-timeout", "0", "--summary", file.string()});
    EXPECT_EQ(program.WaitForEnd(kLongMs), 3U);
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    EXPECT_THAT(text.str(), HasSubstr(std::string("\"sharing\": \"") + name + '"'));
    std::filesystem::remove(file);
  }
}

}  // namespace
}  // namespace bench::test
