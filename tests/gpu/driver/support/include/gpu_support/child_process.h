#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "companion/owned_handle.h"

namespace ombrel::test {

// A program that is talked to by lines over its standard input and output. Ended, if need be, with its owner. One
// thread.
class ChildProcess {
 public:
  // Throws std::runtime_error when the program cannot be started.
  explicit ChildProcess(const std::string& program);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Throws std::runtime_error when the program does not answer with a line in time.
  std::string Ask(const std::string& line, std::chrono::milliseconds timeout);

  // Ends it on the spot, as a crash would.
  void Kill();

 private:
  void ReadLines();

  bench::OwnedHandle process_;
  bench::OwnedHandle input_;   // the write end of its standard input
  bench::OwnedHandle output_;  // the read end of its standard output
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::string> lines_;
  bool ended_ = false;
  std::thread reader_;
};

}  // namespace ombrel::test
