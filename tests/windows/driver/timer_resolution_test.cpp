// The headset raises the system's timer resolution when it is made, since frames are paced by Sleep.
#include <gmock/gmock.h>

#include <windows.h>
// windows.h must come first.
#include <timeapi.h>

#include "support/driver_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

TIMECAPS capabilities{};
std::vector<UINT> periodsBegun;

MMRESULT WINAPI TellCapabilities(TIMECAPS* told, UINT) {
  *told = capabilities;
  return MMSYSERR_NOERROR;
}

MMRESULT WINAPI NotePeriod(UINT period) {
  periodsBegun.push_back(period);
  return TIMERR_NOERROR;
}

struct ResolutionCase {
  const char* name;
  UINT least, most, begun;
};

class TimerResolutionTest : public DriverTest, public testing::WithParamInterface<ResolutionCase> {};

TEST_P(TimerResolutionTest, IsTheFinestFromAMillisecondOn) {
  capabilities = {.wPeriodMin = GetParam().least, .wPeriodMax = GetParam().most};
  periodsBegun.clear();
  const ModuleImport tell(module.Handle(), "timeGetDevCaps", reinterpret_cast<void*>(&TellCapabilities));
  const ModuleImport begin(module.Handle(), "timeBeginPeriod", reinterpret_cast<void*>(&NotePeriod));
  ASSERT_EQ(Init(), vr::VRInitError_None);
  Provider().Cleanup();
  EXPECT_THAT(periodsBegun, testing::ElementsAre(GetParam().begun));
}

INSTANTIATE_TEST_SUITE_P(, TimerResolutionTest,
                         testing::Values(ResolutionCase{"Usual", 1, 65535, 1}, ResolutionCase{"Finer", 0, 65535, 1},
                                         ResolutionCase{"Coarse", 10, 65535, 10}, ResolutionCase{"None", 5, 3, 3}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace ombrel::test
