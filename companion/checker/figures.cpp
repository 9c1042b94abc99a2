#include "checker/figures.h"

#include <ombrel/protocol.h>

#include <cstring>
#include <map>
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

std::size_t CountOf(const std::map<std::uint32_t, std::vector<Nanoseconds>>& times, std::uint32_t handle) {
  const auto found = times.find(handle);
  return found == times.end() ? 0 : found->second.size();
}

// The driver's process has other textures with keyed mutexes, too, those of the runtime.
void CountHandedOver(const Session& session, Figures& figures) {
  for (const Connection& connection : session.connections) {
    const auto announced = AnnouncementOf(connection);
    if (!announced) continue;
    ++figures.announcements;
    for (const std::uint32_t handle : announced->handles) {
      figures.framesHandedOver += CountOf(session.handedOver, handle);
      figures.foundHeld += CountOf(session.foundHeld, handle);
      figures.driverTimeouts += CountOf(session.driverTimeouts, handle);
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
