#include "surroundings_win32.h"

#include <windows.h>

#include <stdexcept>

#include "console_win32.h"
#include "machine_win32.h"

namespace ombrel::selftest {
namespace {

doctor::Account AccountWithFolder() {
  doctor::Account account = doctor::WindowsMachine().WhoAmI();
  const auto folder = OwnProgram().parent_path().parent_path();
  account.userNames.push_back(doctor::Utf8(folder.wstring()));
  account.userNames.push_back(doctor::Utf8(folder.generic_wstring()));
  return account;
}

}  // namespace

std::filesystem::path OwnProgram() {
  std::wstring path(32'768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

WorkFolder::WorkFolder() {
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void EndProgramsWithThisOne() {
  // Never closed but by the end of this process: that ends all in the job, this process among them.
  HANDLE job = CreateJobObjectA(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (job == nullptr || SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits)) == 0 ||
      AssignProcessToJobObject(job, GetCurrentProcess()) == 0) {
    throw std::runtime_error("programs cannot be tied to this one, error " + std::to_string(GetLastError()));
  }
}

Cleaner::Cleaner() : anonymizer_(AccountWithFolder()) {}

}  // namespace ombrel::selftest
