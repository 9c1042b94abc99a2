// A new version that is unpacked over an older one's folder.
#include <windows.h>

#include "install_test.h"

namespace ombrel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kOldList = "/resources/files-0.0.9.txt";
constexpr const char* kOldBindings = "/resources/input/bindings_of_old.json";

// An older version was installed: it had the library, the manifest, and bindings that the new one has no more.
class UpgradeTest : public InstallTest {
 protected:
  void SetUp() override {
    InstallTest::SetUp();
    Write(driver + kOldBindings, "{}");
    Write(driver + kOldList,
          "bin\\win64\\driver_ombrel.dll\r\nDriver.vrdrivermanifest\r\ninstall.cmd\r\n"
          "resources\\input\\bindings_of_old.json\r\n");
  }
};

TEST_F(UpgradeTest, DeletesWhatOnlyTheOlderVersionHad) {
  UnpackOver(driver);
  const Outcome outcome = Run("install.cmd");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
  EXPECT_THAT(outcome.output, HasSubstr("bindings_of_old.json"));
  const std::vector<std::string> upgraded = Files();
  UnpackOver("Elsewhere/ombrel");
  EXPECT_EQ(upgraded, Files());
}

TEST_F(UpgradeTest, ToTheSameVersionDeletesNothing) {
  UnpackOver("Elsewhere/ombrel");
  const std::vector<std::string> before = Files();
  const Outcome outcome = Run("install.cmd");
  EXPECT_EQ(Files(), before);
  EXPECT_THAT(outcome.output, Not(HasSubstr("Deleted")));
}

TEST_F(UpgradeTest, IsNotDoneWhileTheLibraryIsInUse) {
  UnpackOver(driver);
  const HMODULE library = LoadLibraryW(At(driver + "/bin/win64/driver_ombrel.dll").c_str());
  ASSERT_NE(library, nullptr);
  const std::size_t calls = Calls().size();
  const Outcome refused = Run("install.cmd");
  EXPECT_EQ(refused.exitCode, 6) << refused.output;
  EXPECT_THAT(refused.output, HasSubstr("Nothing was changed: SteamVR is running"));
  EXPECT_TRUE(std::filesystem::exists(At(driver + kOldBindings)));
  EXPECT_EQ(Calls().size(), calls);
  FreeLibrary(library);
  EXPECT_EQ(Run("install.cmd").exitCode, 0);
}

}  // namespace
}  // namespace ombrel::test
