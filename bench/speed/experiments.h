#pragma once

#include <filesystem>
#include <vector>

#include "series.h"

namespace bench::speed {

struct Plan {
  std::filesystem::path library;  // the driver's DLL
  bool isShort = false;           // a few seconds in all, for a test
};

// Each measures the driver on the calling thread; where there is a baseline, interleaved with it in blocks, so that load
// and clock frequency drift for both alike. Throws std::runtime_error when the driver or the baseline cannot be had.

// From before a message is written until a pose, or the last input of a record, has come; in microseconds. The baseline
// reads as many bytes from pipes of its own.
[[nodiscard]] std::vector<Series> MeasureLatency(const Plan& plan);
// Processor time of the driver's reader thread from one pose call to the next, when messages come by the pipeful: for
// each format of a head pose, and for records of more and more controllers; in nanoseconds.
[[nodiscard]] std::vector<Series> MeasureFormats(const Plan& plan);
[[nodiscard]] std::vector<Series> MeasureControllers(const Plan& plan);
// Processor time of the calling thread for one frame, in microseconds; and the driver alone with more layers and more
// textures.
[[nodiscard]] std::vector<Series> MeasureLayerFrames(const Plan& plan);
[[nodiscard]] std::vector<Series> MeasureTextureFrames(const Plan& plan);
// For each rate, by how many milliseconds a pacing wait ends too late or too early, and the processor time that it
// takes.
[[nodiscard]] std::vector<Series> MeasurePacing(const Plan& plan);
// From before the library is loaded until Init has returned: the driver's own part, and Direct3D's to make its factory
// and the device; in milliseconds.
[[nodiscard]] std::vector<Series> MeasureStarts(const Plan& plan);

}  // namespace bench::speed
