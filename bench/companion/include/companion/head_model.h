#pragma once

#include "companion/messages.h"
#include "companion/rotation.h"
#include "companion/tracking_update.h"

namespace bench {

// Follows the angular velocities of pose format 2 the way the protocol says, so that the companion can steer it.
// Accelerometer corrections are followed as well; magnetometer readings are not.
class SensorFollower {
 public:
  // Readings come 76 times a second as far as the arithmetic is concerned, however often they are sent.
  static constexpr float kSampleRate = 76.0F;

  void Step(const SensorReadings& readings);
  Quat Orientation() const { return orientation_; }

  // The gyroscope readings that turn the present orientation into the wanted one in one step.
  SensorReadings TurnTo(const Quat& wanted) const;

 private:
  Quat orientation_;
};

// What the protocol says the driver makes of the messages that it was sent. For one thread.
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
  Position position_{0, 1.7F, 0};
  std::uint32_t trackingState_ = 0;
  SensorFollower sensors_;
  PoseMatrix published_ = ToPoseMatrix(Quat{}, Position{0, 1.7F, 0});
};

}  // namespace bench
