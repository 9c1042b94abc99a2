#include <functional>

#include "arrival.h"
#include "companion/tracking_update.h"
#include "driver_under_test.h"
#include "experiments.h"
#include "floor_link.h"

namespace bench::speed {
namespace {

constexpr std::size_t kLargeBuffer = 1 << 20;

struct Burst {
  const char* name;
  std::size_t poses;     // in all
  std::size_t perWrite;  // in one write
  int blocks;
};

// Notes the arrival of the last of what is expected. The reader's thread counts.
class Countdown {
 public:
  explicit Countdown(Arrival& arrival) : arrival_(arrival) {}
  void Expect(std::size_t count) {
    left_ = count;
    arrival_.Expect();
  }
  void Take(std::size_t count) {
    if ((left_ -= count) == 0) arrival_.Note();
  }

 private:
  Arrival& arrival_;
  std::atomic<std::size_t> left_ = 0;
};

using Send = std::function<void(std::span<const std::uint8_t>)>;

// Poses a second.
double Rate(const Burst& burst, Arrival& arrival, const Bytes& piece, const Send& send) {
  const std::int64_t begin = floor::WallNanoseconds();
  for (std::size_t sent = 0; sent < burst.poses; sent += burst.perWrite) send(piece);
  return static_cast<double>(burst.poses) * 1e9 / static_cast<double>(arrival.Wait() - begin);
}

Bytes Piece(std::size_t poses) {
  Bytes piece;
  for (std::size_t i = 0; i < poses; ++i) {
    const Bytes pose = EncodeQuaternionAndPosition({}, {0.001F * static_cast<float>(i), 1.7F, 0.0F});
    piece.insert(piece.end(), pose.begin(), pose.end());
  }
  return piece;
}

Series MeasureBurst(DriverUnderTest& driver, const Burst& burst) {
  Arrival arrival;
  Countdown poses(arrival), bytes(arrival);
  driver.runtime.host.onPose = [&](std::uint32_t) { poses.Take(1); };
  FloorLink bare(kLargeBuffer, [&](std::size_t count) { bytes.Take(count); });
  const Bytes piece = Piece(burst.perWrite);
  Series series{burst.name, "poses/s", {}};
  for (int i = 0; i < burst.blocks; ++i) {
    bytes.Expect(piece.size() * burst.poses / burst.perWrite);
    series.Add(kFloor, {Rate(burst, arrival, piece, [&](auto message) { bare.Send(message); })});
    poses.Expect(burst.poses);
    series.Add(kDriver, {Rate(burst, arrival, piece, [&](auto message) { driver.Send(message); })});
  }
  driver.runtime.host.onPose = {};
  return series;
}

}  // namespace

std::vector<Series> MeasureBursts(const Plan& plan) {
  DriverUnderTest driver(plan.library, Graphics::kNone);
  if (plan.isShort) return {MeasureBurst(driver, {"burst", 2'000, 1, 3})};
  return {MeasureBurst(driver, {"burst", 100'000, 1, 3}), MeasureBurst(driver, {"burst in pieces", 96'000, 1'600, 20})};
}

}  // namespace bench::speed
