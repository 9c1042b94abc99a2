#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace bench::test {

// A run of the peer program, which is the other process in these tests. The environment variable SHARING_PEER
// names it. What still runs at the end is killed.
class PeerProcess {
 public:
  explicit PeerProcess(const std::vector<std::string>& arguments);
  ~PeerProcess();
  PeerProcess(const PeerProcess&) = delete;
  PeerProcess& operator=(const PeerProcess&) = delete;

  // Its exit code, or kNotEnded after 30 seconds.
  [[nodiscard]] DWORD Wait() const;
  void Kill() const;

  static constexpr DWORD kNotEnded = 0xFFFF'FFFF;

 private:
  PROCESS_INFORMATION process_{};
};

// An event that the peer opens by its name. Unset at first, and stays set.
class PeerEvent {
 public:
  PeerEvent();
  ~PeerEvent() { CloseHandle(event_); }
  PeerEvent(const PeerEvent&) = delete;
  PeerEvent& operator=(const PeerEvent&) = delete;

  [[nodiscard]] const std::string& Name() const { return name_; }
  // False after 30 seconds.
  [[nodiscard]] bool Wait() const;
  void Set() const { SetEvent(event_); }

 private:
  std::string name_;
  HANDLE event_;
};

// The value of a handle as an argument, cut to 32 bits as on the way to a companion.
[[nodiscard]] std::string HandleText(HANDLE handle);
// A path for one file of this process; the file does not exist yet.
[[nodiscard]] std::string TemporaryFile();

}  // namespace bench::test
