#pragma once

#include <filesystem>
#include <vector>

#include "speed/series.h"

namespace bench::speed {

struct Plan {
  std::filesystem::path library;   // the driver's DLL
  std::filesystem::path emptyDll;  // one that does nothing
  bool isShort = false;            // a few seconds in all, for a test
};

// Each measures the driver and its floor in turns, in blocks, on the calling thread. Throws std::runtime_error when the
// driver or the floor cannot be had.

// From before a message is written until a pose, or the last input of a record, has come; in microseconds. The floor
// reads the same number of bytes from pipes of its own.
[[nodiscard]] std::vector<Series> MeasureMessages(const Plan& plan);
// Poses a second, when many are written one after another, and in large pieces.
[[nodiscard]] std::vector<Series> MeasureBursts(const Plan& plan);
// Processor time of the calling thread for one frame, in microseconds; and the driver alone with more layers and more
// textures.
[[nodiscard]] std::vector<Series> MeasureLayerFrames(const Plan& plan);
[[nodiscard]] std::vector<Series> MeasureTextureFrames(const Plan& plan);
// For each rate, by how many milliseconds a pacing wait ends too late (below 0: too early), and the processor time that
// it takes.
[[nodiscard]] std::vector<Series> MeasurePacing(const Plan& plan);
// From before the library is loaded until Init has returned, less what Direct3D needs to make its factory and the
// device; in milliseconds.
[[nodiscard]] std::vector<Series> MeasureStarts(const Plan& plan);

}  // namespace bench::speed
