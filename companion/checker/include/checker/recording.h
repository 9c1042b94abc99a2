#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

// What was seen of a session, in a file for each side: a header of 16 bytes (magic, side, process), then one event after
// the other. README.md has the layout. Everything here is for one thread.
namespace checker {

using Bytes = std::vector<std::uint8_t>;

// Of the performance counter, which is the same clock in all processes of a machine.
using Nanoseconds = std::int64_t;

// Who did it. The number stands in the file's header.
enum class Side : std::uint32_t { kDriver = 0, kCompanion = 1 };

// Named as the protocol's page names them.
enum class Pipe : std::uint16_t { kNone = 0, kIn = 1, kOut = 2 };

enum class EventKind : std::uint16_t {
  kPipeOpened = 1,     // result: error code, 0 when it was opened
  kPipeClosed = 2,     //
  kPipeRead = 3,       // result: error code; bytes: what came
  kPipeWritten = 4,    // result: error code; bytes: what was written
  kPipeDrained = 5,    // key: so many bytes of this opening of the pipe have been read at the other end
  kAcquired = 6,       // subject: shared handle; key; timeoutMs; result: HRESULT
  kReleased = 7,       // subject: shared handle; key; result: HRESULT
  kTextureRead = 8,    // subject: shared handle
  kProcessFound = 9,   // subject: process id of the companion
  kProcessEnded = 10,  // subject: process id; result: exit code
  kDetached = 11,      // the companion's process is ending in an orderly way; result: 1 when a pipe is still connected
  kBlockLeft = 12,     // the block still exists after the driver has gone
  kEnded = 13,         // nothing follows
};

// The error of a read or a write that the driver itself has cancelled.
inline constexpr std::uint32_t kOperationAborted = 995;

struct Event {
  EventKind kind = EventKind::kEnded;
  Side side = Side::kDriver;
  Pipe pipe = Pipe::kNone;
  std::uint32_t result = 0;
  Nanoseconds start = 0;  // of the call
  Nanoseconds end = 0;
  std::uint32_t subject = 0;
  std::uint32_t timeoutMs = 0;
  std::uint64_t key = 0;
  Bytes bytes;

  // A texture is given back when ReleaseSync begins; all else has happened when the call returns.
  [[nodiscard]] Nanoseconds When() const { return kind == EventKind::kReleased ? start : end; }
};

[[nodiscard]] Bytes EncodeHeader(Side side, std::uint32_t processId);
[[nodiscard]] Bytes EncodeEvent(const Event& event);

// Takes a recording in pieces, as it grows.
class RecordingReader {
 public:
  void Feed(std::span<const std::uint8_t> bytes);
  // The next whole event, or nothing until more bytes come.
  [[nodiscard]] std::optional<Event> Next();
  // The bytes are no recording, or not from here on.
  [[nodiscard]] bool Broken() const { return broken_; }

 private:
  void TakeHeader();

  Bytes buffer_;
  std::size_t start_ = 0;
  std::optional<Side> side_;
  bool broken_ = false;
};

// All events of a file; a last one that was cut off is left out. Throws std::runtime_error when it cannot be read.
[[nodiscard]] std::vector<Event> ReadRecording(const std::filesystem::path& file);

// Events of both sides in the order in which they happened.
[[nodiscard]] std::vector<Event> InOrder(std::vector<Event> events);

}  // namespace checker
