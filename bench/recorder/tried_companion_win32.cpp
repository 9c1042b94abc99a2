#include "tried_companion.h"

#include <ombrel/protocol.h>

#include <chrono>

#include "checker/growing_file.h"
#include "companion_watch.h"

namespace bench {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t kTimeToEndMs = 2000;

// Starts programs in another folder than this one's.
class InFolder {
 public:
  explicit InFolder(const std::filesystem::path& folder) { std::filesystem::current_path(folder); }
  ~InFolder() { std::filesystem::current_path(before_); }
  InFolder(const InFolder&) = delete;
  InFolder& operator=(const InFolder&) = delete;

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
};

void Show(const std::stop_token& stop, const std::filesystem::path& log) {
  checker::GrowingFile file(log);
  DWORD written = 0;
  for (bool last = false; !last; std::this_thread::sleep_for(50ms)) {
    last = stop.stop_requested();
    const auto text = file.More();
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  }
}

}  // namespace

TriedCompanion::TriedCompanion(const std::vector<std::string>& command, const std::filesystem::path& log)
    : process_([&] {
        const auto program = std::filesystem::absolute(command.front());
        const auto output = std::filesystem::absolute(log);
        const InFolder folder(program.parent_path());
        return ChildProcess(program, {command.begin() + 1, command.end()}, output);
      }()),
      showing_(Show, log) {}

TriedCompanion::~TriedCompanion() {
  static_cast<void>(process_.WaitForEnd(kTimeToEndMs));
  process_.Kill();
}

std::string WhyNotToTry(const std::filesystem::path& companion) {
  if (!std::filesystem::is_regular_file(companion)) return "there is no " + companion.string();
  if (companion.filename() != OMBREL_PROCESS_NAME) {
    return "the program must be named " OMBREL_PROCESS_NAME ", spelled like this (rule P1)";
  }
  for (const char* const name : {OMBREL_PROCESS_NAME, OMBREL_MONITOR_PROCESS_NAME, "vrserver.exe"}) {
    if (FindProcess(name) != 0) return std::string(name) + " is running; close SteamVR and every companion first";
  }
  return {};
}

}  // namespace bench
