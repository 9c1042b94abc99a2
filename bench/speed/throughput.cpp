#include <functional>
#include <string>
#include <utility>

#include "arrival.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "driver_under_test.h"
#include "experiments.h"

namespace bench::speed {

using namespace companion;

namespace {

// Counts the runtime's pose calls, and takes the processor time of the thread that makes them from the first to the
// last. Wall time would include every preemption on a busy machine.
class CallMeter {
 public:
  void Expect(int calls) {
    calls_ = calls;
    seen_ = 0;
    arrival_.Expect();
  }
  // On the driver's reader thread.
  void Note() {
    if (++seen_ == 1) begin_ = ThreadNanoseconds();
    if (seen_ != calls_) return;
    nanoseconds_ = ThreadNanoseconds() - begin_;
    arrival_.Note();
  }
  // Nanoseconds for each call.
  [[nodiscard]] double Wait() {
    static_cast<void>(arrival_.Wait());
    return static_cast<double>(nanoseconds_) / (calls_ - 1);
  }

 private:
  Arrival arrival_;
  std::int64_t begin_ = 0, nanoseconds_ = 0;
  int calls_ = 0, seen_ = 0;
};

// As many messages as fill the pipe's buffer, in one write: the cost of ReadFile is amortized over all of them.
Bytes Fill(const std::function<Bytes(int)>& message, int* count) {
  constexpr std::size_t kPipeBytes = 60'000;
  Bytes piece;
  for (*count = 0; piece.size() < kPipeBytes; ++*count) {
    const Bytes next = message(*count);
    piece.insert(piece.end(), next.begin(), next.end());
  }
  return piece;
}

double Measure(DriverUnderTest& driver, CallMeter& meter, const std::function<Bytes(int)>& message) {
  int count = 0;
  const Bytes piece = Fill(message, &count);
  meter.Expect(count);
  driver.Send(piece);
  const double nanoseconds = meter.Wait();
  driver.Fence();
  return nanoseconds;
}

struct Format {
  const char* name;
  Bytes (*message)(int number);
};

// A head that looks about.
float Turn(int number) { return 0.35F - 0.01F * static_cast<float>(number % 64); }
Quat Look(int number) { return {Turn(number), 0.6F, 0.1F, 0.7F}; }

constexpr Format kFormats[] = {
    {"0 rotation matrix", [](int n) { return EncodeRotationMatrix(Look(n)); }},
    {"1 republish", [](int) { return EncodeWithoutPose(PoseFormat::Repeat); }},
    {"2 sensors",
     [](int n) {
       return EncodeSensors({{Turn(n), 0.02F, -0.03F}, {0.1F, 0.2F, 9.7F}, {20.0F, 1.0F, 40.0F}});
     }},
    {"3 Euler angles",
     [](int n) {
       return EncodeEulerAngles(Turn(n), 0.4F, 0.1F, {0.0F, 1.7F, 0.0F});
     }},
    {"4 quaternion",
     [](int n) {
       return EncodeQuaternionAndPosition(Look(n), {0.1F, 1.7F, 0.2F});
     }},
    {"5 position",
     [](int n) {
       return EncodePositionOnly({Turn(n), 1.7F, 0.2F});
     }},
    {"6 pose matrix",
     [](int n) {
       return EncodeRotationAndPosition(Look(n), {0.1F, 1.7F, 0.2F});
     }},
    {"50 recenter", [](int) { return EncodeWithoutPose(PoseFormat::Recenter); }},
    {"254 tracking state", [](int n) { return EncodeTrackingState(static_cast<std::uint8_t>(n % 3)); }},
};

}  // namespace

std::vector<Series> MeasureFormats(const Plan& plan) {
  CallMeter meter;
  DriverUnderTest driver(plan.library, Graphics::kNone);
  driver.onPose = [&](std::uint32_t) { meter.Note(); };
  Series series{"decoding", "ns", {}};
  for (int i = 0; i < (plan.isShort ? 20 : 200); ++i) {
    for (const Format& format : kFormats) series.Add(format.name, {Measure(driver, meter, format.message)});
  }
  return {std::move(series)};
}

std::vector<Series> MeasureControllers(const Plan& plan) {
  CallMeter meter;
  DriverUnderTest driver(plan.library, Graphics::kNone);
  driver.onPose = [&](std::uint32_t) { meter.Note(); };
  Series series{"controllers", "ns", {}};
  std::uint32_t known = 0;
  // A runtime takes no more than 63 devices beside the headset.
  for (const std::uint32_t wanted : {1u, 3u, 10u, 30u, 60u}) {
    for (; known < wanted; ++known) driver.AddController(known);
    const auto inTurns = [=](int i) {
      return EncodeControllerUpdate({.controllerId = static_cast<std::uint32_t>(i) % wanted});
    };
    for (int i = 0; i < (plan.isShort ? 5 : 100); ++i)
      series.Add(std::to_string(wanted), {Measure(driver, meter, inTurns)});
  }
  return {std::move(series)};
}

}  // namespace bench::speed
