#include "floor/formula_floor.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>

namespace bench::floor {
namespace {

using Quaternion = std::array<float, 4>;  // x, y, z, w
using Readings = std::array<float, 9>;

template <typename Value>
Value Read(std::span<const std::byte, FormulaFloor::kBytes> bytes) {
  Value value;
  std::memcpy(&value, bytes.data(), sizeof(value));
  return value;
}

Quaternion FromEulerAngles(float a, float b, float c) {
  const double ca = std::cos(a * 0.5F), sa = std::sin(a * 0.5F), cb = std::cos(b * 0.5F), sb = std::sin(b * 0.5F);
  const double cc = std::cos(c * 0.5F), sc = std::sin(c * 0.5F);
  return {static_cast<float>(cc * cb * sa + sc * sb * ca), static_cast<float>(cc * sb * ca + sc * cb * sa),
          static_cast<float>(sc * cb * ca - cc * sb * sa), static_cast<float>(cc * cb * ca - sc * sb * sa)};
}

float InverseRoot(float x) {
  const float y = std::bit_cast<float>(0x5F3759DFU - (std::bit_cast<std::uint32_t>(x) >> 1));
  return y * (1.5F - 0.5F * x * y * y);
}

Quaternion ByTrace(float w, float x, float y, float z) {
  const float m00 = 1 - 2 * (y * y + z * z), m11 = 1 - 2 * (x * x + z * z), m22 = 1 - 2 * (x * x + y * y);
  const float s = 2 * std::sqrt(m00 + m11 + m22 + 1);
  return {(2 * (y * z + w * x) - 2 * (y * z - w * x)) / s, (2 * (x * z + w * y) - 2 * (x * z - w * y)) / s,
          (2 * (x * y + w * z) - 2 * (x * y - w * z)) / s, s / 4};
}

// What the field that was measured, ahead of it the readings, turns the orientation back by.
std::array<float, 3> Correction(const Quaternion& q, const Readings& r) {
  const auto [q0, q1, q2, q3] = q;
  const float byGravity = InverseRoot(r[3] * r[3] + r[4] * r[4] + r[5] * r[5]);
  const float ax = r[3] * byGravity, ay = r[4] * byGravity, az = r[5] * byGravity;
  const float byField = InverseRoot(r[6] * r[6] + r[7] * r[7] + r[8] * r[8]);
  const float mx = r[6] * byField, my = r[7] * byField, mz = r[8] * byField;
  const float hx = 2 * (mx * (0.5F - q2 * q2 - q3 * q3) + my * (q1 * q2 - q0 * q3) + mz * (q1 * q3 + q0 * q2));
  const float hy = 2 * (mx * (q1 * q2 + q0 * q3) + my * (0.5F - q1 * q1 - q3 * q3) + mz * (q2 * q3 - q0 * q1));
  const float bx = std::sqrt(hx * hx + hy * hy);
  const float bz = 2 * (mx * (q1 * q3 - q0 * q2) + my * (q2 * q3 + q0 * q1) + mz * (0.5F - q1 * q1 - q2 * q2));
  const float vx = q1 * q3 - q0 * q2, vy = q0 * q1 + q2 * q3, vz = q0 * q0 - 0.5F + q3 * q3;
  const float wx = bx * (0.5F - q2 * q2 - q3 * q3) + bz * (q1 * q3 - q0 * q2);
  const float wy = bx * (q1 * q2 - q0 * q3) + bz * (q0 * q1 + q2 * q3);
  const float wz = bx * (q0 * q2 + q1 * q3) + bz * (0.5F - q1 * q1 - q2 * q2);
  return {ay * vz - az * vy + (my * wz - mz * wy), az * vx - ax * vz + (mz * wx - mx * wz),
          ax * vy - ay * vx + (mx * wy - my * wx)};
}

Quaternion Step(const Quaternion& q, const Readings& r) {
  constexpr float kHalfStep = 0.5F / 76.0F;
  const auto [ex, ey, ez] = Correction(q, r);
  const auto [q0, q1, q2, q3] = q;
  const float gx = (r[0] + ex) * kHalfStep, gy = (r[1] + ey) * kHalfStep, gz = (r[2] + ez) * kHalfStep;
  const float w = q0 + (-q1 * gx - q2 * gy - q3 * gz), x = q1 + (q0 * gx + q2 * gz - q3 * gy);
  const float y = q2 + (q0 * gy - q1 * gz + q3 * gx), z = q3 + (q0 * gz + q1 * gy - q2 * gx);
  const float scale = InverseRoot(w * w + x * x + y * y + z * z);
  return {w * scale, x * scale, y * scale, z * scale};
}

}  // namespace

void FormulaFloor::PublishEulerAngles(std::span<const std::byte, kBytes> bytes) {
  const auto [a, b, c] = Read<std::array<float, 3>>(bytes);
  raw_ = FromEulerAngles(a, b, c);
  floor_.Publish(raw_);
}

void FormulaFloor::PublishSensors(std::span<const std::byte, kBytes> bytes) {
  attitude_ = Step(attitude_, Read<Readings>(bytes));
  const auto [w, x, y, z] = attitude_;
  const float length = std::sqrt(w * w + x * x + y * y + z * z);
  floor_.Publish(ByTrace(w / length, x / length, y / length, z / length));
}

void FormulaFloor::PublishRecenter() {
  const auto [x, y, z, w] = raw_;
  const float length = std::sqrt(x * x + y * y + z * z + w * w);
  const float nx = x / length, ny = y / length, nz = z / length, nw = w / length;
  const float sine = std::sqrt(nx * nx + ny * ny + nz * nz);
  const float half = std::atan2(sine, nw);
  const float angle = 2 * (nw < 0 ? half - std::numbers::pi_v<float> : half);
  floor_.SetOffset(FromEulerAngles(0, -ny * angle / sine, 0));
  floor_.Publish(raw_);
}

}  // namespace bench::floor
