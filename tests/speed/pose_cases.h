#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "floor/formula_floor.h"
#include "link/head_pose_tracker.h"
#include "platform/seqlock.h"

namespace ombrel::test {

using Payload = std::vector<std::byte>;

// One pose format, with several poses in it to take turns with.
struct PoseFormatCase {
  const char* name;
  double goal;     // times the floor
  Payload before;  // a pose that was there, unless empty
  std::vector<Payload> payloads;
};

[[nodiscard]] std::vector<PoseFormatCase> PoseFormatCases();
[[nodiscard]] const PoseFormatCase& FindCase(const std::vector<PoseFormatCase>& formats, const std::string& name);

// Records for the floor: as many, whole ones.
[[nodiscard]] std::vector<Payload> FloorRecords();

// A format whose formula costs more than all else, beside a floor that has it too.
struct FormulaCase {
  std::string name;  // of its PoseFormatCase
  void (*publish)(bench::floor::FormulaFloor& floor, const Payload& payload);
};

[[nodiscard]] std::vector<FormulaCase> FormulaCases();

// The floor as it is when the format's first pose comes.
[[nodiscard]] bench::floor::FormulaFloor FloorBefore(const PoseFormatCase& format);

// What the link does with a TrackingUpdate's payload until the record is published. For one thread.
class PosePublisher {
 public:
  explicit PosePublisher(const PoseFormatCase& format) {
    if (!format.before.empty()) Publish(format.before);
  }
  void Publish(std::span<const std::byte> payload) {
    if (tracker_.Apply(payload, ++time_) == HeadPoseTracker::Outcome::kPublished) published_.Store(tracker_.Record());
  }
  [[nodiscard]] LinkPoseRecord Published() const { return published_.Load(); }

 private:
  std::uint64_t time_ = 0;
  HeadPoseTracker tracker_{0};
  SeqLock<LinkPoseRecord> published_;
};

}  // namespace ombrel::test
