#include "link/companion_pipe_client.h"

#include "platform/guarded.h"

namespace ombrel {
namespace {

constexpr std::uint32_t kRetryMs = 100;
// Between the first pipe and the second: time for the companion to see the one before it gets the other.
constexpr std::uint32_t kSecondPipeDelayMs = 150;
constexpr std::uint32_t kCancelAgainMs = 2;

}  // namespace

void CompanionPipeClient::Start() {
  running_.store(true, std::memory_order_release);
  if (!connectThread_.Start([this] { RunConnectThread(); })) running_.store(false, std::memory_order_release);
}

void CompanionPipeClient::Stop() {
  running_.store(false, std::memory_order_release);
  wake_.WakeAll();
  connectThread_.Join();
  reader_.RemoveListeners();
  connectionListeners_.clear();
}

void CompanionPipeClient::DropConnection() {
  connected_.store(false, std::memory_order_release);
  wake_.WakeAll();
}

void CompanionPipeClient::RunConnectThread() {
  bool reported = false;
  // Noted before asking, here and below: a Stop in between then ends the wait at once.
  for (std::uint32_t seen = wake_.Generation(); IsRunning(); seen = wake_.Generation()) {
    if (reported && (!IsConnected() || writePipe_.IsBroken())) {
      EndConnection();
      reported = false;
      ReportConnectionState();
    }
    if (!reported && TryConnect()) {
      reported = true;
      ReportConnectionState();
    }
    wake_.WaitFor(seen, kRetryMs);
  }
  EndConnection();
}

bool CompanionPipeClient::TryConnect() try {
  if (!mayConnect_() || !OpenPipes()) return false;
  if (!writePipe_.StartWriting()) {
    EndConnection();
    return false;
  }
  // Marked up before the reader starts: one that ends at once must find it so, to mark it down again.
  newConnection_.store(true, std::memory_order_release);
  connected_.store(true, std::memory_order_release);
  reader_.BeginConnection();
  if (readerThread_.Start([this] { RunReaderThread(); })) return true;
  EndConnection();
  return false;
} catch (...) {
  // No memory for a thread: the next round may have it.
  EndConnection();
  return false;
}

// A companion may make its second pipe late, and its pipes may be single-instance: the first is kept while the second
// is missing, but not when the companion has gone meanwhile, since our handle would keep the next one from making it
// again.
bool CompanionPipeClient::OpenPipes() {
  if (writePipe_.IsOpen() && writePipe_.IsPeerGone()) writePipe_.Close();
  if (!writePipe_.IsOpen()) {
    const std::uint32_t seen = wake_.Generation();
    if (!IsRunning() || !writePipe_.Open()) return false;
    wake_.WaitFor(seen, kSecondPipeDelayMs);
    if (!IsRunning()) return false;
    // Gone already: its successor's second pipe is not to be opened in vain.
    if (writePipe_.IsPeerGone()) {
      writePipe_.Close();
      return false;
    }
  }
  if (!readPipe_.Open(kPipeFromCompanion, PipeClient::Direction::kRead)) return false;
  if (!writePipe_.IsPeerGone()) return true;
  readPipe_.Close();
  writePipe_.Close();
  return false;
}

void CompanionPipeClient::EndConnection() {
  connected_.store(false, std::memory_order_release);
  writePipe_.Close();
  // A cancel that comes while the reader is between two reads cancels nothing, so it is repeated until it is out.
  do {
    readPipe_.CancelIo();
  } while (!readerThread_.JoinFor(kCancelAgainMs));
  readPipe_.Close();
}

void CompanionPipeClient::ReportConnectionState() {
  for (auto* listener : connectionListeners_) Guarded([=] { listener->OnConnectionStateChanged(); });
}

void CompanionPipeClient::RunReaderThread() {
  while (IsRunning() && IsConnected() && reader_.ReadAndDispatch(readPipe_, running_)) {
  }
  DropConnection();
}

}  // namespace ombrel
