#pragma once

#include <cstddef>
#include <string>

namespace ombrel {

// A page-file backed memory block that other processes open by its name. One that exists already under that name is
// taken as our own, unless there is no memory behind it. Gone with its last user.
class NamedMemory {
 public:
  NamedMemory() = default;
  ~NamedMemory() { Close(); }
  NamedMemory(const NamedMemory&) = delete;
  NamedMemory& operator=(const NamedMemory&) = delete;

  bool Create(const std::string& name, std::size_t size);
  // Null when there is no block.
  [[nodiscard]] std::byte* Data() const { return static_cast<std::byte*>(view_); }
  void Close();

 private:
  void* mapping_ = nullptr;
  void* view_ = nullptr;
};

// Keeps a named mutex in being, without ever waiting on it.
class NamedMutex {
 public:
  NamedMutex() = default;
  ~NamedMutex() { Close(); }
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;

  bool Create(const std::string& name);
  void Close();

 private:
  void* handle_ = nullptr;
};

}  // namespace ombrel
