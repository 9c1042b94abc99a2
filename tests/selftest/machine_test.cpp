#include "machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ombrel::selftest {
namespace {

using testing::HasSubstr;

MachineFacts SoundMachine() {
  MachineFacts machine;
  machine.adapters = {{"First", "0:1", false, false, "31.0.1.2", 8192}, {"Second", "0:2", false, false, "", 512}};
  machine.timerMs = 0.5;
  machine.sleptMs = 1.9;
  return machine;
}

Verdict Find(const MachineFacts& machine, const std::string& name) {
  for (const Verdict& verdict : Judge(machine)) {
    if (verdict.name == name) return verdict;
  }
  ADD_FAILURE() << "no verdict " << name;
  return {};
}

TEST(MachineTest, NothingIsWrongWithASoundOne) {
  for (const Verdict& verdict : Judge(SoundMachine())) EXPECT_EQ(verdict.result, Result::kGood) << verdict.name;
}

TEST(MachineTest, TheReportSaysWhichAdapterTheDriverTakesAndWhy) {
  MachineFacts machine = SoundMachine();
  EXPECT_THAT(Find(machine, "Graphics adapter").found, HasSubstr("First, it is the system's first"));
  machine.adapters[1].isPreferred = true;
  EXPECT_THAT(Find(machine, "Graphics adapter").found, HasSubstr("Second, its description is the one"));
}

TEST(MachineTest, WithoutAnAdapterThereIsNoHeadset) {
  MachineFacts machine = SoundMachine();
  machine.adapters.clear();
  EXPECT_EQ(Find(machine, "Graphics adapter").result, Result::kBad);
}

TEST(MachineTest, ASoftwareRasterizerSaysNothingOfAGraphicsCard) {
  for (const char* name : {"llvmpipe (LLVM 15.0.6, 256 bits)", "Microsoft Basic Render Driver"}) {
    MachineFacts machine = SoundMachine();
    machine.adapters[0].name = name;
    EXPECT_TRUE(DrawsInSoftware(machine)) << name;
    EXPECT_EQ(Find(machine, "Graphics adapter").result, Result::kUnknown) << name;
  }
  EXPECT_FALSE(DrawsInSoftware(SoundMachine()));
  MachineFacts wine = SoundMachine();
  wine.openGl = "llvmpipe (LLVM 15.0.6, 256 bits)";
  EXPECT_TRUE(DrawsInSoftware(wine));
}

TEST(MachineTest, ACoarseTimerIsBad) {
  MachineFacts machine = SoundMachine();
  machine.sleptMs = 15.6;
  EXPECT_EQ(Find(machine, "Timer").result, Result::kBad);
  machine = SoundMachine();
  machine.timerMs = 15.6;
  EXPECT_EQ(Find(machine, "Timer").result, Result::kBad);
}

}  // namespace
}  // namespace ombrel::selftest
