#include "companion/pipe_server.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "companion/message_assembler.h"
#include "performance_counter.h"
#include "server_pipe_win32.h"

namespace companion {

class PipeServer::State {
 public:
  explicit State(PipeServerOptions chosen) : options(std::move(chosen)) {}
  ~State() { Close(); }

  bool Open();
  void Close();
  bool Send(std::span<const std::uint8_t> bytes);
  bool WaitForConnected(bool wanted, std::uint32_t timeoutMs);
  std::optional<ReceivedMessage> Next(std::uint32_t timeoutMs);

  const PipeServerOptions options;
  UniqueHandle stop{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
  ServerPipe fromDriver{stop.get()};
  ServerPipe toDriver{stop.get()};

  std::mutex mutex;
  std::condition_variable changed;
  std::deque<ReceivedMessage> messages;
  bool connected = false;
  std::uint32_t connections = 0;

 private:
  bool CreatePipes();
  void Serve();
  void ReadMessages();
  void SetConnected(bool now);

  std::mutex lifeMutex_;
  std::mutex sendMutex_;
  std::thread thread_;
};

bool PipeServer::State::CreatePipes() {
  return fromDriver.Create(options.fromDriverName, ServerPipe::Direction::FromDriver, options.bufferBytes) &&
         toDriver.Create(options.toDriverName, ServerPipe::Direction::ToDriver, options.bufferBytes);
}

bool PipeServer::State::Open() {
  const std::scoped_lock life(lifeMutex_);
  if (thread_.joinable()) return false;
  ResetEvent(stop.get());
  if (!CreatePipes()) {
    fromDriver.Close();
    toDriver.Close();
    return false;
  }
  thread_ = std::thread([this] { Serve(); });
  return true;
}

void PipeServer::State::Close() {
  const std::scoped_lock life(lifeMutex_);
  if (!thread_.joinable()) return;
  SetEvent(stop.get());
  thread_.join();
  const std::scoped_lock sending(sendMutex_);
  fromDriver.Close();
  toDriver.Close();
}

void PipeServer::State::Serve() {
  while (true) {
    if (fromDriver.WaitForClient() && toDriver.WaitForClient(&fromDriver)) {
      SetConnected(true);
      ReadMessages();
      SetConnected(false);
    }
    // A stopped server leaves the driver what was sent; one that goes on makes room for the next client.
    if (WaitForSingleObject(stop.get(), 1) == WAIT_OBJECT_0) return;
    const std::scoped_lock sending(sendMutex_);
    fromDriver.Disconnect();
    toDriver.Disconnect();
  }
}

void PipeServer::State::ReadMessages() {
  MessageAssembler assembler;
  std::array<std::uint8_t, 4096> buffer;
  while (const std::size_t count = fromDriver.Read(buffer)) {
    const std::int64_t now = CounterNow();
    assembler.Feed(std::span(buffer).first(count));
    while (auto message = assembler.Next()) {
      const std::scoped_lock lock(mutex);
      messages.push_back({now, connections, std::move(*message)});
      changed.notify_all();
    }
    if (assembler.Broken()) return;
  }
}

void PipeServer::State::SetConnected(bool now) {
  const std::scoped_lock lock(mutex);
  connected = now;
  if (now) ++connections;
  changed.notify_all();
}

bool PipeServer::State::Send(std::span<const std::uint8_t> bytes) {
  const std::scoped_lock sending(sendMutex_);
  {
    const std::scoped_lock lock(mutex);
    if (!connected) return false;
  }
  return toDriver.Write(bytes);
}

bool PipeServer::State::WaitForConnected(bool wanted, std::uint32_t timeoutMs) {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return connected == wanted; });
}

std::optional<ReceivedMessage> PipeServer::State::Next(std::uint32_t timeoutMs) {
  std::unique_lock lock(mutex);
  if (!changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return !messages.empty(); })) {
    return std::nullopt;
  }
  ReceivedMessage first = std::move(messages.front());
  messages.pop_front();
  return first;
}

PipeServer::PipeServer(PipeServerOptions options) : state_(std::make_unique<State>(std::move(options))) {}
PipeServer::~PipeServer() = default;

bool PipeServer::Open() { return state_->Open(); }
void PipeServer::Close() { state_->Close(); }
bool PipeServer::Connected() const { return state_->WaitForConnected(true, 0); }
std::uint32_t PipeServer::Connections() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->connections;
}
bool PipeServer::WaitForConnection(std::uint32_t timeoutMs) const { return state_->WaitForConnected(true, timeoutMs); }
bool PipeServer::WaitForDisconnection(std::uint32_t timeoutMs) const {
  return state_->WaitForConnected(false, timeoutMs);
}
bool PipeServer::Send(std::span<const std::uint8_t> bytes) { return state_->Send(bytes); }
void PipeServer::Flush() { state_->toDriver.Flush(); }
std::optional<ReceivedMessage> PipeServer::Next(std::uint32_t timeoutMs) { return state_->Next(timeoutMs); }

}  // namespace companion
