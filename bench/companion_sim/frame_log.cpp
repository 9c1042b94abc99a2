#include "frame_log.h"

#include "base/clock.h"
#include "base/matrix_csv.h"

namespace bench {

using namespace companion;

namespace {

double Milliseconds(std::int64_t ticks) { return TicksToSeconds(ticks) * 1000; }

}  // namespace

FrameLog::FrameLog(const std::filesystem::path& csv)
    : csv_(OpenMatrixCsv(
          csv, "frame,connection,texture,time_s,qpc,qpc_frequency,matched,pose,pose_qpc,pose_age_ms,difference", 4)) {}

void FrameLog::Add(std::uint64_t number, std::uint32_t connection, const FrameInfo& frame,
                   const std::optional<PoseMatch>& match) {
  if (Frames() == 0) firstTicks_ = frame.heldTicks;
  lastTicks_ = frame.heldTicks;
  ++CounterOf(frame, match.has_value());
  // Number 0 stands for the pose before any was sent, which has no time.
  if (match && match->sent.number > 0) poseAgesMs_.push_back(Milliseconds(frame.heldTicks - match->sent.sentTicks));
  if (csv_.is_open()) WriteLine(number, connection, frame, match);
}

std::uint64_t& FrameLog::CounterOf(const FrameInfo& frame, bool matches) {
  if (matches) return matching_;
  if (frame.slot == PoseSlot{}) return withoutPose_;
  return matching_ == 0 ? unknown_ : mismatching_;
}

void FrameLog::WriteLine(std::uint64_t number, std::uint32_t connection, const FrameInfo& frame,
                         const std::optional<PoseMatch>& match) {
  csv_ << number << ',' << connection << ',' << frame.texture << ',' << TicksToSeconds(frame.heldTicks - firstTicks_)
       << ',' << frame.heldTicks << ',' << TicksPerSecond() << ',';
  if (match) {
    csv_ << "1," << match->sent.number << ',' << match->sent.sentTicks << ','
         << Milliseconds(frame.heldTicks - match->sent.sentTicks) << ',' << match->difference;
  } else {
    csv_ << "0,,,,";
  }
  EndLine(csv_, frame.slot);
}

double FrameLog::SecondsBetweenFirstAndLast() const { return TicksToSeconds(lastTicks_ - firstTicks_); }

}  // namespace bench
