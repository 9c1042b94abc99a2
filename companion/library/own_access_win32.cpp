#include "own_access_win32.h"

#include <sddl.h>

#include <cstddef>
#include <string>
#include <vector>

#include "companion/unique_handle.h"

namespace companion {
namespace {

// The user's SID as text; empty when the system does not tell.
std::string UserSid() {
  HANDLE opened = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) return {};
  const UniqueHandle token(opened);
  DWORD bytes = 0;
  GetTokenInformation(token.get(), TokenUser, nullptr, 0, &bytes);
  std::vector<std::byte> user(bytes);
  if (!GetTokenInformation(token.get(), TokenUser, user.data(), bytes, &bytes)) return {};
  char* text = nullptr;
  if (!ConvertSidToStringSidA(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, &text)) return {};
  std::string sid(text);
  LocalFree(text);
  return sid;
}

}  // namespace

OwnAccess::OwnAccess() {
  const std::string sid = UserSid();
  if (sid.empty()) return;
  // Protected from inherited entries; one entry: everything, to this user.
  const std::string list = "D:P(A;;GA;;;" + sid + ")";
  void* descriptor = nullptr;
  ConvertStringSecurityDescriptorToSecurityDescriptorA(list.c_str(), SDDL_REVISION_1, &descriptor, nullptr);
  descriptor_.reset(descriptor);
  attributes_ = {sizeof(attributes_), descriptor, FALSE};
}

}  // namespace companion
