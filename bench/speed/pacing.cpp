#include <windows.h>
// windows.h must come first.
#include <openvr_driver.h>

#include <cmath>
#include <functional>
#include <string>

#include "clocks.h"
#include "driver_under_test.h"
#include "experiments.h"

namespace bench::speed {
namespace {

// The sleep of a wait: all of the time that is left but the last millisecond, in whole milliseconds.
void SleepMost(double leftMs) {
  if (leftMs > 1) Sleep(static_cast<DWORD>(leftMs - 1));
}

// A pacing wait and nothing else: Sleep, then the performance counter polled to the end of the period.
class BareWait {
 public:
  explicit BareWait(double periodMs) : period_(static_cast<std::int64_t>(periodMs * 1e6)) {}
  void operator()() {
    const std::int64_t end = last_ + period_;
    SleepMost(static_cast<double>(end - WallNanoseconds()) / 1e6);
    while (WallNanoseconds() < end) {
    }
    last_ = WallNanoseconds();
  }

 private:
  std::int64_t period_;
  std::int64_t last_ = WallNanoseconds();
};

struct Waits {
  std::vector<double> errorsMs, processorMs;
};

Waits TimeWaits(int count, double periodMs, const std::function<void()>& wait) {
  Waits waits;
  wait();  // its period began before
  std::int64_t last = WallNanoseconds();
  for (int i = 0; i < count; ++i) {
    const std::int64_t processor = ThreadNanoseconds();
    wait();
    const std::int64_t now = WallNanoseconds();
    waits.processorMs.push_back(static_cast<double>(ThreadNanoseconds() - processor) / 1e6);
    waits.errorsMs.push_back(std::abs(static_cast<double>(now - last) / 1e6 - periodMs));
    last = now;
  }
  return waits;
}

void Measure(DriverUnderTest& driver, std::uint32_t rate, int blocks, int frames, std::vector<Series>& all) {
  auto& direct =
      *static_cast<vr::IVRDriverDirectModeComponent*>(driver.Component(vr::IVRDriverDirectModeComponent_Version));
  const double periodMs = 1000.0 / rate;
  driver.SendFrameRate(rate);
  Series errors{"pacing " + std::to_string(rate), "ms", {}};
  Series processor{"pacing " + std::to_string(rate) + " processor", "ms", {}};
  // What sleeping itself takes, which is no polling.
  processor.Add("sleep", TimeWaits(10 * frames, periodMs, [=] { SleepMost(periodMs); }).processorMs);
  BareWait bare(periodMs);
  for (int i = 0; i < blocks; ++i) {
    for (const char* side : {kBaseline, kDriver}) {
      const bool isBaseline = side == kBaseline;
      Waits waits = TimeWaits(frames, periodMs, [&] { isBaseline ? bare() : direct.PostPresent(); });
      errors.Add(side, std::move(waits.errorsMs));
      processor.Add(side, std::move(waits.processorMs));
    }
  }
  all.push_back(std::move(errors));
  all.push_back(std::move(processor));
}

}  // namespace

std::vector<Series> MeasurePacing(const Plan& plan) {
  DriverUnderTest driver(plan.library, Graphics::kNone);
  std::vector<Series> all;
  const int blocks = plan.isShort ? 4 : 100, frames = plan.isShort ? 5 : 10;
  for (const std::uint32_t rate : {60u, 72u, 90u, 120u, 144u}) Measure(driver, rate, blocks, frames, all);
  return all;
}

}  // namespace bench::speed
