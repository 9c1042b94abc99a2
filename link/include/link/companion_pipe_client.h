#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "link/companion_pipe_reader.h"
#include "link/head_pose_tracker.h"
#include "link/listeners.h"
#include "link/outgoing_pipe.h"
#include "link/wire.h"
#include "platform/pipe.h"
#include "platform/sync.h"
#include "platform/thread.h"

namespace ombrel {

// The driver's end of the two pipes. Its connect thread opens them, every 100 ms while they are down, and reports
// changes of the connection; each connection has a reader thread, which decodes what comes in and calls the listeners,
// and a thread that writes what is sent. Failures are silent and retried.
class CompanionPipeClient {
 public:
  CompanionPipeClient() = default;
  ~CompanionPipeClient() { Stop(); }
  CompanionPipeClient(const CompanionPipeClient&) = delete;
  CompanionPipeClient& operator=(const CompanionPipeClient&) = delete;

  // Before Start. The connect thread asks it ahead of each attempt, which is left out when the answer is no.
  void AskBeforeConnecting(std::function<bool()> mayConnect) { mayConnect_ = std::move(mayConnect); }
  void Start();
  // Ends the threads and waits for them, closes the pipes and empties the listener lists. Not to be called from a
  // listener. Bounded by what the listeners and the question before connecting take, plus a few milliseconds.
  void Stop();

  // Before Start. Called in this order.
  void AddListener(ITrackingUpdatedListener* listener) { reader_.AddListener(listener); }
  void AddListener(IFramerateUpdatedListener* listener) { reader_.AddListener(listener); }
  void AddListener(IControllerUpdatedListener* listener) { reader_.AddListener(listener); }
  void AddListener(IConnectionStateChangedListener* listener) { connectionListeners_.push_back(listener); }

  // Any thread.
  [[nodiscard]] bool IsConnected() const { return connected_.load(std::memory_order_acquire); }
  // True once per connection, for the one who announces the output textures.
  [[nodiscard]] bool TakeNewConnection() { return newConnection_.exchange(false, std::memory_order_acq_rel); }
  // The connection, if there is one, ends soon, as if the companion had gone.
  void DropConnection();
  // Never waits; see OutgoingPipe for what is lost.
  template <typename Record>
  void Send(LinkMessageType type, const Record& record, std::int64_t madeAt = OutgoingPipe::kKept) {
    if (IsConnected()) writePipe_.Send(type, record, madeAt);
  }
  [[nodiscard]] LinkPoseRecord PublishedPose() const { return reader_.PublishedPose(); }
  [[nodiscard]] bool HasTrackingData() const { return reader_.HasTrackingData(); }

 private:
  // Connect thread.
  void RunConnectThread();
  [[nodiscard]] bool TryConnect();
  [[nodiscard]] bool OpenPipes();
  void EndConnection();
  void ReportConnectionState();
  [[nodiscard]] bool IsRunning() const { return running_.load(std::memory_order_acquire); }

  // Reader thread.
  void RunReaderThread();

  std::function<bool()> mayConnect_ = [] { return true; };
  std::atomic<bool> running_{false};
  std::atomic<bool> connected_{false};
  std::atomic<bool> newConnection_{false};

  std::vector<IConnectionStateChangedListener*> connectionListeners_;

  OutgoingPipe writePipe_;
  PipeClient readPipe_;
  CompanionPipeReader reader_;

  WakeSignal wake_;  // ends the connect thread's sleeps
  Thread readerThread_;
  Thread connectThread_;
};

}  // namespace ombrel
