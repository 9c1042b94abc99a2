// The self-test: runs its parts one after the other, each in processes of its own, and writes what came of them.
#include <windows.h>

#include <cstdio>
#include <exception>

#include "ask_direct3d.h"
#include "base/text_file.h"
#include "console_win32.h"
#include "facts_win32.h"
#include "options.h"
#include "progress.h"
#include "report/page.h"
#include "run_sessions_win32.h"
#include "sharing/question.h"
#include "surroundings_win32.h"

namespace ombrel::selftest {
namespace {

constexpr double kMachineSeconds = 1, kDirect3DSeconds = 10, kFaultSeconds = 6, kSessionExtraSeconds = 4;

// What a run found, as it goes along.
class Run {
 public:
  explicit Run(Options options) : options_(std::move(options)), progress_(Seconds()) {
    surroundings_.work = work_.Path();
  }

  bool All() {
    LookAtMachineFirst();
    AskDirect3DNext();
    for (const SessionPlan& plan : options_.Sessions()) PlaySession(plan);
    if (options_.Has("faults")) PlayFaults();
    Write();
    progress_.End();
    return report_.Overall() != Result::kBad;
  }

  void PrintResult() const {
    for (const Verdict& verdict : report_.Verdicts()) {
      if (verdict.result != Result::kBad) continue;
      std::printf("BAD: %s: %s. Expected: %s. Found: %s.\n", verdict.group.c_str(), verdict.name.c_str(),
                  verdict.expected.c_str(), verdict.found.c_str());
    }
    std::printf("%s\nThe report is in report.html and report.json.\n",
                report_.Overall() == Result::kBad ? "Something is not as it should be." : "Nothing bad was found.");
  }

 private:
  [[nodiscard]] double Seconds() const {
    double seconds = kMachineSeconds + kDirect3DSeconds;
    for (const SessionPlan& plan : options_.Sessions()) seconds += plan.seconds + kSessionExtraSeconds;
    return seconds + (options_.Has("faults") ? kFaultSeconds * static_cast<double>(options_.FaultsToPlay().size()) : 0);
  }

  void LookAtMachineFirst() {
    progress_.Begin("The machine", kMachineSeconds);
    machine_ = LookAtMachine();
    surroundings_.isWine = machine_.isWine;
    if (!options_.Has("machine")) return;
    report_.Add(Judge(machine_));
    report_.AddSection(SectionOf(machine_));
  }

  // Always asked which sharing it is: sessions and faults go by it.
  void AskDirect3DNext() {
    progress_.Begin("Direct3D", kDirect3DSeconds);
    const bench::SharingDecision sharing = bench::ChooseSharing(options_.sharing);
    surroundings_.sharing = bench::NameOf(sharing.sharing);
    const std::string drawing = DrawsInSoftware(machine_) ? "software rasterizer" : "graphics card";
    subtitle_ = surroundings_.sharing + " sharing, " + drawing;
    report_.AddFact("Driver", OMBREL_VERSION);
    report_.AddFact("Sharing", sharing.Text());
    report_.AddFact("Drawing", drawing);
    report_.AddFact("Form", options_.isBrief ? "brief" : "full");
    if (!options_.Has("direct3d")) return;
    const Direct3DAnswers answers = AskDirect3DApart(sharing);
    report_.Add(Judge(answers, !machine_.isWine));
    report_.AddSection(SectionOf(answers));
  }

  [[nodiscard]] Direct3DAnswers AskDirect3DApart(const bench::SharingDecision& sharing) const {
    constexpr std::uint32_t kAskMs = 120'000;
    const auto file = surroundings_.work / "direct3d.json";
    const Ending ending = RunToEnd(surroundings_.programs / "ombrel_selftest.exe",
                                   {"--ask-direct3d", file.generic_string(), "--sharing", surroundings_.sharing},
                                   surroundings_.work / "direct3d.log", kAskMs);
    Direct3DAnswers answers;
    if (std::filesystem::exists(file)) {
      answers = ReadDirect3D(Json::parse(bench::ReadText(file)));
    } else {
      answers.failure = "the program that asks failed (" + ending.text + ")";
    }
    answers.sharing = surroundings_.sharing;
    answers.sharingReason = sharing.reason;
    answers.isForced = options_.sharing.has_value();
    return answers;
  }

  void PlaySession(const SessionPlan& plan) {
    progress_.Begin("A session, " + plan.mode + ", " + std::to_string(plan.fps) + " frames a second",
                    plan.seconds + kSessionExtraSeconds);
    const SessionOutcome session = RunSession(surroundings_, plan);
    report_.Add(Judge(session, !DrawsInSoftware(machine_)));
    report_.AddSection(SectionOf(session));
  }

  void PlayFaults() {
    const auto& faults = options_.FaultsToPlay();
    progress_.Begin("Faults", kFaultSeconds * static_cast<double>(faults.size()));
    const FaultsRun run = RunFaults(surroundings_, faults);
    report_.Add(JudgeFaults(faults, run.report, run.exit));
    report_.AddSection(SectionOfFaults(run.report));
  }

  void Write() const {
    Json json = report_.AsJson("Ombrel self-test", subtitle_);
    const Cleaner cleaner;
    CleanTexts(json, [&](const std::string& text) { return cleaner.Clean(text); });
    const std::string text = json.dump(1, ' ', false, Json::error_handler_t::replace);
    bench::WriteText(options_.out / "report.json", text + "\n");
    bench::WriteText(options_.out / "report.html",
                     report::FillTemplate(bench::ReadText(surroundings_.programs / "template.html"), text));
  }

  const Options options_;
  const WorkFolder work_;
  Surroundings surroundings_;
  Progress progress_;
  MachineFacts machine_;
  std::string subtitle_;
  Report report_;
};

int AskHere(const Options& options) {
  const bench::SharingDecision sharing = bench::ChooseSharing(options.sharing);
  const Direct3DAnswers answers = AskDirect3D(sharing, options.sharing.has_value(), OwnProgram());
  bench::WriteText(options.askDirect3D, AsJson(answers).dump());
  return 0;
}

int TakeTurnsHere(const Options& options) {
  bench::ChooseSharing(options.sharing);
  return TakeTurns(*options.takeTurns);
}

int RunAll(const Options& options) {
  for (const std::string& running : RunningPrograms()) {
    std::printf("%s is running. Close SteamVR and the companion first: the test would disturb them.\n",
                running.c_str());
    return 1;
  }
  EndProgramsWithThisOne();
  Run run(options);
  const bool isWell = run.All();
  run.PrintResult();
  return isWell ? 0 : 1;
}

int Perform(Options options) {
  if (options.takeTurns) return TakeTurnsHere(options);
  if (!options.askDirect3D.empty()) return AskHere(options);
  options.out = std::filesystem::absolute(options.out);
  std::filesystem::current_path(OwnProgram().parent_path().parent_path());
  return RunAll(options);
}

}  // namespace
}  // namespace ombrel::selftest

int main(int argc, char** argv) {
  using namespace ombrel::selftest;
  if (const auto code = bench::AnswerSharing(argc, argv)) return *code;
  Options options;
  if (const auto code = ParseOptions(argc, argv, options)) return *code;
  int code = 1;
  try {
    code = Perform(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "ombrel_selftest: %s\n", error.what());
  }
  if (options.isWaitingForKey) {
    std::printf("Press any key to continue . . . ");
    ombrel::doctor::WaitForKey();
  }
  return code;
}
