#include <gtest/gtest.h>

#include "program.h"

namespace {

class IdleCompanion : public testing::Test {
 protected:
  void Start(const std::string& name, const std::string& seconds) {
    std::filesystem::copy_file(TestArgument("idle"), folder_.At(name));
    idle_.Start(folder_.At(name), {seconds}, folder_.At("out.txt"));
  }
  ombrel::test::ScratchFolder folder_;
  Program idle_;
};

TEST_F(IdleCompanion, RunsUnderAnyNameUntilItsInputCloses) {
  Start("vrmonitor.exe", "60");
  EXPECT_FALSE(idle_.Wait(300));
  idle_.CloseInput();
  EXPECT_EQ(idle_.Wait(5000), 42U);
}

TEST_F(IdleCompanion, EndsByItselfAfterItsTime) {
  Start("Ombrel.exe", "0.2");
  EXPECT_EQ(idle_.Wait(5000), 42U);
}

}  // namespace
