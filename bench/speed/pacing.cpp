#include <windows.h>
// windows.h must come first.
#include <openvr_driver.h>

#include <functional>
#include <string>

#include "driver_under_test.h"
#include "experiments.h"
#include "floor/pacing_floor.h"
#include "floor/thread_time.h"

namespace bench::speed {
namespace {

// Processor time of sleeping itself, which is no polling.
std::vector<double> TimeSleeps(int count, double periodMs) {
  std::vector<double> values;
  for (int i = 0; i < count; ++i) {
    const std::int64_t processor = floor::ThreadNanoseconds();
    Sleep(static_cast<DWORD>(periodMs) - 1);
    values.push_back(static_cast<double>(floor::ThreadNanoseconds() - processor) / 1e6);
  }
  return values;
}

struct Waits {
  std::vector<double> errorsMs, processorMs;
};

Waits TimeWaits(int count, double periodMs, const std::function<void()>& wait) {
  Waits waits;
  wait();  // what was before does not count
  std::int64_t last = floor::WallNanoseconds();
  for (int i = 0; i < count; ++i) {
    const std::int64_t processor = floor::ThreadNanoseconds();
    wait();
    const std::int64_t now = floor::WallNanoseconds();
    waits.processorMs.push_back(static_cast<double>(floor::ThreadNanoseconds() - processor) / 1e6);
    waits.errorsMs.push_back(static_cast<double>(now - last) / 1e6 - periodMs);
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
  floor::PacingFloor bare(periodMs);
  processor.Add(kNothing, TimeSleeps(10 * frames, periodMs));
  for (int i = 0; i < blocks; ++i) {
    for (const char* side : {kFloor, kDriver}) {
      const bool isFloor = side == kFloor;
      Waits waits = TimeWaits(frames, periodMs, [&] { isFloor ? bare.Wait() : direct.PostPresent(); });
      errors.Add(side, std::move(waits.errorsMs));
      processor.Add(side, std::move(waits.processorMs));
    }
  }
  TakeOffMeasuring(processor);
  all.push_back(std::move(errors));
  all.push_back(std::move(processor));
}

}  // namespace

std::vector<Series> MeasurePacing(const Plan& plan) {
  DriverUnderTest driver(plan.library, Graphics::kNone);
  std::vector<Series> all;
  if (plan.isShort) {
    Measure(driver, 90, 6, 10, all);
    return all;
  }
  for (const std::uint32_t rate : {60u, 72u, 90u, 120u, 144u}) Measure(driver, rate, 100, 10, all);
  return all;
}

}  // namespace bench::speed
