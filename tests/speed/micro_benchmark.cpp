// The parts of the driver's way of a message that need no Windows, each beside its floor. Run by tools/bench.sh, which
// lets the library mix the order of the repetitions, so that floor and driver meet the same disturbances.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "controller_cases.h"
#include "floor/controller_floor.h"
#include "floor/pose_floor.h"
#include "link/listeners.h"
#include "platform/append_only_list.h"
#include "pose_cases.h"

namespace ombrel::test {
namespace {

void PoseFloorCase(benchmark::State& state) {
  const std::vector<Payload> records = FloorRecords();
  bench::floor::PoseFloor floor;
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    floor.Publish(std::span<const std::byte, sizeof(bench::floor::PoseFloor::Record)>(records[next]));
    benchmark::ClobberMemory();
    next = (next + 1) % records.size();
  }
  benchmark::DoNotOptimize(floor.Published());
}

void PoseCase(benchmark::State& state, const PoseFormatCase& format) {
  PosePublisher publisher;
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    publisher.Publish(format.payloads[next]);
    benchmark::ClobberMemory();
    next = (next + 1) % format.payloads.size();
  }
  benchmark::DoNotOptimize(publisher.Published());
}

void ControllerFloorCase(benchmark::State& state, bool changes) {
  const std::vector<Payload> records{ControllerCase::Record(0, 0), ControllerCase::Record(0, changes ? 1 : 0)};
  bench::floor::ControllerFloor floor;
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(
        floor.Take(std::span<const std::byte, bench::floor::kControllerRecordBytes>(records[next])));
    benchmark::ClobberMemory();
    next = 1 - next;
  }
}

void ControllerRecordCase(benchmark::State& state, bool changes) {
  const std::vector<Payload> records{ControllerCase::Record(0, 0), ControllerCase::Record(0, changes ? 1 : 0)};
  ControllerCase controllers(1);
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    controllers.Take(records[next]);
    benchmark::ClobberMemory();
    next = 1 - next;
  }
}

// One record after another for each of the controllers in turn.
void ControllersCase(benchmark::State& state) {
  const auto count = static_cast<std::uint32_t>(state.range(0));
  ControllerCase controllers(count);
  std::vector<Payload> records;
  for (std::uint32_t id = 0; id < count; ++id) records.push_back(ControllerCase::Record(id, 0));
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    controllers.Take(records[next]);
    benchmark::ClobberMemory();
    if (++next == records.size()) next = 0;
  }
}

struct CountingListener final : ITrackingUpdatedListener {
  void OnTrackingUpdated() override { ++calls; }
  std::uint64_t calls = 0;
};

void ListenersCase(benchmark::State& state) {
  const PoseFormatCase format = PoseFormatCases()[4];
  std::vector<CountingListener> listeners(static_cast<std::size_t>(state.range(0)));
  AppendOnlyList<ITrackingUpdatedListener*> list;
  for (CountingListener& listener : listeners) list.Add(&listener);
  PosePublisher publisher;
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    publisher.Publish(format.payloads[next]);
    list.ForEach([](ITrackingUpdatedListener* listener) { listener->OnTrackingUpdated(); });
    benchmark::ClobberMemory();
    next = (next + 1) % format.payloads.size();
  }
}

void RegisterAll(const std::vector<PoseFormatCase>& formats) {
  benchmark::RegisterBenchmark("pose/floor", PoseFloorCase);
  for (const PoseFormatCase& format : formats) {
    benchmark::RegisterBenchmark((std::string("pose/") + format.name).c_str(), PoseCase, format);
  }
  for (const bool changes : {false, true}) {
    const std::string what = changes ? "changed" : "unchanged";
    benchmark::RegisterBenchmark(("controller " + what + "/floor").c_str(), ControllerFloorCase, changes);
    benchmark::RegisterBenchmark(("controller " + what + "/driver").c_str(), ControllerRecordCase, changes);
  }
  benchmark::RegisterBenchmark("controllers", ControllersCase)
      ->Arg(1)
      ->Arg(3)
      ->Arg(10)
      ->Arg(30)
      ->Arg(100)
      ->Arg(300)
      ->Arg(1000);
  benchmark::RegisterBenchmark("listeners", ListenersCase)->Arg(1)->Arg(2)->Arg(4)->Arg(8)->Arg(16)->Arg(32)->Arg(64);
}

}  // namespace
}  // namespace ombrel::test

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  ombrel::test::RegisterAll(ombrel::test::PoseFormatCases());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
