#pragma once

#include "base/owned_handle.h"

#include <cstddef>
#include <optional>
#include <string>

namespace bench {

// Named memory that processes share, mapped for reading and writing. It starts as zeros and lasts
// as long as any process has it open.
class NamedMapping {
 public:
  // Nothing when the name is taken or memory is short.
  [[nodiscard]] static std::optional<NamedMapping> CreateNew(const std::string& name, std::size_t bytes);
  // Nothing when memory is short.
  [[nodiscard]] static std::optional<NamedMapping> CreateOrOpen(const std::string& name, std::size_t bytes);
  // Nothing when there is none of that name.
  [[nodiscard]] static std::optional<NamedMapping> Open(const std::string& name);

  NamedMapping(NamedMapping&& other) noexcept;
  NamedMapping& operator=(NamedMapping&&) = delete;
  ~NamedMapping();

  [[nodiscard]] std::byte* Data() const { return view_; }

 private:
  NamedMapping(OwnedHandle mapping, std::byte* view);
  static std::optional<NamedMapping> Map(OwnedHandle mapping);

  OwnedHandle mapping_;
  std::byte* view_;
};

}  // namespace bench
