#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "checker/recording.h"
#include "checker/rules.h"

namespace checker::test {

// A session of three seconds, event by event, in which no rule is broken. Tests change it before they ask for its verdict.
// Times in milliseconds since its beginning.
class MadeUpSession {
 public:
  static constexpr double kEndMs = 3000;
  static constexpr std::uint32_t kTextures[2] = {0x40000002, 0x40000006};

  // Pipes, poses every 10 ms, the announcement, frames every 20 ms.
  MadeUpSession();
  // Nothing at all but a process of the companion's name.
  struct Empty {};
  explicit MadeUpSession(Empty);

  Event& Add(EventKind kind, double ms);
  Event& AddPipe(EventKind kind, Pipe pipe, double ms, std::uint32_t result = 0);
  void Connect(double ms);
  // The companion's end of `Out` has gone, and the driver closes both of its own.
  void Disconnect(double ms);
  void Send(double ms, const Bytes& bytes);
  void Receive(double ms, const Bytes& bytes, double readMs);
  void Announce(double ms);
  void SendPoses(double fromMs, double toMs, double everyMs = 10);
  // The driver hands a texture over, and the companion takes, reads and releases it.
  void PassFrame(int texture, double ms);
  Event& Acquire(Side side, int texture, double ms, std::uint32_t result = 0);
  Event& Release(Side side, int texture, double ms, std::uint32_t result = 0);
  Event& Read(int texture, double ms);
  // Takes out what happened from then on.
  void CutOffAt(double ms);
  void Remove(EventKind kind);

  [[nodiscard]] Session Build() const;
  // "P3 P7": the rules that were broken.
  [[nodiscard]] std::string Broken(Watched watched = Watched::kBothSides) const;
  [[nodiscard]] std::vector<Violation> Violations() const;

 private:
  std::vector<Event> events_;
  std::uint64_t writtenBytes_ = 0;
};

[[nodiscard]] Bytes MessageOf(std::uint32_t type, const Bytes& payload);
// A TrackingUpdate of format 4.
[[nodiscard]] Bytes Pose(float w = 1, float height = 1.7F);
[[nodiscard]] Bytes FrameRate(std::uint32_t rate);
[[nodiscard]] Bytes Controller(std::uint32_t id);
[[nodiscard]] Bytes Pulse();

// The bytes of a structure of the protocol.
template <class Structure>
[[nodiscard]] Bytes BytesOf(const Structure& structure) {
  const auto* const first = reinterpret_cast<const std::uint8_t*>(&structure);
  return Bytes(first, first + sizeof(structure));
}

}  // namespace checker::test
