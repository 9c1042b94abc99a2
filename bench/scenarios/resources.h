#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "scenario.h"

namespace bench::scenarios {

// What this process holds at a moment. Its stand-ins are in here too: compare moments in which they are alike.
struct Held {
  std::int64_t threads = 0;
  std::int64_t handles = 0;       // of the kernel, pipes' and threads' among them
  std::int64_t graphics = 0;      // Direct3D objects of the driver's devices that are alive
  std::int64_t privateBytes = 0;  // memory that only this process has
  std::int64_t driverBlocks =
      0;  // of the driver's heap, less one for each swap set ever made: see DriverLife::SetsMade
};

// The driver's blocks are counted from the last call of WatchHeap on.
[[nodiscard]] Held ReadHeld();

// Counts what the driver allocates and frees. For DriverLife, as what it calls after loading.
void WatchHeap(void* module);

// Samples over many rounds, and whether they grow. The first quarter of the rounds is warm-up, and at least one round.
class Growth {
 public:
  explicit Growth(int rounds) : rounds_(rounds) {}

  // Called after each round, from 1; reads every so often.
  void Sample(int round);
  // Fails the run if threads, handles, Direct3D objects or the driver's blocks at their lowest are more in the second
  // half than in the first, or if the process' memory is so by over `allowedBytes`: what goes in its own time lets them
  // swing. Prints warm-up value, end value and slope.
  void Judge(ScenarioRun& run, std::int64_t allowedBytes) const;
  // How fast the process' memory grows, over all samples.
  [[nodiscard]] double BytesPerRound() const;

 private:
  struct Point {
    int round;
    Held held;
  };
  // By how much the lowest value of the second half is above that of the first.
  [[nodiscard]] std::int64_t Rise(std::int64_t Held::*value) const;

  const int rounds_;
  std::vector<Point> points_;  // after warm-up
};

// Plays and samples rounds until they are done, something failed, or they take too long for a soak of an hour; then it
// says so.
void PlayRounds(ScenarioRun& run, Growth& growth, int rounds, const std::function<void()>& play);

}  // namespace bench::scenarios
