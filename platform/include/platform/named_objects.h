#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/owned_handle.h"

namespace ombrel {

// A page-file backed file mapping that other processes open by its name. The system hands out one that exists already
// under that name (see compatibility.md, C13); it is refused when it is a SEC_RESERVE mapping, whose pages fault
// when they are touched before somebody commits them. Gone with its last user.
class NamedMemory {
 public:
  bool Create(const std::string& name, std::size_t size);
  // Null when there is no block.
  [[nodiscard]] std::byte* Data() const { return view_.get(); }

 private:
  struct Unmap {
    void operator()(std::byte* view) const;
  };

  OwnedHandle mapping_;
  std::unique_ptr<std::byte, Unmap> view_;
};

// A mutex that other processes may open by its name for as long as the handle is kept.
[[nodiscard]] OwnedHandle CreateNamedMutex(const std::string& name);

}  // namespace ombrel
