#pragma once

#include "bare_link.h"
#include "resources.h"
#include "scenario.h"

namespace bench::scenarios {

// What the scenarios of growth are held against: the same rounds with the system's and Direct3D's calls alone, in the
// same process and with the same companion, but without the driver. What grows there too is not the driver's.

// Rounds of a new companion each, which is connected when the round is sampled.
[[nodiscard]] Growth PlayBareConnections(ScenarioRun& run, BareParts parts, int rounds);
// Rounds in which a library that does nothing is loaded and unloaded, and a device and a whole session come and go.
[[nodiscard]] Growth PlayBareLives(ScenarioRun& run, int rounds);

// Fails the long form if the process' memory grows faster with the driver than without it, by over `marginBytes` a
// round. The short form has too few rounds to tell, and prints the two figures only.
void JudgeBeside(ScenarioRun& run, const Growth& driver, const Growth& control, double marginBytes);

// Frames of one layer after which Direct3D under Wine has all the memory that it ever takes for the constants of layers.
[[nodiscard]] int FramesToSettle(const ScenarioRun& run);

}  // namespace bench::scenarios
