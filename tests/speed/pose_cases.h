#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "link/head_pose_tracker.h"
#include "platform/seqlock.h"

namespace ombrel::test {

using Payload = std::vector<std::byte>;

// One pose format, with several poses in it to take turns with.
struct PoseFormatCase {
  const char* name;
  double goal;  // times the floor
  // The format itself asks for sines, or for a filter, and so for many times the floor whatever else is done.
  bool isMostlyArithmetic;
  std::vector<Payload> payloads;
};

[[nodiscard]] std::vector<PoseFormatCase> PoseFormatCases();

// Records for the floor: as many, whole ones.
[[nodiscard]] std::vector<Payload> FloorRecords();

// What the link does with a TrackingUpdate's payload until the record is published. For one thread.
class PosePublisher {
 public:
  void Publish(std::span<const std::byte> payload) {
    if (tracker_.Apply(payload, ++time_) == HeadPoseTracker::Outcome::kPublished)
      published_.StoreAlone(tracker_.Record());
  }
  [[nodiscard]] LinkPoseRecord Published() const { return published_.Load(); }

 private:
  std::uint64_t time_ = 0;
  HeadPoseTracker tracker_{0};
  SeqLock<LinkPoseRecord> published_;
};

}  // namespace ombrel::test
