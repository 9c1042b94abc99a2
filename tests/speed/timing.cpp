#include "timing.h"

#include <array>
#include <atomic>
#include <chrono>

#include "controller_cases.h"
#include "floor/controller_floor.h"
#include "floor/pose_floor.h"
#include "settle.h"

namespace ombrel::test {
namespace {

template <typename Call>
double TimeCalls(int calls, Call call) {
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < calls; ++i) {
    call(static_cast<std::size_t>(i));
    // What was written counts as read.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    Settle();
  }
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  return taken.count() / calls;
}

std::array<Payload, 2> Records(bool changes) {
  return {ControllerCase::Record(0, 0), ControllerCase::Record(0, changes ? 1 : 0)};
}

}  // namespace

double TimeNothing(int calls) {
  return TimeCalls(calls, [](std::size_t) {});
}

double TimePoseFloor(int calls) {
  const std::vector<Payload> records = FloorRecords();
  bench::floor::PoseFloor floor;
  return TimeCalls(calls, [&](std::size_t i) {
    floor.Publish(std::span<const std::byte, sizeof(bench::floor::PoseFloor::Record)>(records[i % records.size()]));
  });
}

double TimeFormulaFloor(const PoseFormatCase& format, const FormulaCase& formula, int calls) {
  bench::floor::FormulaFloor floor = FloorBefore(format);
  return TimeCalls(calls, [&](std::size_t i) { formula.publish(floor, format.payloads[i % format.payloads.size()]); });
}

double TimePoses(const PoseFormatCase& format, int calls) {
  PosePublisher publisher(format);
  return TimeCalls(calls, [&](std::size_t i) { publisher.Publish(format.payloads[i % format.payloads.size()]); });
}

double TimeControllerFloor(int calls) {
  const std::array<Payload, 2> records = Records(false);
  bench::floor::ControllerFloor floor;
  return TimeCalls(calls, [&](std::size_t i) {
    static_cast<void>(
        floor.Take(std::span<const std::byte, bench::floor::kControllerRecordBytes>(records[i % records.size()])));
  });
}

double TimeControllerRecords(bool changes, int calls) {
  const std::array<Payload, 2> records = Records(changes);
  ControllerCase controllers(1);
  return TimeCalls(calls, [&](std::size_t i) { controllers.Take(records[i % records.size()]); });
}

}  // namespace ombrel::test
