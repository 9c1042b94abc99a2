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
#include "settle.h"

namespace ombrel::test {
namespace {

enum class Spacing { kInARow, kSettled };

// A benchmark's loop around a call for each number, in turns. Settled, each call is done before the next one begins.
template <typename Call>
void Run(benchmark::State& state, Spacing spacing, std::size_t count, Call call) {
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    call(next);
    benchmark::ClobberMemory();
    if (spacing == Spacing::kSettled) Settle();
    next = next + 1 == count ? 0 : next + 1;
  }
}

void NothingCase(benchmark::State& state) {
  Run(state, Spacing::kSettled, FloorRecords().size(), [](std::size_t next) { benchmark::DoNotOptimize(next); });
}

void PoseFloorCase(benchmark::State& state, Spacing spacing) {
  const std::vector<Payload> records = FloorRecords();
  bench::floor::PoseFloor floor;
  Run(state, spacing, records.size(), [&](std::size_t next) {
    floor.Publish(std::span<const std::byte, sizeof(bench::floor::PoseFloor::Record)>(records[next]));
  });
  benchmark::DoNotOptimize(floor.Published());
}

void PoseCase(benchmark::State& state, Spacing spacing, const PoseFormatCase& format) {
  PosePublisher publisher(format);
  Run(state, spacing, format.payloads.size(), [&](std::size_t next) { publisher.Publish(format.payloads[next]); });
  benchmark::DoNotOptimize(publisher.Published());
}

void FormulaFloorCase(benchmark::State& state, const PoseFormatCase& format, const FormulaCase& formula) {
  bench::floor::FormulaFloor floor = FloorBefore(format);
  Run(state, Spacing::kSettled, format.payloads.size(),
      [&](std::size_t next) { formula.publish(floor, format.payloads[next]); });
  benchmark::DoNotOptimize(floor.Published());
}

void ControllerFloorCase(benchmark::State& state, bool changes) {
  const std::vector<Payload> records{ControllerCase::Record(0, 0), ControllerCase::Record(0, changes ? 1 : 0)};
  bench::floor::ControllerFloor floor;
  Run(state, Spacing::kSettled, records.size(), [&](std::size_t next) {
    benchmark::DoNotOptimize(
        floor.Take(std::span<const std::byte, bench::floor::kControllerRecordBytes>(records[next])));
  });
}

void ControllerRecordCase(benchmark::State& state, bool changes) {
  const std::vector<Payload> records{ControllerCase::Record(0, 0), ControllerCase::Record(0, changes ? 1 : 0)};
  ControllerCase controllers(1);
  Run(state, Spacing::kSettled, records.size(), [&](std::size_t next) { controllers.Take(records[next]); });
}

// One record after another for each of the controllers in turn.
void ControllersCase(benchmark::State& state) {
  const auto count = static_cast<std::uint32_t>(state.range(0));
  ControllerCase controllers(count);
  std::vector<Payload> records;
  for (std::uint32_t id = 0; id < count; ++id) records.push_back(ControllerCase::Record(id, 0));
  Run(state, Spacing::kInARow, records.size(), [&](std::size_t next) { controllers.Take(records[next]); });
}

struct CountingListener final : ITrackingUpdatedListener {
  void OnTrackingUpdated() override { ++calls; }
  std::uint64_t calls = 0;
};

void ListenersCase(benchmark::State& state) {
  const std::vector<PoseFormatCase> formats = PoseFormatCases();
  const PoseFormatCase& format = FindCase(formats, "4 quaternion");
  std::vector<CountingListener> listeners(static_cast<std::size_t>(state.range(0)));
  AppendOnlyList<ITrackingUpdatedListener*> list;
  for (CountingListener& listener : listeners) list.Add(&listener);
  PosePublisher publisher(format);
  Run(state, Spacing::kInARow, format.payloads.size(), [&](std::size_t next) {
    publisher.Publish(format.payloads[next]);
    list.ForEach([](ITrackingUpdatedListener* listener) { listener->OnTrackingUpdated(); });
  });
}

void Register(const std::string& series, const std::string& side, auto... rest) {
  benchmark::RegisterBenchmark((series + "/" + side).c_str(), rest...);
}

void RegisterPoses(const std::vector<PoseFormatCase>& formats) {
  Register("pose", "nothing", NothingCase);
  Register("pose", "floor", PoseFloorCase, Spacing::kSettled);
  Register("poses in a row", "floor", PoseFloorCase, Spacing::kInARow);
  for (const PoseFormatCase& format : formats) {
    Register("pose", format.name, PoseCase, Spacing::kSettled, format);
    Register("poses in a row", format.name, PoseCase, Spacing::kInARow, format);
  }
  for (const FormulaCase& formula : FormulaCases()) {
    const PoseFormatCase& format = FindCase(formats, formula.name);
    const std::string series = "format " + formula.name + " beside its formula";
    Register(series, "nothing", NothingCase);
    Register(series, "floor", FormulaFloorCase, format, formula);
    Register(series, "driver", PoseCase, Spacing::kSettled, format);
  }
}

void RegisterControllers() {
  for (const bool changes : {false, true}) {
    const std::string series = changes ? "controller changed" : "controller unchanged";
    Register(series, "nothing", NothingCase);
    Register(series, "floor", ControllerFloorCase, changes);
    Register(series, "driver", ControllerRecordCase, changes);
  }
}

void RegisterScales() {
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
  ombrel::test::RegisterPoses(ombrel::test::PoseFormatCases());
  ombrel::test::RegisterControllers();
  ombrel::test::RegisterScales();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
