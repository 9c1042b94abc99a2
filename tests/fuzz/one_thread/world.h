#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <vector>

namespace ombrel::test {

// The operating system as the driver sees it, on one thread and with a clock of its own, so that a run depends on
// nothing but the bytes that it is given. The bodies beside this file take the place of platform/'s: a thread that the
// driver starts runs when another one sleeps, a sleep passes at once, and a wait that nobody could end is a failure.
class World {
 public:
  // Everything as at the start, with these connections to be offered one after the other.
  void Reset(std::vector<std::vector<std::byte>> connections);
  // Runs what the driver has started, until all of it has ended.
  void RunThreads();

  // How many bytes a read may bring at most; none is a read that brings nothing, which is not the end.
  std::function<std::size_t()> nextPiece;
  // Before each read: time for the runtime's threads.
  std::function<void()> beforeRead;
  // When the driver looks for a companion and there is none left: its threads are to be stopped.
  std::function<void()> onNobodyThere;
  void ForgetHooks() {
    nextPiece = nullptr;
    beforeRead = onNobodyThere = nullptr;
  }

  // What the driver wrote, by connections.
  std::vector<std::vector<std::byte>> written;
  // Whether it read each of them to its end, or ended it before.
  std::vector<bool> readToItsEnd;
  // How often it ended the runtime's monitor.
  std::size_t monitorEnds = 0;

  // For the bodies. The clock's unit is 100 nanoseconds.
  std::int64_t now = 0;
  void Sleep(std::uint32_t milliseconds) { now += std::int64_t{milliseconds} * 10'000; }
  void Start(const void* thread, std::function<void()> body);
  // Runs the thread if it has not begun.
  void Join(const void* thread);
  [[nodiscard]] bool OpenNext();
  [[nodiscard]] bool IsOver() const { return over_; }
  // False at the end.
  [[nodiscard]] bool Read(std::span<std::byte> space, std::size_t& got);
  // Of the connection that is open, the one under way included.
  [[nodiscard]] std::size_t Reads() const { return reads_; }
  void Write(std::span<const std::byte> bytes);
  void EndConnection() { over_ = true; }

 private:
  struct Pending {
    const void* thread;
    std::function<void()> body;
  };
  std::deque<Pending> pending_;
  std::vector<std::vector<std::byte>> connections_;
  std::size_t opened_ = 0;
  std::size_t offset_ = 0;
  std::size_t reads_ = 0;
  bool over_ = true;
};

// The one world of the process.
World& TheWorld();

// Aborts with a message: a deadlock, or a misuse of the system.
[[noreturn]] void GiveUp(const char* what);

}  // namespace ombrel::test
