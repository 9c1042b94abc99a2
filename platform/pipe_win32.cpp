#include <windows.h>

#include <algorithm>

#include "platform/pipe.h"

// Microsoft's <winternl.h> has these types, but not the call; others have both, and would clash with a declaration.
using NTSTATUS = LONG;
enum FILE_INFORMATION_CLASS : int {};
struct IO_STATUS_BLOCK {
  void* status;
  ULONG_PTR information;
};
extern "C" __declspec(dllimport) NTSTATUS NTAPI
    NtQueryInformationFile(HANDLE file, IO_STATUS_BLOCK* status, void* information, ULONG size,
                           FILE_INFORMATION_CLASS informationClass);

namespace ombrel {
namespace {

// FILE_PIPE_LOCAL_INFORMATION and what belongs to it, which the user-mode headers leave out.
struct PipeLocalInformation {
  ULONG type, configuration, maximumInstances, currentInstances;
  ULONG inboundQuota, readDataAvailable, outboundQuota, writeQuotaAvailable;
  ULONG state, end;
};
constexpr auto kPipeLocalInformation = static_cast<FILE_INFORMATION_CLASS>(24);
constexpr ULONG kPipeConnected = 3;
// STATUS_PIPE_DISCONNECTED: the server has disconnected us.
constexpr auto kPipeDisconnected = static_cast<NTSTATUS>(0xC00000B0);

}  // namespace

bool PipeClient::Open(const char* name, Direction direction) {
  Close();  // first: the far end of a single-instance pipe is free again only then
  const DWORD access = direction == Direction::kRead ? GENERIC_READ : GENERIC_WRITE;
  handle_ = OwnedHandle(CreateFileA(name, access, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  return IsOpen();
}

bool PipeClient::IsPeerGone() const {
  IO_STATUS_BLOCK status{};
  PipeLocalInformation information{};
  const NTSTATUS result =
      NtQueryInformationFile(handle_.Get(), &status, &information, sizeof(information), kPipeLocalInformation);
  return result == kPipeDisconnected || (result == 0 && information.state != kPipeConnected);
}

bool PipeClient::ReadSome(void* buffer, std::size_t capacity, std::size_t& got) {
  const auto wanted = static_cast<DWORD>(std::min<std::size_t>(capacity, MAXDWORD));
  DWORD read = 0;
  const bool isOpen = ReadFile(handle_.Get(), buffer, wanted, &read, nullptr) != 0;
  got = read;
  return isOpen;
}

bool PipeClient::WriteAll(const void* bytes, std::size_t size) {
  DWORD written = 0;
  return WriteFile(handle_.Get(), bytes, static_cast<DWORD>(size), &written, nullptr) != 0 && written == size;
}

void PipeClient::CancelIo() {
  if (handle_) CancelIoEx(handle_.Get(), nullptr);
}

}  // namespace ombrel
