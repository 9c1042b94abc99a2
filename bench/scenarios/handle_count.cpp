#include "handle_count.h"

#include <windows.h>
// windows.h must come first.
#include <winternl.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace bench::scenarios {
namespace {

// The list of all handles in the system; its headers leave it out of the user-mode kit.
struct HandleEntry {
  USHORT processId, backTrace;
  UCHAR type, flags;
  USHORT handle;
  void* object;
  ULONG access;
};
struct HandleList {
  ULONG count;
  HandleEntry entries[1];
};
constexpr auto kHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
constexpr NTSTATUS kTooSmall = static_cast<NTSTATUS>(0xC0000004);

}  // namespace

std::int64_t CountOwnHandles() {
  std::vector<std::uint64_t> buffer(1 << 16);
  NTSTATUS status = kTooSmall;
  ULONG needed = 0;
  const auto bytes = [&] { return static_cast<ULONG>(buffer.size() * sizeof(buffer[0])); };
  while ((status = NtQuerySystemInformation(kHandleInformation, buffer.data(), bytes(), &needed)) == kTooSmall) {
    buffer.resize(2 * buffer.size());
  }
  if (status != 0) throw std::runtime_error("the system's handles cannot be listed");
  const auto* list = reinterpret_cast<const HandleList*>(buffer.data());
  const auto own = static_cast<USHORT>(GetCurrentProcessId());
  return std::count_if(list->entries, list->entries + list->count,
                       [own](const HandleEntry& entry) { return entry.processId == own; });
}

}  // namespace bench::scenarios
