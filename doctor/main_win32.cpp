// The program: looks at the computer that it runs on, tells what it found, and registers the driver when told to.
#include <windows.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "console_win32.h"
#include "doctor/options.h"
#include "doctor/registrar.h"
#include "doctor/report.h"
#include "machine_win32.h"

namespace ombrel::doctor {
namespace {

constexpr int kFindings = 1;
constexpr int kCouldNotLook = 2;

Language UsersLanguage() {
  return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_GERMAN ? Language::kGerman : Language::kEnglish;
}

void WriteBundle(const std::string& folder, const std::vector<NamedFile>& files) {
  const std::filesystem::path place(Wide(folder));
  std::filesystem::create_directories(place);
  for (const NamedFile& file : files) {
    std::ofstream stream(place / file.name, std::ios::binary);
    stream << file.bytes;
    if (!stream.flush()) throw std::runtime_error("cannot write " + file.name);
  }
}

int Check(WindowsMachine& machine, const Options& options, Language language) {
  constexpr Text kBundled{"What a helper needs is in the folder {0}\n",
                          "Was ein Helfer braucht, liegt im Ordner {0}\n"};
  const Survey survey = Look(machine);
  const Report report = MakeReport(survey);
  if (!options.bundleFolder.empty()) WriteBundle(options.bundleFolder, MakeBundle(survey, report));
  if (options.asJson) {
    const auto json = AsJson(report, language, Anonymizer(survey.account));
    Print(json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
  } else {
    Print(AsText(report, language));
    if (!options.bundleFolder.empty()) Print(Filled(kBundled.In(language), {options.bundleFolder}));
  }
  return report.IsWell() ? 0 : kFindings;
}

int Register(WindowsMachine& machine, const Options& options, Language language) {
  const RegistrarResult result = options.task == Task::kInstall ? Install(machine, machine, options.replace, language)
                                                                : Uninstall(machine, machine, language);
  Print(result.text);
  return static_cast<int>(result.code);
}

int Perform(const Options& options, Language language) {
  WindowsMachine machine;
  switch (options.task) {
    case Task::kHelp:
      Print(Usage());
      return 0;
    case Task::kVersion:
      Print("ombrel_doctor " OMBREL_VERSION "\n");
      return 0;
    case Task::kInstall:
    case Task::kUninstall:
      return Register(machine, options, language);
    default:
      return Check(machine, options, language);
  }
}

int RunProgram(const std::vector<std::string>& arguments) {
  constexpr Text kPressAnyKey{"\nPress any key to continue . . . ", "\nWeiter mit einer beliebigen Taste . . . "};
  const auto options = ParseOptions(arguments);
  if (!options) {
    Print(Usage());
    return kCouldNotLook;
  }
  if (options->task == Task::kProbeLoad) return ProbeLoad(options->library);
  const Language language = options->language.value_or(UsersLanguage());
  int code = kCouldNotLook;
  try {
    code = Perform(*options, language);
  } catch (const std::exception& error) {
    Print(std::string("ombrel_doctor: ") + error.what() + "\n");
  }
  if (options->pause.value_or(OwnsItsWindow())) {
    Print(kPressAnyKey.In(language));
    WaitForKey();
    Print("\n");
  }
  return code;
}

}  // namespace
}  // namespace ombrel::doctor

int wmain(int count, wchar_t** words) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(ombrel::doctor::Utf8(words[i]));
  return ombrel::doctor::RunProgram(arguments);
}
