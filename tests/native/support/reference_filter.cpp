#include "support/reference_filter.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace ombrel::test {
namespace {

constexpr double kSamplesPerSecond = 76.0;
constexpr double kGain = 0.5;

// Columns: where the body's axes point on earth. Divided by nothing, so that a quaternion of a length a little off 1
// gives what the filter's own terms give: 1 - 2(yy + zz) and so on.
Mat3 EarthFromBody(const Quat& q) {
  Mat3 m{};
  for (std::size_t column = 0; column < 3; ++column) {
    Vec3 unit{};
    unit[column] = 1.0;
    const Vec3 twice = Cross(q.v, unit);
    const Vec3 turned = unit + 2.0 * q.w * twice + 2.0 * Cross(q.v, twice);
    for (std::size_t row = 0; row < 3; ++row) m[row][column] = turned[row];
  }
  return m;
}

bool IsZero(const Vec3& a) { return a == Vec3{}; }

}  // namespace

double ReferenceFilter::InverseRoot(double x) const {
  if (roots_ == Roots::kExact) return 1.0 / std::sqrt(x);
  const auto single = static_cast<float>(x);
  std::int32_t bits = 0;
  std::memcpy(&bits, &single, sizeof(bits));
  bits = 0x5F3759DF - bits / 2;
  float guess = 0.0F;
  std::memcpy(&guess, &bits, sizeof(guess));
  return guess * (1.5 - 0.5 * x * guess * guess);
}

Vec3 ReferenceFilter::Direction(const Vec3& a) const { return InverseRoot(Dot(a, a)) * a; }

void ReferenceFilter::Update(const Vec3& gyroscope, const Vec3& accelerometer, const Vec3& magnetometer) {
  const Mat3 earthFromBody = EarthFromBody(q_);
  Vec3 error{};
  if (!IsZero(accelerometer)) {
    Vec3 up = ApplyTransposed(earthFromBody, {0.0, 0.0, 1.0});
    // The published form takes this component as ww + zz - 1/2, which differs when the length is not quite 1.
    up[2] = 2.0 * (q_.w * q_.w - 0.5 + q_.v[2] * q_.v[2]);
    error = Cross(Direction(accelerometer), up);
    if (!IsZero(magnetometer)) {
      const Vec3 field = Direction(magnetometer);
      const Vec3 onEarth = Apply(earthFromBody, field);
      const Vec3 expected = ApplyTransposed(earthFromBody, {std::hypot(onEarth[0], onEarth[1]), 0.0, onEarth[2]});
      error = error + Cross(field, expected);
    }
  }
  const Vec3 rate = gyroscope + kGain * error;
  const Quat change = Product(q_, {0.0, rate});
  const double halfStep = 0.5 / kSamplesPerSecond;
  q_ = {q_.w + halfStep * change.w, q_.v + halfStep * change.v};
  const double scale = InverseRoot(q_.w * q_.w + Dot(q_.v, q_.v));
  q_ = {scale * q_.w, scale * q_.v};
}

}  // namespace ombrel::test
