#include "runtime/driver_module.h"

#include <string>

#include <windows.h>
#include <gtest/gtest.h>

#include "runtime/driver_folder.h"
#include "runtime/fake_runtime.h"
#include "runtime/msvc_calls.h"
#include "runtime/runtime_session.h"
#include "test_files/scratch_folder.h"

namespace bench {
namespace {

std::filesystem::path ToyDriver() { return ombrel::test::FromEnvironment("OMBREL_TOY_DRIVER"); }

// A driver folder as it is installed, with the toy driver in it.
class DriverFolderTest : public testing::Test {
 protected:
  void SetUp() override {
    scratch.Write("toy/driver.vrdrivermanifest", R"({"name": "toy"})");
    scratch.Write("toy/resources/settings/default.vrsettings", R"({"driver_toy": {"width": 5}})");
    std::filesystem::create_directories(root / "bin" / "win64");
    std::filesystem::copy_file(ToyDriver(), root / "bin" / "win64" / "driver_toy.dll");
  }

  const ombrel::test::ScratchFolder scratch;
  const std::filesystem::path root = scratch.At("toy");
};

TEST_F(DriverFolderTest, TheManifestNamesTheLibrary) {
  const DriverFolder driver = FindDriver(root);
  EXPECT_EQ(driver.name, "toy");
  EXPECT_EQ(driver.library, root / "bin" / "win64" / "driver_toy.dll");
  EXPECT_EQ(driver.defaultSettings, root / "resources" / "settings" / "default.vrsettings");
}

TEST_F(DriverFolderTest, ALibraryLeadsBackToItsFolder) {
  const DriverFolder driver = FindDriver(root / "bin" / "win64" / "driver_toy.dll");
  EXPECT_EQ(driver.name, "toy");
  EXPECT_EQ(driver.root, root);
  EXPECT_FALSE(driver.defaultSettings.empty());
}

TEST_F(DriverFolderTest, AFolderWithoutTheLibraryIsNoDriver) {
  std::filesystem::remove(root / "bin" / "win64" / "driver_toy.dll");
  EXPECT_THROW(static_cast<void>(FindDriver(root)), std::runtime_error);
}

TEST(DriverModule, LoadsRunsAndUnloads) {
  FakeRuntime runtime("toy");
  {
    DriverModule module(ToyDriver());
    RuntimeSession session(runtime, module.Provider());
    ASSERT_EQ(session.Init(), vr::VRInitError_None);
    ASSERT_EQ(session.Devices().size(), 1U);
    EXPECT_EQ(CallGetPose(session.Devices()[0].added.driver).vecPosition[1], 1.25);
    session.Cleanup();
    EXPECT_NE(GetModuleHandleA("driver_toy.dll"), nullptr);
  }
  EXPECT_EQ(GetModuleHandleA("driver_toy.dll"), nullptr);
}

TEST(DriverModule, GivesTheModuleToTheHookFirst) {
  DriverModule::Module seen = nullptr;
  const DriverModule module(ToyDriver(), [&](DriverModule::Module loaded) { seen = loaded; });
  EXPECT_EQ(seen, module.Handle());
  EXPECT_NE(seen, nullptr);
}

TEST(DriverModule, UnloadsWhenTheHookFails) {
  EXPECT_THROW(DriverModule(ToyDriver(), [](DriverModule::Module) { throw std::runtime_error("no"); }),
               std::runtime_error);
  EXPECT_EQ(GetModuleHandleA("driver_toy.dll"), nullptr);
}

TEST(DriverModule, RefusesWhatIsNoDriver) {
  EXPECT_THROW(DriverModule module("no_such_driver.dll"), std::runtime_error);
  EXPECT_THROW(DriverModule module("kernel32.dll"), std::runtime_error);
}

}  // namespace
}  // namespace bench
