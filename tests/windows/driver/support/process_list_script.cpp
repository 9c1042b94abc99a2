#include "support/process_list_script.h"

#include <windows.h>
// windows.h must come first.
#include <tlhelp32.h>

#include <cstring>
#include <utility>

#include "support/module_import.h"

namespace ombrel::test {
namespace {

struct Script {
  std::vector<std::string> names;
  std::vector<int> answers;
  std::vector<unsigned> entrySizes;
  std::size_t next = 0;
  bool snapshotsFail = false;
};

Script script;

HANDLE WINAPI TakeSnapshot(DWORD, DWORD) {
  return script.snapshotsFail ? INVALID_HANDLE_VALUE : CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

BOOL WINAPI Next(HANDLE, PROCESSENTRY32* entry) {
  if (script.next >= script.names.size()) return FALSE;
  entry->th32ProcessID = static_cast<DWORD>(1000 + script.next);
  std::strncpy(entry->szExeFile, script.names[script.next].c_str(), sizeof(entry->szExeFile) - 1);
  return script.answers[script.next++];
}

BOOL WINAPI First(HANDLE snapshot, PROCESSENTRY32* entry) {
  script.entrySizes.push_back(entry->dwSize);
  script.next = 0;
  return Next(snapshot, entry);
}

void* AsPointer(auto function) { return reinterpret_cast<void*>(function); }

}  // namespace

class ProcessListScript::Hooks {
 public:
  explicit Hooks(void* module)
      : snapshot_(module, "CreateToolhelp32Snapshot", AsPointer(&TakeSnapshot)),
        first_(module, "Process32First", AsPointer(&First)),
        next_(module, "Process32Next", AsPointer(&Next)) {}

 private:
  ModuleImport snapshot_;
  ModuleImport first_;
  ModuleImport next_;
};

ProcessListScript::ProcessListScript(void* module, std::vector<std::string> names)
    : hooks_(std::make_unique<Hooks>(module)) {
  script = {};
  script.names = std::move(names);
  script.answers.assign(script.names.size(), TRUE);
}

ProcessListScript::~ProcessListScript() = default;

void ProcessListScript::AnswerAt(std::size_t position, int value) { script.answers.at(position) = value; }
void ProcessListScript::FailSnapshots() { script.snapshotsFail = true; }
std::vector<unsigned> ProcessListScript::EntrySizes() const { return script.entrySizes; }

}  // namespace ombrel::test
