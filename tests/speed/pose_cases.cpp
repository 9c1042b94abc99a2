#include "pose_cases.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "floor/pose_floor.h"
#include "link/quaternion.h"
#include "link/wire.h"

namespace ombrel::test {

using bench::floor::FormulaFloor;

namespace {

constexpr int kPoses = 16;
constexpr double kGoal = 2.0, kFilterGoal = 4.0;

template <typename... Parts>
Payload Join(const Parts&... parts) {
  Payload payload;
  const auto append = [&](std::span<const std::byte> bytes) {
    payload.insert(payload.end(), bytes.begin(), bytes.end());
  };
  (append(RecordBytes(parts)), ...);
  return payload;
}

// A head that looks about.
Quaternion Look(int number) {
  const auto step = static_cast<float>(number);
  return EulerToQuaternion(0.02F * step, 0.35F - 0.05F * step, 0.01F * step);
}

Matrix3x4 LookMatrix(int number) {
  Matrix3x4 matrix = ToMatrix(Look(number));
  for (std::size_t row = 0; row < 3; ++row) matrix[row][3] = 0.5F * static_cast<float>(row);
  return matrix;
}

template <typename MakePayload>
PoseFormatCase Case(const char* name, MakePayload make, double goal = kGoal, Payload before = {}) {
  PoseFormatCase made{name, goal, std::move(before), {}};
  for (int number = 0; number < kPoses; ++number) made.payloads.push_back(make(number));
  return made;
}

Payload Readings(int number) {
  const auto step = static_cast<float>(number);
  const std::array<float, 9> readings{0.01F * step, 0.02F, -0.03F, 0.1F, 0.2F, 9.7F, 20.0F, 1.0F, 40.0F - step};
  return Join(readings, PoseFormat::kSensors);
}

auto FormulaBytes(const Payload& payload) { return std::span<const std::byte>(payload).first<FormulaFloor::kBytes>(); }

Payload Angles(int number) {
  const auto step = static_cast<float>(number);
  return Join(Vector3{0.02F * step, 0.4F, 0.1F}, std::array<float, 6>{0.0F, 1.7F, 0.0F}, PoseFormat::kEulerAngles);
}

}  // namespace

std::vector<PoseFormatCase> PoseFormatCases() {
  return {
      Case("0 rotation matrix", [](int n) { return Join(LookMatrix(n), PoseFormat::kMatrix); }),
      Case("1 republish", [](int) { return Join(PoseFormat::kRepublish); }),
      Case("2 sensors", Readings, kFilterGoal),
      Case("3 Euler angles", Angles),
      Case("4 quaternion",
           [](int n) {
             return Join(Look(n), Vector3{0.1F, 1.7F, 0.2F}, PoseFormat::kQuaternion);
           }),
      Case("5 position",
           [](int n) {
             return Join(Vector3{0.1F * float(n), 1.7F, 0.2F}, PoseFormat::kPositionOnly);
           }),
      Case("6 pose matrix", [](int n) { return Join(LookMatrix(n), PoseFormat::kPoseMatrix); }),
      Case(
          "50 recenter", [](int) { return Join(PoseFormat::kRecenter); }, kGoal, Angles(3)),
      Case("254 tracking state", [](int n) { return Join(std::uint8_t(n % 3), PoseFormat::kTrackingState); }),
  };
}

const PoseFormatCase& FindCase(const std::vector<PoseFormatCase>& formats, const std::string& name) {
  const auto found = std::ranges::find(formats, name, &PoseFormatCase::name);
  if (found == formats.end()) throw std::out_of_range("no format " + name);
  return *found;
}

std::vector<Payload> FloorRecords() {
  std::vector<Payload> records;
  for (int number = 0; number < kPoses; ++number) {
    bench::floor::PoseFloor::Record record;
    const Quaternion look = Look(number);
    record.rawOrientation = {look.x, look.y, look.z, look.w};
    records.push_back(Join(record));
  }
  return records;
}

std::vector<FormulaCase> FormulaCases() {
  return {
      {"2 sensors", [](FormulaFloor& floor, const Payload& payload) { floor.PublishSensors(FormulaBytes(payload)); }},
      {"3 Euler angles",
       [](FormulaFloor& floor, const Payload& payload) { floor.PublishEulerAngles(FormulaBytes(payload)); }},
      {"50 recenter", [](FormulaFloor& floor, const Payload&) { floor.PublishRecenter(); }},
  };
}

FormulaFloor FloorBefore(const PoseFormatCase& format) {
  FormulaFloor floor;
  if (!format.before.empty()) floor.PublishEulerAngles(FormulaBytes(format.before));
  return floor;
}

}  // namespace ombrel::test
