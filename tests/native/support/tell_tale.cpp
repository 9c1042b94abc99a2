#include "support/tell_tale.h"

#include <array>
#include <cmath>

namespace ombrel::test {
namespace {

constexpr double kTolerance = 2e-3;
constexpr std::array<std::uint32_t, 12> kFormats{4, 0, 6, 3, 2, 5, 1, 254, 7, 4, 50, 2147483647};

// Between 0 and 3, and never near to a half-turn.
double Angle(std::uint32_t number) { return std::fmod(0.7 * number, 2.9) + 0.05; }

float Number(std::uint32_t number, int times) { return static_cast<float>(number) * static_cast<float>(times); }

Bytes Matrix(std::uint32_t number) {
  const auto c = static_cast<float>(std::cos(Angle(number))), s = static_cast<float>(std::sin(Angle(number)));
  return Bytes().F32({c, 0, s, Number(number, 1), 0, 1, 0, Number(number, 2), -s, 0, c, Number(number, 3)});
}

bool AreMultiples(const double (&numbers)[3], double first, double second, double third) {
  return numbers[0] * second == numbers[1] * first && numbers[0] * third == numbers[2] * first;
}

bool IsAboutY(const vr::HmdQuaternion_t& q) {
  const bool isTurn = std::abs(q.y * q.y + q.w * q.w - 1.0) < kTolerance;
  return isTurn && std::abs(q.x) < kTolerance && std::abs(q.z) < kTolerance;
}

}  // namespace

Bytes HeadUpdate(std::uint32_t number) {
  const std::uint32_t format = kFormats[number % kFormats.size()];
  const float x = Number(number, 1), y = Number(number, 2), z = Number(number, 3);
  const auto half = static_cast<float>(Angle(number) / 2.0);
  switch (format) {
    case 2:
      return Bytes().F32({0, 10.0F * half, 0, 0, 0, 0, 0, 0, 0}).U32(format);
    case 3:
      return Bytes().F32({0, 2.0F * half, 0, x, y, z, 0, 0, 0}).U32(format);
    case 4:
      return Bytes().F32({0, std::sin(half), 0, std::cos(half), x, y, z}).U32(format);
    case 5:
      return Bytes().F32({x, y, z}).U32(format);
    case 254:
      return Bytes().U8(0).U32(format);
    case 1:
    case 50:
    case 2147483647:
      return Bytes().U32(format);
    default:
      return Matrix(number).U32(format);
  }
}

Bytes ControllerUpdate(std::uint32_t id, std::uint32_t number) {
  Bytes record = Bytes().U32(id).U32(0).Fill(8).Append(Matrix(number)).Fill(16);
  const std::uint64_t held = number % 2 == 0 ? 0x300000007 : 0;
  const float pull = static_cast<float>(number % 100) / 100.0F;
  record.U32(number).U32(0).U64(held).U64(held).F32({pull, -pull, pull, 0, 0, 0, 0, 0, 0, 0});
  for (const int times : {4, 5, 6, 7, 8, 9}) record.F64(static_cast<double>(number) * times);
  return record;
}

bool IsWholeHeadPose(const vr::DriverPose_t& pose) {
  const double(&position)[3] = pose.vecPosition;
  const bool isFirst = position[0] == 0.0 && static_cast<float>(position[1]) == 1.7F && position[2] == 0.0;
  return (isFirst || AreMultiples(position, 1, 2, 3)) && IsAboutY(pose.qRotation);
}

bool IsWholeControllerPose(const vr::DriverPose_t& pose) {
  // As it was made.
  if (!pose.deviceIsConnected) return pose.vecPosition[0] == 0.0 && pose.vecVelocity[0] == 0.0;
  const auto number = static_cast<std::uint32_t>(pose.vecPosition[0]);
  if (!AreMultiples(pose.vecPosition, 1, 2, 3) || pose.vecAcceleration[0] != 4.0 * number) return false;
  if (!AreMultiples(pose.vecAcceleration, 4, 5, 6) || !AreMultiples(pose.vecVelocity, 7, 8, 9)) return false;
  if (pose.vecVelocity[0] != 7.0 * number || !IsAboutY(pose.qRotation)) return false;
  return std::abs(pose.qRotation.y - std::sin(Angle(number) / 2.0)) < kTolerance;
}

}  // namespace ombrel::test
