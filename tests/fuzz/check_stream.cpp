#include "check_stream.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "check_written.h"
#include "driver_session.h"
#include "one_thread/world.h"
#include "stream_model.h"
#include "support/bytes.h"

namespace ombrel::test {
namespace {

using Stream = std::vector<std::byte>;

// A controller with everything about it usual but its id.
Bytes ControllerRecord(std::uint32_t id) {
  Bytes record;
  record.U32(id).U32(0).Fill(8).F32({1, 0, 0, 0.5F, 0, 1, 0, 1, 0, 0, 1, -0.5F}).Fill(16);
  record.U32(1).U32(0).U64(0x200000004).U64(0x100000000).F32({0, 0.5F, 1, 0, 0, 0, 0, 0, 0, 0});
  for (const double motion : {0.0, 0.25, 0.0, 0.0, 0.5, 0.0}) record.F64(motion);
  return record;
}

// What must be heard whatever came before.
Bytes GoodMessages() {
  Bytes tail;
  tail.Append(Framed(4, Bytes().U8(0).U32(254)));
  tail.Append(Framed(4, Bytes().F32({0, 0, 0.1F, 0, 0, 0, 0, 0, 0}).U32(2)));
  tail.Append(Framed(4, Bytes().F32({0, 0.6F, 0, 0.8F, 1, 2, 3}).U32(4)));
  tail.Append(Framed(9, Bytes().U32(90)));
  for (int i = 0; i < 2; ++i) tail.Append(Framed(10, ControllerRecord(0x7F000001)));
  return tail;
}

// Two connections: the bytes, with the good messages behind them if anything can be heard there, and the good ones.
std::vector<Stream> Connections(std::span<const std::byte> bytes) {
  const Bytes good = GoodMessages();
  Stream first(bytes.begin(), bytes.end());
  if (StreamModel().Take(bytes) == StreamModel::End::kBetweenMessages) {
    first.insert(first.end(), good.Get().begin(), good.Get().end());
  }
  return {first, good.Get()};
}

// The sizes of small pieces, and of some that are nothing; the same ones whenever the bytes are.
std::function<std::size_t()> Pieces(std::span<const std::byte> bytes) {
  std::uint32_t state = 2463534242U;
  for (const std::byte byte : bytes) state = (state ^ std::to_integer<std::uint32_t>(byte)) * 16777619U;
  const std::uint32_t most = bytes.size() < 2000 ? 24 : 4096;
  return [state, most]() mutable {
    state = state * 1664525U + 1013904223U;
    return (state >> 8) % most;
  };
}

std::string FirstDifference(const std::vector<std::string>& expected, const std::vector<std::string>& got) {
  const auto [e, g] = std::ranges::mismatch(expected, got);
  if (e == expected.end() && g == got.end()) return {};
  return "line " + std::to_string(e - expected.begin()) + ": expected '" + (e != expected.end() ? *e : "nothing") +
         "', got '" + (g != got.end() ? *g : "nothing") + "'";
}

double Length(const std::array<float, 4>& q) { return std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3])); }

bool IsUnit(const std::array<float, 4>& q) { return std::abs(Length(q) - 1.0) < 1e-3; }

bool IsSame(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }

std::array<float, 4> AsArray(const Quaternion& q) { return {q.x, q.y, q.z, q.w}; }

// Lengths whose squares single precision holds with digits to spare.
bool HasADirection(const std::array<float, 4>& q) { return Length(q) > 1e-15 && Length(q) < 1e15; }

std::string WrongOrientation(const LinkPoseRecord& record, const vr::DriverPose_t& pose,
                             const StreamModel::Orientation& expected) {
  const auto raw = AsArray(record.rawOrientation), shown = AsArray(record.orientation);
  if (expected.fromSensors && !IsUnit(shown)) return "the filter's orientation is no rotation";
  if (!expected.changed) return {};
  if (expected.sent && !std::ranges::equal(*expected.sent, raw, IsSame)) return "not the orientation that was sent";
  if (!HasADirection(raw)) return {};
  if (!IsUnit(shown)) return "an orientation with a direction is no rotation";
  if (expected.raw && expected.recentering) {
    const Quat foretold = Product(*expected.recentering, *expected.raw);
    if (AngleBetween(foretold, Widened(record.orientation)) > 0.01)
      return "not the orientation that the page foretells";
  }
  const vr::HmdQuaternion_t& q = pose.qRotation;
  if (q.x != shown[0] || q.y != shown[1] || q.z != shown[2] || q.w != shown[3]) return "the runtime has another one";
  return {};
}

std::string WrongOrientations(const DriverSession& session, const StreamModel& model) {
  for (std::size_t i = 0; i < model.Orientations().size(); ++i) {
    const std::string wrong = WrongOrientation(session.Records()[i], session.HeadPoses()[i], model.Orientations()[i]);
    if (!wrong.empty()) return "pose " + std::to_string(i) + ": " + wrong;
  }
  return {};
}

std::string CheckRun(const std::vector<Stream>& connections, const std::function<std::size_t()>& nextPiece) {
  StreamModel model;
  std::vector<bool> readToTheirEnd;
  for (const Stream& stream : connections) readToTheirEnd.push_back(model.Take(stream) != StreamModel::End::kTooLong);
  DriverSession session;
  session.Run(connections, nextPiece);
  if (!session.Problem().empty()) return session.Problem();
  if (std::string wrong = FirstDifference(model.Lines(), session.Lines()); !wrong.empty()) return wrong;
  if (std::string wrong = WrongOrientations(session, model); !wrong.empty()) return wrong;
  if (TheWorld().readToItsEnd != readToTheirEnd) return "a connection was ended without reason, or not ended with one";
  if (TheWorld().monitorEnds != model.Shutdowns()) return "the runtime's monitor was not ended once for each request";
  for (const Stream& written : TheWorld().written) {
    if (std::string wrong = CheckWritten(written, model); !wrong.empty()) return wrong;
  }
  return {};
}

}  // namespace

std::string CheckStream(std::span<const std::byte> bytes) {
  const std::vector<Stream> connections = Connections(bytes);
  std::string wrong = CheckRun(connections, [] { return std::numeric_limits<std::size_t>::max(); });
  if (!wrong.empty()) return "in one piece: " + wrong;
  wrong = CheckRun(connections, Pieces(bytes));
  return wrong.empty() ? wrong : "in pieces: " + wrong;
}

}  // namespace ombrel::test
