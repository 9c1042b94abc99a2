#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>
#include <thread>

#include "bare_outputs.h"
#include "base/owned_handle.h"

namespace bench::scenarios {

// How much of a connection is played: each has what those before it have.
enum class BareParts { kPipes, kTextures, kFrames };

// The control of the growth scenarios: the system calls that a connection costs a driver, on a driver's threads, and no
// more. For each connection both pipes, a reader and a writer thread and two shared textures; for all of them a block
// of shared memory and two mutexes. What grows with it belongs to the system or to the stand-ins. One thread.
class BareLink {
 public:
  explicit BareLink(BareParts parts);
  ~BareLink();
  BareLink(const BareLink&) = delete;
  BareLink& operator=(const BareLink&) = delete;

  // A frame of that number, if a companion is connected; announced to it ahead of its first one.
  void Present(float number);
  // Bytes that the current connection has brought.
  [[nodiscard]] std::size_t BytesRead() const { return bytesRead_; }

 private:
  void Connect();
  [[nodiscard]] bool OpenPipes();
  void SetUp();
  void EndConnection();
  void Announce();
  void Write(const void* bytes, std::size_t size);
  static DWORD WINAPI Read(void* self);
  static DWORD WINAPI AnnounceWhenTold(void* self);

  const BareParts parts_;
  BareOutputs outputs_;
  OwnedHandle mapping_;
  void* block_;
  OwnedHandle firstMutex_, secondMutex_;
  OwnedHandle stop_;
  OwnedHandle isToAnnounce_, isOver_;  // the writer's

  std::mutex mutex_;  // the outputs, and whether there are frames
  bool isStreaming_ = false;

  OwnedHandle toCompanion_, fromCompanion_, reader_, writer_;
  std::atomic<std::size_t> bytesRead_ = 0;
  std::thread connector_;
};

}  // namespace bench::scenarios
