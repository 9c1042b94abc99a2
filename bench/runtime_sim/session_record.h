#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "latency.h"

namespace bench {

/// What both ends of a session wrote into its folder, under the names that tools/session.sh gives.
struct SessionRecord {
  nlohmann::json runtime;                  ///< runtime_sim's summary
  nlohmann::json companion;                ///< companion_sim's summary
  std::int64_t frequency = 0;              ///< ticks in a second
  std::vector<TimedPose> sent;             ///< by the companion
  std::vector<TimedPose> arrived;          ///< at the runtime
  std::vector<TimedPose> presented;        ///< frames, at the call of Present
  std::vector<TimedPose> held;             ///< frames, when the companion held their texture, with the pose beside them
  std::vector<std::int64_t> dropped;       ///< display intervals without a frame before each that was presented
  std::vector<std::int64_t> presentTicks;  ///< how long each call of Present took
  std::vector<std::int64_t> poseAgeTicks;  ///< from a pose's arrival to the rendering with it
  std::vector<std::int64_t> poseToFrameTicks;  ///< from a pose's sending to the holding of a frame rendered with it
  std::string contactSheet;                    ///< a PNG file's bytes; empty when no picture was taken
};

/// Throws std::runtime_error or a JSON exception when a file is missing or cannot be read.
[[nodiscard]] SessionRecord ReadSession(const std::filesystem::path& folder);

}  // namespace bench
