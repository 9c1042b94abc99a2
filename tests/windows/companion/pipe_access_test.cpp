#include <windows.h>
// windows.h must come first.
#include <aclapi.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "companion/pipe_server.h"
#include "companion/unique_handle.h"
#include "plain_client.h"

namespace companion {
namespace {

std::vector<std::byte> TokenUserOfThisProcess() {
  HANDLE token = nullptr;
  EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
  const UniqueHandle owner(token);
  std::vector<std::byte> user(256);
  DWORD bytes = 0;
  EXPECT_TRUE(GetTokenInformation(token, TokenUser, user.data(), static_cast<DWORD>(user.size()), &bytes));
  return user;
}

void ExpectOneEntryForTheUser(HANDLE pipe) {
  ACL* list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  ASSERT_EQ(
      GetSecurityInfo(pipe, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list, nullptr, &descriptor),
      DWORD{ERROR_SUCCESS});
  const std::unique_ptr<void, decltype(&LocalFree)> owner(descriptor, &LocalFree);
  ASSERT_NE(list, nullptr) << "no list lets everybody in";
  ASSERT_EQ(list->AceCount, 1);
  void* entry = nullptr;
  ASSERT_TRUE(GetAce(list, 0, &entry));
  auto* allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
  EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
  auto user = TokenUserOfThisProcess();
  EXPECT_TRUE(EqualSid(&allowed->SidStart, reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid));
}

TEST(PipeAccess, IsForTheUserOfTheProgramAlone) {
  const PipeNames names("Access");
  PipeServer server({.fromDriverName = names.in, .toDriverName = names.out});
  ASSERT_TRUE(server.Open());
  const std::pair<std::string, DWORD> ends[] = {{names.in, GENERIC_WRITE}, {names.out, GENERIC_READ}};
  for (const auto& [name, access] : ends) {
    const HANDLE pipe = CreateFileA(name.c_str(), access | READ_CONTROL, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE) << name << ' ' << GetLastError();
    const UniqueHandle owner(pipe);
    ExpectOneEntryForTheUser(pipe);
  }
}

}  // namespace
}  // namespace companion
