// Who runs this program and others, and what the computer draws with.
#include <windows.h>

#include <dxgi.h>
#include <wrl/client.h>
#include <wtsapi32.h>

#include <algorithm>

#include "console_win32.h"
#include "doctor/paths.h"
#include "machine_win32.h"
#include "platform/owned_handle.h"
#include "render/output_rules.h"

namespace ombrel::doctor {
namespace {

using Microsoft::WRL::ComPtr;

OwnedHandle TokenOf(HANDLE process) {
  HANDLE token = nullptr;
  if (OpenProcessToken(process, TOKEN_QUERY, &token) == 0) return {};
  return OwnedHandle(token);
}

bool IsElevated(HANDLE token) {
  TOKEN_ELEVATION elevation{};
  DWORD size = 0;
  return GetTokenInformation(token, TokenElevation, &elevation, sizeof(elevation), &size) != 0 &&
         elevation.TokenIsElevated != 0;
}

// TOKEN_USER with the identifier behind it.
std::vector<unsigned char> UserOf(HANDLE token) {
  DWORD size = 0;
  GetTokenInformation(token, TokenUser, nullptr, 0, &size);
  std::vector<unsigned char> user(size);
  if (size == 0 || GetTokenInformation(token, TokenUser, user.data(), size, &size) == 0) return {};
  return user;
}

PSID SidIn(std::vector<unsigned char>& user) { return reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid; }

bool IsSameUser(HANDLE a, HANDLE b) {
  std::vector<unsigned char> userOfA = UserOf(a);
  std::vector<unsigned char> userOfB = UserOf(b);
  return !userOfA.empty() && !userOfB.empty() && EqualSid(SidIn(userOfA), SidIn(userOfB)) != 0;
}

std::wstring UserName() {
  wchar_t name[257];
  DWORD size = 257;
  return GetUserNameW(name, &size) != 0 ? std::wstring(name) : std::wstring();
}

std::wstring ComputerName(COMPUTER_NAME_FORMAT format) {
  wchar_t name[257];
  DWORD size = 257;
  return GetComputerNameExW(format, name, &size) != 0 ? std::wstring(name, size) : std::wstring();
}

std::wstring SignedIn() {
  wchar_t* text = nullptr;
  DWORD bytes = 0;
  if (WTSQuerySessionInformationW(WTS_CURRENT_SERVER_HANDLE, WTS_CURRENT_SESSION, WTSUserName, &text, &bytes) == 0) {
    return {};
  }
  std::wstring name(text);
  WTSFreeMemory(text);
  return name;
}

std::wstring ShortPath(const std::wstring& path) {
  wchar_t text[MAX_PATH];
  const DWORD length = GetShortPathNameW(path.c_str(), text, MAX_PATH);
  return length < MAX_PATH ? std::wstring(text, length) : std::wstring();
}

std::string InAnsiCodePage(const std::wstring& wide) {
  std::string ansi(wide.size() * 4, '\0');
  ansi.resize(
      static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), ansi.data(),
                                                   static_cast<int>(ansi.size()), nullptr, nullptr)));
  return ansi;
}

// In each spelling that a file may have.
void AddSpellings(std::vector<std::string>& names, std::wstring name) {
  if (name.empty()) return;
  names.push_back(Utf8(name));
  names.push_back(InAnsiCodePage(name));
  CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
  names.push_back(Utf8(name));
  CharLowerBuffW(name.data(), static_cast<DWORD>(name.size()));
  names.push_back(Utf8(name));
}

// As the graphics driver's files have it.
std::string DriverVersion(IDXGIAdapter& adapter) {
  LARGE_INTEGER version{};
  if (FAILED(adapter.CheckInterfaceSupport(__uuidof(IDXGIDevice), &version))) return {};
  const auto high = static_cast<std::uint32_t>(version.HighPart), low = static_cast<std::uint32_t>(version.LowPart);
  char text[32];
  std::snprintf(text, sizeof(text), "%u.%u.%u.%u", high >> 16U, high & 0xFFFFU, low >> 16U, low & 0xFFFFU);
  return text;
}

Adapter Described(IDXGIAdapter& adapter, const DXGI_ADAPTER_DESC1& desc) {
  char luid[32];
  std::snprintf(luid, sizeof(luid), "%lX:%lX", static_cast<unsigned long>(desc.AdapterLuid.HighPart),
                static_cast<unsigned long>(desc.AdapterLuid.LowPart));
  return {Utf8(desc.Description),
          luid,
          (desc.Flags & DXGI_ADAPTER_FLAG_SOFTWARE) != 0,
          IsPreferredAdapter(desc.Description),
          DriverVersion(adapter),
          desc.DedicatedVideoMemory >> 20U};
}

}  // namespace

Rights WindowsMachine::RightsOf(std::uint32_t processId) {
  const OwnedHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
  const OwnedHandle token = process ? TokenOf(process.Get()) : OwnedHandle();
  const OwnedHandle own = TokenOf(GetCurrentProcess());
  // Who has fewer rights may not look at the other's.
  if (!token || !own) return Rights::kOther;
  const bool isSame = IsSameUser(token.Get(), own.Get()) && IsElevated(token.Get()) == IsElevated(own.Get());
  return isSame ? Rights::kSame : Rights::kOther;
}

std::vector<Adapter> WindowsMachine::Adapters() {
  std::vector<Adapter> adapters;
  ComPtr<IDXGIFactory1> factory;
  if (FAILED(CreateDXGIFactory1(__uuidof(IDXGIFactory1), reinterpret_cast<void**>(factory.GetAddressOf())))) {
    return adapters;
  }
  ComPtr<IDXGIAdapter1> adapter;
  for (UINT i = 0; SUCCEEDED(factory->EnumAdapters1(i, adapter.ReleaseAndGetAddressOf())); ++i) {
    DXGI_ADAPTER_DESC1 desc{};
    if (SUCCEEDED(adapter->GetDesc1(&desc))) adapters.push_back(Described(*adapter.Get(), desc));
  }
  return adapters;
}

Account WindowsMachine::WhoAmI() {
  Account account;
  const std::wstring user = UserName();
  account.user = Utf8(user);
  account.signedIn = Utf8(SignedIn());
  const OwnedHandle token = TokenOf(GetCurrentProcess());
  account.isElevated = token && IsElevated(token.Get());
  const std::wstring home = Wide(Environment("USERPROFILE").value_or(""));
  AddSpellings(account.userNames, user);
  AddSpellings(account.userNames, Wide(account.signedIn));
  AddSpellings(account.userNames, Wide(Leaf(Utf8(home))));
  AddSpellings(account.userNames, Wide(Leaf(Utf8(ShortPath(home)))));
  AddSpellings(account.computerNames, ComputerName(ComputerNameNetBIOS));
  AddSpellings(account.computerNames, ComputerName(ComputerNameDnsHostname));
  AddSpellings(account.computerNames, Wide(Environment("USERDOMAIN").value_or("")));
  return account;
}

}  // namespace ombrel::doctor
