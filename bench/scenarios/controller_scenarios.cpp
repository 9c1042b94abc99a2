// Forty controllers, a thousand records a second in all.
#include <windows.h>

#include <array>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "base/clock.h"
#include "base/owned_handle.h"
#include "base/percentile.h"
#include "base/wait.h"
#include "companion/controller_record.h"
#include "frame_companion.h"

namespace bench::scenarios {

using namespace companion;

namespace {

using std::chrono::milliseconds;

constexpr std::uint32_t kControllers = 40;
constexpr int kRecordsASecond = 1000;

// A record whose number is in its position, which the runtime gets unchanged as long as a float holds it.
Bytes NumberedRecord(std::uint32_t controller, int number) {
  ControllerRecord record;
  record.controllerId = controller;
  record.pose[3] = static_cast<float>(number);
  record.pressedButtons = number % 2 == 0 ? 0 : ButtonBit(ControllerButton::Grip);
  return EncodeControllerUpdate(record);
}

// Follows the numbers as they reach the runtime. Any thread.
class NumbersSeen {
 public:
  void See(const PoseRecord& record) {
    if (record.device == 0) return;
    const std::lock_guard lock(mutex_);
    const auto number = static_cast<int>(record.pose.vecPosition[0]);
    int& last = last_.at(record.device);
    if (number != last + 1) ++faults_;
    last = number;
    ++seen_;
  }
  [[nodiscard]] int Seen() const {
    const std::lock_guard lock(mutex_);
    return seen_;
  }
  [[nodiscard]] int Faults() const {
    const std::lock_guard lock(mutex_);
    return faults_;
  }

 private:
  mutable std::mutex mutex_;
  std::array<int, kControllers + 1> last_{};
  int seen_ = 0;
  int faults_ = 0;
};

// Sends to each controller in turn, in bursts of one frame of the companion. Returns how many records went out.
int SendFor(ScenarioRun& run, PipeServer& pipes, int seconds) {
  const int rounds = seconds * kRecordsASecond / static_cast<int>(kControllers);
  const std::int64_t begin = NowTicks();
  for (int round = 1; round <= rounds; ++round) {
    Bytes burst;
    for (std::uint32_t controller = 0; controller < kControllers; ++controller) {
      const Bytes one = NumberedRecord(controller, round);
      burst.insert(burst.end(), one.begin(), one.end());
    }
    if (!run.Check(pipes.Send(burst), "the driver reads")) return 0;
    const double due = static_cast<double>(round) * kControllers / kRecordsASecond;
    SleepUntilTicks(begin + SecondsToTicks(due));
  }
  return rounds * static_cast<int>(kControllers);
}

void AnnounceAll(ScenarioRun& run, DriverLife& life, PipeServer& pipes) {
  for (std::uint32_t controller = 0; controller < kControllers; ++controller) {
    run.Check(pipes.Send(NumberedRecord(controller, 0)), "the driver reads");
  }
  const auto all = [&] { return life.runtime.Host().Added().size() == kControllers + 1; };
  run.Check(WaitUntil(all, milliseconds(kPatienceMs)), "all controllers are announced");
  life.ActivatePending();
}

// The time that RunFrame takes, and beside it that of something which is as long as the machine is as busy: a few calls
// of the system and the stand-in's own part in a frame.
class FrameTimes {
 public:
  void Measure(DriverLife& life) {
    const std::int64_t begin = NowTicks();
    life.RunFrame();
    const std::int64_t between = NowTicks();
    for (int call = 0; call < 4; ++call) {
      SetEvent(event_.Get());
      life.runtime.Journal().Append("floor", nlohmann::ordered_json::object());
    }
    const std::int64_t end = NowTicks();
    frames_.push_back(TicksToMilliseconds(between - begin));
    floors_.push_back(TicksToMilliseconds(end - between));
  }
  // Compares the first fifth with the last. Medians are those of the machine's other work as well: the frames that were
  // left alone tell, a tenth of all, beside the floor's.
  void Judge(ScenarioRun& run) const {
    const double first = Part(frames_, 0, kAlone), last = Part(frames_, 4, kAlone);
    const double firstFloor = Part(floors_, 0, kAlone), lastFloor = Part(floors_, 4, kAlone);
    run.Check(last / lastFloor <= 2 * first / firstFloor, "RunFrame takes no longer in the end than in the beginning");
    run.Figure(
        "%zu frames, RunFrame at first and at last: median %.3f and %.3f ms, left alone %.3f and %.3f ms, "
        "its floor then %.3f and %.3f ms",
        frames_.size(), Part(frames_, 0, 0.5), Part(frames_, 4, 0.5), first, last, firstFloor, lastFloor);
  }

 private:
  static constexpr double kAlone = 0.1;
  [[nodiscard]] static double Part(const std::vector<double>& values, int fifth, double share) {
    const auto length = static_cast<std::ptrdiff_t>(values.size() / 5);
    return Percentile({values.begin() + fifth * length, values.begin() + (fifth + 1) * length}, share);
  }
  OwnedHandle event_{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
  std::vector<double> frames_;
  std::vector<double> floors_;
};

void FortyControllers(ScenarioRun& run) {
  NumbersSeen numbers;
  DriverLife life(run);
  life.runtime.Poses().Listen([&](const PoseRecord& record) { numbers.See(record); });
  life.Start();
  PipeServer pipes;
  run.Check(pipes.Open() && pipes.WaitForConnection(kPatienceMs), "the driver connects");
  AnnounceAll(run, life, pipes);
  const auto container = FakeProperties::ContainerOf(life.runtime.Host().Added().back().index);

  std::atomic<bool> stop = false;
  FrameTimes times;
  std::thread server([&] {
    while (!stop) {
      life.runtime.Host().PushHaptic(container, 1, 0.01F, 100, 1);
      const std::int64_t begin = NowTicks();
      times.Measure(life);
      SleepUntilTicks(begin + SecondsToTicks(1.0 / 90));
    }
  });
  const int sent = SendFor(run, pipes, run.Rounds(60, 2));
  const bool allSeen = WaitUntil([&] { return numbers.Seen() == sent; }, milliseconds(kPatienceMs));
  stop = true;
  server.join();

  run.Check(allSeen, "no record is lost");
  run.Check(numbers.Faults() == 0, "no record is out of order");
  run.Figure("%d records sent, %d seen, %d out of order", sent, numbers.Seen(), numbers.Faults());
  times.Judge(run);
}

constexpr std::array kScenarios{Scenario{"forty_controllers", FortyControllers}};

}  // namespace

std::span<const Scenario> ControllerScenarios() { return kScenarios; }

}  // namespace bench::scenarios
