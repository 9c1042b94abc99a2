#pragma once

#include <array>
#include <optional>

#include "support/reference_math.h"

// The rotations of docs/protocol.md in double precision, where single precision comes near enough to be compared: none
// for numbers that are huge or not numbers, close to where a rule takes another branch, or of next to no length.
namespace ombrel::test {

// Three rows of four, as they stand in a message.
using PageMatrix = std::array<float, 12>;

[[nodiscard]] std::optional<Quat> RotationOfMatrix(const PageMatrix& m);                 // formats 0 and unknown ones
[[nodiscard]] std::optional<Quat> RotationOfPoseMatrix(const PageMatrix& m);             // format 6
[[nodiscard]] std::optional<Quat> RotationOfAngles(const std::array<float, 3>& angles);  // format 3
[[nodiscard]] std::optional<Quat> RotationOf(const std::array<float, 4>& xyzw);          // format 4

// What recentering at this orientation puts on the left of every one to come.
[[nodiscard]] std::optional<Quat> RecenteringAt(const Quat& orientation);

}  // namespace ombrel::test
