#pragma once

#include <stdexcept>
#include <string>

#include "link/companion_pipe_client.h"
#include "link/listeners.h"
#include "support/journal.h"

namespace ombrel::test {

// Listens to everything and keeps a journal: "up", "down", "tracking", "framerate 72", "controller 5".
class RecordingListener final : public ITrackingUpdatedListener,
                                public IFramerateUpdatedListener,
                                public IControllerUpdatedListener,
                                public IConnectionStateChangedListener {
 public:
  explicit RecordingListener(CompanionPipeClient& client) : client_(client) {}

  void ListenToAll() {
    ListenToMessages();
    client_.AddListener(static_cast<IConnectionStateChangedListener*>(this));
  }
  void ListenToMessages() {
    client_.AddListener(static_cast<ITrackingUpdatedListener*>(this));
    client_.AddListener(static_cast<IFramerateUpdatedListener*>(this));
    client_.AddListener(static_cast<IControllerUpdatedListener*>(this));
  }

  void OnTrackingUpdated() override { journal.Add("tracking"); }
  void OnFramerateUpdated(std::uint32_t framesPerSecond) override {
    journal.Add("framerate " + std::to_string(framesPerSecond));
  }
  void OnControllerUpdated(const ControllerUpdate* record) override {
    journal.Add("controller " + std::to_string(record->controllerId));
  }
  void OnConnectionStateChanged() override { journal.Add(client_.IsConnected() ? "up" : "down"); }

  Journal journal;

 private:
  CompanionPipeClient& client_;
};

class ThrowingListener final : public ITrackingUpdatedListener, public IConnectionStateChangedListener {
 public:
  void OnTrackingUpdated() override { throw std::runtime_error("no"); }
  void OnConnectionStateChanged() override { throw std::runtime_error("no"); }
};

}  // namespace ombrel::test
