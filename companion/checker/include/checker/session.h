#pragma once

#include <map>
#include <optional>
#include <vector>

#include "checker/message.h"
#include "checker/recording.h"

// A session as it went, put together from what was recorded of both sides.
namespace checker {

// A message of the driver, and when the companion had read it.
struct DriverMessage {
  Message message;
  std::uint64_t lastByte = 0;  // its end, in bytes since the pipe was opened
  std::optional<Nanoseconds> read;
};

// From the driver's opening of `In` to its closing of both pipes.
struct Connection {
  Nanoseconds firstPipe = 0;          // `In` was opened
  std::optional<Nanoseconds> opened;  // `Out` was opened: the connection is up
  // Attempts at `Out` that failed in between, and the error of the last.
  int secondPipeFailures = 0;
  std::uint32_t secondPipeError = 0;

  std::vector<Message> toDriver;
  std::vector<DriverMessage> fromDriver;
  MessageCutter unread;  // what came of a message that did not become whole
  bool drainsSeen = false;
  std::optional<Nanoseconds> inLost;   // a write failed
  std::optional<Nanoseconds> outLost;  // a read failed, though the driver had not given up
  std::uint32_t outError = 0;          // of that read
  std::optional<Nanoseconds> closed;   // by the driver
  // After that, `In` was there and taken, from the driver's first attempt to its last that found it so.
  std::optional<Nanoseconds> busySince, busyUntil;

  // When it was over for the companion; the recording's end when it never was.
  [[nodiscard]] Nanoseconds End(Nanoseconds recordingEnd) const;
};

// A texture in the hands of one side.
struct Hold {
  std::uint32_t handle = 0;
  Nanoseconds from = 0;
  std::optional<Nanoseconds> to;
  int reads = 0;
};

// A call that is no hold, and what to say of it.
struct OddCall {
  Nanoseconds when = 0;
  std::uint32_t handle = 0;
  std::uint64_t key = 0;
  std::uint32_t result = 0;
  bool isRelease = false;
};

struct Session {
  Nanoseconds begin = 0;
  Nanoseconds end = 0;
  std::vector<Connection> connections;

  std::optional<Nanoseconds> processFound;
  std::optional<Nanoseconds> processEnded;
  std::uint32_t exitCode = 0;
  std::optional<Nanoseconds> detached;
  bool connectedWhenDetached = false;
  std::optional<Nanoseconds> blockLeft;

  // Of the companion, with the announced textures; nothing of it is known without a recording of its side.
  std::vector<Hold> holds;
  std::vector<OddCall> refused;    // an acquire or a release that failed, time-outs aside
  std::vector<OddCall> otherKeys;  // with another key than the protocol's
  std::vector<OddCall> readsUnheld;

  // Of the driver, by shared handle: when it gave a texture back, when it found one held by somebody else, and when it
  // waited for one in vain.
  std::map<std::uint32_t, std::vector<Nanoseconds>> handedOver;
  std::map<std::uint32_t, std::vector<Nanoseconds>> foundHeld;
  std::map<std::uint32_t, std::vector<Nanoseconds>> driverTimeouts;
};

// `events` in order.
[[nodiscard]] Session BuildSession(const std::vector<Event>& events);

}  // namespace checker
