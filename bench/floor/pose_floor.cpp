#include "floor/pose_floor.h"

#include <cmath>
#include <cstring>

namespace bench::floor {
namespace {

using Quaternion = std::array<float, 4>;  // x, y, z, w

Quaternion NormalisedProduct(const Quaternion& p, const Quaternion& s) {
  const Quaternion q{
      p[3] * s[0] + p[0] * s[3] + p[1] * s[2] - p[2] * s[1], p[3] * s[1] - p[0] * s[2] + p[1] * s[3] + p[2] * s[0],
      p[3] * s[2] + p[0] * s[1] - p[1] * s[0] + p[2] * s[3], p[3] * s[3] - p[0] * s[0] - p[1] * s[1] - p[2] * s[2]};
  const float length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  return {q[0] / length, q[1] / length, q[2] / length, q[3] / length};
}

}  // namespace

void PoseFloor::Publish(std::span<const std::byte, sizeof(Record)> bytes) {
  std::memcpy(&working_, bytes.data(), sizeof(Record));
  Publish();
}

void PoseFloor::Publish(const std::array<float, 4>& orientation) {
  working_.rawOrientation = orientation;
  Publish();
}

void PoseFloor::Publish() {
  working_.orientation = NormalisedProduct(offset_, working_.rawOrientation);
  published_ = working_;
}

}  // namespace bench::floor
