#include "checker/figures.h"

#include <ombrel/protocol.h>

#include <cstring>
#include <set>

#include "findings.h"
#include "frames.h"

namespace checker {
namespace {

double Milliseconds(Nanoseconds span) { return static_cast<double>(span) / static_cast<double>(kMillisecond); }

void CountToDriver(const Connection& connection, Figures& figures, std::set<std::uint32_t>& controllers) {
  const Message* lastPose = nullptr;
  for (const Message& message : connection.toDriver) {
    if (message.type == OMBREL_TRACKING_UPDATE) {
      ++figures.poses;
      if (lastPose != nullptr) figures.poseIntervals.push_back(Milliseconds(message.ended - lastPose->ended));
      lastPose = &message;
      continue;
    }
    ++figures.otherMessages;
    std::uint32_t id = 0;
    if (message.type != OMBREL_CONTROLLER_UPDATE || message.payload.size() < NeededBytes(message)) continue;
    std::memcpy(&id, message.payload.data(), sizeof(id));
    controllers.insert(id);
  }
}

void CountFromDriver(const Connection& connection, Figures& figures) {
  for (const DriverMessage& sent : connection.fromDriver) {
    if (sent.message.type == OMBREL_HAPTIC_PULSE) ++figures.pulses;
    if (sent.read) figures.readings.push_back(Milliseconds(*sent.read - sent.message.ended));
  }
}

// The driver has other textures with keyed mutexes, too, those of the runtime.
void CountHandedOver(const Session& session, Figures& figures) {
  for (const Connection& connection : session.connections) {
    const auto announced = AnnouncementOf(connection);
    if (!announced) continue;
    for (const std::uint32_t handle : announced->handles) {
      const auto found = session.handedOver.find(handle);
      if (found != session.handedOver.end()) figures.framesHandedOver += found->second.size();
      const auto timeouts = session.driverTimeouts.find(handle);
      if (timeouts != session.driverTimeouts.end()) figures.driverTimeouts += timeouts->second.size();
    }
  }
}

void CountRead(const Session& session, Figures& figures) {
  for (const ReadFrame& frame : ReadFrames(session)) {
    if (!frame.handedOver) continue;
    ++figures.framesRead;
    figures.handOffs.push_back(Milliseconds(frame.hold->from - *frame.handedOver));
  }
  for (const Hold& hold : session.holds) {
    if (hold.to) figures.holds.push_back(Milliseconds(*hold.to - hold.from));
  }
}

}  // namespace

Figures FiguresOf(const Session& session) {
  Figures figures;
  std::set<std::uint32_t> controllers;
  for (const Connection& connection : session.connections) {
    CountToDriver(connection, figures, controllers);
    CountFromDriver(connection, figures);
    if (!connection.opened) continue;
    ++figures.connections;
    figures.seconds += Milliseconds(connection.End(session.end) - *connection.opened) / 1000;
  }
  figures.controllers = controllers.size();
  CountHandedOver(session, figures);
  CountRead(session, figures);
  return figures;
}

}  // namespace checker
