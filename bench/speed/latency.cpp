#include <windows.h>

#include <functional>

#include "arrival.h"
#include "bare_reader.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "driver_under_test.h"
#include "experiments.h"

namespace bench::speed {

using namespace companion;

namespace {

struct Turns {
  int blocks, messages;
};

using Send = std::function<void(int)>;

// One message at a time, with time in between for the reader to wait for the next one.
std::vector<double> TimeMessages(int messages, Arrival& arrival, const Send& send) {
  std::vector<double> values;
  for (int i = 0; i < messages; ++i) {
    Sleep(1);
    arrival.Expect();
    const std::int64_t begin = WallNanoseconds();
    send(i);
    values.push_back(static_cast<double>(arrival.Wait() - begin) / 1000.0);
  }
  return values;
}

Series TakeTurns(const char* name, const Turns& turns, Arrival& arrival, std::size_t size, const Send& toDriver,
                 const std::function<Bytes(int)>& message) {
  BareReader bare(size, [&](std::size_t bytes) {
    if (bytes == size) arrival.Note();
  });
  const Send toBaseline = [&](int i) { bare.Send(message(i)); };
  // Warm-up: pages, caches and the schedulers' habits.
  static_cast<void>(TimeMessages(turns.messages / 2, arrival, toBaseline));
  static_cast<void>(TimeMessages(turns.messages / 2, arrival, toDriver));
  Series series{name, "µs", {}};
  for (int i = 0; i < turns.blocks; ++i) {
    series.Add(kBaseline, TimeMessages(turns.messages, arrival, toBaseline));
    series.Add(kDriver, TimeMessages(turns.messages, arrival, toDriver));
  }
  return series;
}

Bytes Pose(int number) { return EncodeQuaternionAndPosition({}, {0.001F * static_cast<float>(number), 1.7F, 0.0F}); }

// Everything in it changes from one record to the next.
Bytes Record(int number) {
  const auto value = static_cast<float>(number % 2);
  ControllerRecord record;
  record.controllerId = 1;
  record.pressedButtons = number % 2 == 0 ? 0 : ButtonBit(ControllerButton::Trigger);
  record.axes[0] = {0.25F + 0.5F * value, 0.5F - value};
  record.axes[1] = {0.5F + 0.25F * value, 0.0F};
  return EncodeControllerUpdate(record);
}

}  // namespace

std::vector<Series> MeasureLatency(const Plan& plan) {
  const Turns turns = plan.isShort ? Turns{6, 40} : Turns{60, 100};
  Arrival arrival;
  DriverUnderTest driver(plan.library, Graphics::kNone);
  driver.onPose = [&](std::uint32_t device) {
    if (device == vr::k_unTrackedDeviceIndex_Hmd) arrival.Note();
  };
  const Send sendPose = [&](int i) { driver.Send(Pose(i)); };
  std::vector<Series> all{TakeTurns("pose latency", turns, arrival, Pose(0).size(), sendPose, Pose)};

  driver.AddController(1);
  driver.runtime.Input().onUpdate = [&, last = driver.LastScalar()](const InputUpdate& update) {
    if (update.handle == last) arrival.Note();
  };
  const Send sendRecord = [&](int i) { driver.Send(Record(i)); };
  all.push_back(TakeTurns("controller latency", turns, arrival, Record(0).size(), sendRecord, Record));
  return all;
}

}  // namespace bench::speed
