#include <windows.h>

#include <functional>

#include "arrival.h"
#include "companion/controller_record.h"
#include "companion/tracking_update.h"
#include "driver_under_test.h"
#include "experiments.h"
#include "floor_link.h"

namespace bench::speed {
namespace {

struct Turns {
  int blocks, messages;
};

// One message at a time, with time in between for the reader to wait for the next one.
Block TimeMessages(const char* side, int messages, Arrival& arrival, const std::function<void(int)>& send) {
  Block block{side, {}};
  for (int i = 0; i < messages; ++i) {
    Sleep(1);
    arrival.Expect();
    const std::int64_t begin = floor::WallNanoseconds();
    send(i);
    block.values.push_back(static_cast<double>(arrival.Wait() - begin) / 1000.0);
  }
  return block;
}

Series TakeTurns(const char* name, const Turns& turns, Arrival& arrival, const std::function<void(int)>& toFloor,
                 const std::function<void(int)>& toDriver) {
  Series series{name, "µs", {}};
  // What is slow only once is slow for neither.
  static_cast<void>(TimeMessages(kFloor, turns.messages / 2, arrival, toFloor));
  static_cast<void>(TimeMessages(kDriver, turns.messages / 2, arrival, toDriver));
  for (int i = 0; i < turns.blocks; ++i) {
    series.blocks.push_back(TimeMessages(kFloor, turns.messages, arrival, toFloor));
    series.blocks.push_back(TimeMessages(kDriver, turns.messages, arrival, toDriver));
  }
  return series;
}

Bytes Pose(int number) { return EncodeQuaternionAndPosition({}, {0.001F * static_cast<float>(number), 1.7F, 0.0F}); }

Series MeasurePoses(DriverUnderTest& driver, Arrival& arrival, const Turns& turns) {
  driver.runtime.host.onPose = [&](std::uint32_t) { arrival.Note(); };
  const std::size_t size = Pose(0).size();
  FloorLink bare(size, [&](std::size_t bytes) {
    if (bytes == size) arrival.Note();
  });
  Series series = TakeTurns(
      "pose latency", turns, arrival, [&](int i) { bare.Send(Pose(i)); }, [&](int i) { driver.Send(Pose(i)); });
  driver.runtime.host.onPose = {};
  return series;
}

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

// The first record announces the controller, the second sets what the later ones change.
void MakeController(DriverUnderTest& driver, Arrival& arrival) {
  arrival.Expect();
  driver.Send(Record(0));
  driver.Send(Pose(0));
  static_cast<void>(arrival.Wait());  // the pose behind the record
  driver.runtime.host.Devices().at(1)->Activate(1);
  arrival.Expect();
  driver.Send(Record(1));
  static_cast<void>(arrival.Wait());
}

Series MeasureRecords(DriverUnderTest& driver, Arrival& arrival, const Turns& turns) {
  driver.runtime.host.onPose = [&](std::uint32_t) { arrival.Note(); };
  MakeController(driver, arrival);
  driver.runtime.host.onPose = {};
  driver.runtime.input.onScalar = [&, last = driver.runtime.input.LastScalar()](auto handle) {
    if (handle == last) arrival.Note();
  };
  const std::size_t size = Record(0).size();
  FloorLink bare(size, [&](std::size_t bytes) {
    if (bytes == size) arrival.Note();
  });
  return TakeTurns(
      "controller latency", turns, arrival, [&](int i) { bare.Send(Record(i)); },
      [&](int i) { driver.Send(Record(i)); });
}

}  // namespace

std::vector<Series> MeasureMessages(const Plan& plan) {
  const Turns turns = plan.isShort ? Turns{6, 40} : Turns{60, 100};
  Arrival arrival;
  DriverUnderTest driver(plan.library, Graphics::kNone);
  std::vector<Series> all{MeasurePoses(driver, arrival, turns)};
  all.push_back(MeasureRecords(driver, arrival, turns));
  return all;
}

}  // namespace bench::speed
