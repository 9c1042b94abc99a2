#include "connected_pipe.h"

#include <windows.h>
// windows.h must come first.
#include <ombrel/protocol.h>
#include <winternl.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace {

// Of handles, which are multiples of four: more than a companion ever has.
constexpr std::uintptr_t kHandles = 0x4000;

// FILE_PIPE_LOCAL_INFORMATION of the driver kit, which programs' headers lack.
struct PipeInformation {
  ULONG type, configuration, maximumInstances, currentInstances;
  ULONG inboundQuota, readDataAvailable, outboundQuota, writeQuotaAvailable;
  ULONG state, end;
};
constexpr auto kPipeInformation = static_cast<FILE_INFORMATION_CLASS>(24);
constexpr ULONG kConnectedState = 3, kServerEnd = 1;

bool IsConnectedServer(HANDLE handle) {
  IO_STATUS_BLOCK status{};
  PipeInformation pipe{};
  return NtQueryInformationFile(handle, &status, &pipe, sizeof(pipe), kPipeInformation) == 0 &&
         pipe.state == kConnectedState && pipe.end == kServerEnd;
}

// Without the "\\\\.\\pipe" that programs put before it.
std::string NameOf(HANDLE handle) {
  struct {
    FILE_NAME_INFO info;
    WCHAR rest[MAX_PATH];
  } name{};
  if (!GetFileInformationByHandleEx(handle, FileNameInfo, &name, sizeof(name))) return {};
  return {name.info.FileName, name.info.FileName + name.info.FileNameLength / sizeof(WCHAR)};
}

bool IsOfTheProtocol(const std::string& name) {
  const auto is = [&](std::string_view pipe) { return !name.empty() && pipe.ends_with(name); };
  return is(OMBREL_PIPE_FROM_DRIVER) || is(OMBREL_PIPE_TO_DRIVER);
}

}  // namespace

bool HasConnectedPipe() {
  for (std::uintptr_t value = 4; value < kHandles; value += 4) {
    const auto handle = reinterpret_cast<HANDLE>(value);
    if (GetFileType(handle) == FILE_TYPE_PIPE && IsConnectedServer(handle) && IsOfTheProtocol(NameOf(handle)))
      return true;
  }
  return false;
}
