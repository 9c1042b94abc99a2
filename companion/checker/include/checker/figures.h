#pragma once

#include <cstddef>
#include <vector>

#include "checker/session.h"

namespace checker {

// What a session came to. Times in milliseconds, unsorted.
struct Figures {
  double seconds = 0;  // with a connection
  std::size_t connections = 0;
  std::size_t poses = 0;
  std::size_t otherMessages = 0;
  std::size_t controllers = 0;
  std::size_t pulses = 0;
  std::size_t framesHandedOver = 0;  // by the driver
  std::size_t framesRead = 0;        // by the companion, each once
  std::size_t announcements = 0;     // of textures
  std::size_t foundHeld = 0;         // the driver came to a texture that the companion held
  std::size_t driverTimeouts = 0;    // it waited for one in vain

  std::vector<double> poseIntervals;
  std::vector<double> handOffs;  // from the driver's release to the companion's acquire, of frames that were read
  std::vector<double> holds;     // of the companion
  std::vector<double> readings;  // from a message's writing until the companion had read it

  [[nodiscard]] double PosesPerSecond() const { return seconds > 0 ? static_cast<double>(poses) / seconds : 0; }
  [[nodiscard]] double FramesPerSecond() const { return seconds > 0 ? static_cast<double>(framesRead) / seconds : 0; }
};

[[nodiscard]] Figures FiguresOf(const Session& session);

}  // namespace checker
