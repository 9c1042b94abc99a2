#pragma once

#include "companion/messages.h"
#include "companion/rotation.h"
#include "companion/tracking_update.h"

namespace companion {

// The orientation that the driver's filter makes of the readings of pose format 2. Accelerometer corrections are
// followed, too; magnetometer readings are not. For one thread.
class SensorFollower {
 public:
  void Step(const SensorReadings& readings);
  Quat Orientation() const { return orientation_; }

 private:
  Quat orientation_;
};

// What the driver makes of the messages that it was sent, so that a companion knows the pose that it publishes: what a
// recentering turned, what a matrix lost by rounding. For one thread.
class HeadModel {
 public:
  // Takes one message as sent, header included. True when it made the driver publish a pose.
  bool Apply(std::span<const std::uint8_t> message);

  // The pose that the runtime has now: recentred orientation and position. Identity at a height of 1.7 m at first.
  PoseMatrix Published() const { return published_; }
  std::uint32_t TrackingState() const { return trackingState_; }
  const SensorFollower& Sensors() const { return sensors_; }

 private:
  bool ApplyTracking(const TrackingUpdate& update);
  void Take(const TrackingUpdate& update);
  void Publish();

  Quat raw_;
  Quat offset_;
  Position position_{0, OMBREL_DEFAULT_HEAD_HEIGHT, 0};
  std::uint32_t trackingState_ = OMBREL_TRACKING;
  SensorFollower sensors_;
  PoseMatrix published_ = ToPoseMatrix(Quat{}, Position{0, OMBREL_DEFAULT_HEAD_HEIGHT, 0});
};

}  // namespace companion
