#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "call_watch.h"

// Other compilers do not look at the arguments.
#ifdef __GNUC__
#define PRINTF_STYLE __attribute__((format(gnu_printf, 2, 3)))
#else
#define PRINTF_STYLE
#endif

namespace bench::scenarios {

struct Count {
  std::string what;
  std::int64_t before, after;
};

// What a scenario is given, and where it says what it saw.
class ScenarioRun {
 public:
  ScenarioRun(CallWatch& watch, bool longForm, std::string library, std::string program)
      : calls(watch), isLong(longForm), driver(std::move(library)), companion(std::move(program)) {}

  // Part of the one line of figures, printf-style.
  void Figure(const char* format, ...) PRINTF_STYLE;
  // Fails the scenario unless `holds`; `what` says what should have been.
  bool Check(bool holds, const std::string& what);
  // A check that could not be made here, and why.
  void Skip(const std::string& what) { skipped_.push_back(what); }
  // Something that is counted, at the beginning and at the end.
  void Compare(const std::string& what, std::int64_t before, std::int64_t after) {
    counts_.push_back({what, before, after});
  }
  // The number of rounds in the long and in the short form.
  [[nodiscard]] int Rounds(int inLongForm, int inShortForm) const { return isLong ? inLongForm : inShortForm; }

  [[nodiscard]] const std::string& Figures() const { return figures_; }
  [[nodiscard]] const std::vector<std::string>& Failures() const { return failures_; }
  [[nodiscard]] const std::vector<std::string>& Skipped() const { return skipped_; }
  [[nodiscard]] const std::vector<Count>& Counts() const { return counts_; }

  CallWatch& calls;
  const bool isLong;
  const std::string driver;     // the library
  const std::string companion;  // the program "Ombrel.exe"

 private:
  std::string figures_;
  std::vector<std::string> failures_;
  std::vector<std::string> skipped_;
  std::vector<Count> counts_;
};

struct Scenario {
  const char* name;
  void (*play)(ScenarioRun&);
  bool usesSharedLife = false;      // DriverLife::Shared
  bool answersForDirect3D = false;  // by an observer, which Direct3D's own sharing has not
};

// In the order in which they are played: see README.md for what each does.
[[nodiscard]] std::vector<Scenario> AllScenarios();

// The groups, one for each file.
[[nodiscard]] std::span<const Scenario> KillScenarios();
[[nodiscard]] std::span<const Scenario> PipeScenarios();
[[nodiscard]] std::span<const Scenario> GraphicsScenarios();
[[nodiscard]] std::span<const Scenario> MemoryScenarios();
[[nodiscard]] std::span<const Scenario> RateScenarios();
[[nodiscard]] std::span<const Scenario> ActivationScenarios();
[[nodiscard]] std::span<const Scenario> CleanupScenarios();
[[nodiscard]] std::span<const Scenario> GrowthScenarios();
[[nodiscard]] std::span<const Scenario> ControllerScenarios();

}  // namespace bench::scenarios
