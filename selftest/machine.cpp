#include "machine.h"

#include <cstdio>
#include <string_view>

#include "doctor/checks.h"

namespace ombrel::selftest {
namespace {

constexpr const char* kMachineGroup = "Machine";
// The driver's frames are timed to a millisecond.
constexpr double kFineTimerMs = 1.1;
constexpr double kFineSleepMs = 3.0;

std::string Milliseconds(double ms) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.2f ms", ms);
  return text;
}

std::string WhyUsed(const MachineFacts& machine) {
  const doctor::Adapter* used = doctor::UsedAdapter(machine.adapters);
  if (used == nullptr) return "there is none";
  return used->isPreferred ? "its description is the one that the driver prefers" : "it is the system's first";
}

Verdict JudgeAdapter(const MachineFacts& machine) {
  const doctor::Adapter* used = doctor::UsedAdapter(machine.adapters);
  Verdict verdict{kMachineGroup,
                  "Graphics adapter",
                  GoodIf(used != nullptr),
                  "an adapter",
                  "none",
                  "The driver draws with it. Without one there is no headset."};
  if (used == nullptr) return verdict;
  verdict.found = used->name + ", " + WhyUsed(machine);
  if (!DrawsInSoftware(machine)) return verdict;
  verdict.result = Result::kUnknown;
  verdict.expected = "a graphics card";
  verdict.found += " (a software rasterizer)";
  verdict.meaning = "The processor draws. That all is drawn is tested here, how fast a graphics card does it is not.";
  return verdict;
}

Verdict JudgeTimer(const MachineFacts& machine) {
  const bool isFine = machine.timerMs <= kFineTimerMs && machine.sleptMs <= kFineSleepMs;
  // Other work of a machine without a graphics card holds up its timers, too.
  const Result otherwise = DrawsInSoftware(machine) ? Result::kUnknown : Result::kBad;
  return {kMachineGroup,
          "Timer",
          isFine ? Result::kGood : otherwise,
          "1 ms, and waits of one millisecond that end within 3 ms",
          Milliseconds(machine.timerMs) + ", waits of up to " + Milliseconds(machine.sleptMs),
          "Frames begin when a wait ends. A coarse timer shows as judder."};
}

}  // namespace

bool DrawsInSoftware(const MachineFacts& machine) {
  const doctor::Adapter* used = doctor::UsedAdapter(machine.adapters);
  if (used == nullptr) return true;
  const std::string drawsWith = used->name + machine.openGl;
  const auto names = [&](std::string_view part) { return drawsWith.find(part) != std::string::npos; };
  return used->isSoftware || names("llvmpipe") || names("softpipe") || names("Microsoft Basic Render");
}

std::vector<Verdict> Judge(const MachineFacts& machine) { return {JudgeAdapter(machine), JudgeTimer(machine)}; }

Json SectionOf(const MachineFacts& machine) {
  Json rows = Json::array();
  for (const doctor::Adapter& each : machine.adapters) {
    rows.push_back({each.name, each.luid, each.driverVersion.empty() ? "not told" : each.driverVersion,
                    std::to_string(each.memoryMiB) + " MiB", each.isSoftware ? "software" : "hardware"});
  }
  Json facts = Json::array({{"Windows", machine.windows},
                            {"Processor", machine.processor + ", " + std::to_string(machine.processors) + " threads"},
                            {"Memory", std::to_string(machine.memoryMiB) + " MiB"},
                            {"Finest timer", Milliseconds(machine.timerMs)},
                            {"Longest wait of one millisecond", Milliseconds(machine.sleptMs)},
                            {"Power plan", machine.powerPlan.empty() ? "none" : machine.powerPlan},
                            {"Adapter that the driver takes", WhyUsed(machine)}});
  if (machine.isWine) facts.push_back({"OpenGL, by which Wine draws", machine.openGl});
  return {{"title", "The machine"},
          {"tables", Json::array({Table("What was looked at", {"what", "value"}, std::move(facts)),
                                  Table("Graphics adapters, in the order of the system",
                                        {"name", "LUID", "driver", "own memory", "kind"}, std::move(rows))})}};
}

}  // namespace ombrel::selftest
