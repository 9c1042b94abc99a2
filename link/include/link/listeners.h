#pragma once

#include <cstdint>

#include "link/wire.h"

namespace ombrel {

// What the link tells the rest of the driver. Listeners are called in the order in which they were added, must outlive
// the link's threads, and must not throw. All but the connection's are called on the reader thread.

class ITrackingUpdatedListener {
 public:
  // After each TrackingUpdate that was taken in.
  virtual void OnTrackingUpdated() = 0;

 protected:
  ~ITrackingUpdatedListener() = default;
};

class IFramerateUpdatedListener {
 public:
  virtual void OnFramerateUpdated(std::uint32_t framesPerSecond) = 0;

 protected:
  ~IFramerateUpdatedListener() = default;
};

class IControllerUpdatedListener {
 public:
  // Each listener gets a copy of its own, which is gone when it returns.
  virtual void OnControllerUpdated(const ControllerUpdate* record) = 0;

 protected:
  ~IControllerUpdatedListener() = default;
};

class IConnectionStateChangedListener {
 public:
  // On the connect thread, when the connection came up or went down. A drop is reported before the link is opened anew.
  virtual void OnConnectionStateChanged() = 0;

 protected:
  ~IConnectionStateChangedListener() = default;
};

}  // namespace ombrel
