#include "driver_link.h"

#include "base/clock.h"
#include "base/matrix_csv.h"

namespace bench {

using namespace companion;

namespace {

constexpr std::int64_t kHistorySeconds = 10;
// Far below what an eye sees, far above what a float loses at this size.
constexpr float kTagStep = 2e-6F;
constexpr std::uint64_t kTags = 10000;
constexpr float kTolerance = 1e-3F;  // of each float of a pose

}  // namespace

DriverLink::DriverLink(const std::filesystem::path& posesCsv)
    : history_(NowTicks(), kHistorySeconds * TicksPerSecond()),
      posesCsv_(OpenMatrixCsv(posesCsv, "pose,qpc,qpc_frequency", 3)) {}

bool DriverLink::Send(std::span<const std::uint8_t> message) {
  const std::scoped_lock order(orderMutex_);
  return SendRemembered(message);
}

bool DriverLink::SendHead(PoseFormat format, const YawPitch& angles) {
  const std::scoped_lock order(orderMutex_);
  std::vector<Bytes> messages;
  {
    const std::scoped_lock lock(mutex_);
    const Position tagged{0, 1.7F, kTagStep * static_cast<float>(headPoses_++ % kTags)};
    messages = EncodeHeadPose(format, angles, tagged, model_);
  }
  for (const Bytes& message : messages) {
    if (!SendRemembered(message)) return false;
  }
  return true;
}

bool DriverLink::SendRemembered(std::span<const std::uint8_t> message) {
  if (!pipes_.Connected()) return false;
  {
    // Before the write, so that no frame can come back with a pose that is not known yet.
    const std::scoped_lock lock(mutex_);
    const std::int64_t now = NowTicks();
    if (model_.Apply(message)) {
      history_.Add(now, model_.Published());
      LogPose(now);
    }
  }
  return pipes_.Send(message);
}

void DriverLink::LogPose(std::int64_t ticks) {
  if (!posesCsv_.is_open()) return;
  posesCsv_ << history_.LastNumber() << ',' << ticks << ',' << TicksPerSecond();
  EndLine(posesCsv_, model_.Published());
}

std::optional<PoseMatch> DriverLink::Match(const PoseSlot& slot) const {
  const std::scoped_lock lock(mutex_);
  return history_.Match(slot, kTolerance);
}

std::uint64_t DriverLink::PosesSent() const {
  const std::scoped_lock lock(mutex_);
  return history_.LastNumber();
}

PoseMatrix DriverLink::PublishedPose() const {
  const std::scoped_lock lock(mutex_);
  return model_.Published();
}

}  // namespace bench
