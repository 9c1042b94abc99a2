#include "doctor/registrar.h"

#include <algorithm>

#include "doctor/paths.h"
#include "doctor/survey.h"

namespace ombrel::doctor {
namespace {

constexpr Text kInstalled{
    "SteamVR now knows the Ombrel driver in\n  \"{0}\"\n"
    "If SteamVR is running, restart it. Start Ombrel.exe first: without it the driver declines.\n"
    "Leave this folder where it is; before you move or delete it, run uninstall.cmd.\n",
    "SteamVR kennt jetzt den Ombrel-Treiber in\n  \"{0}\"\n"
    "Läuft SteamVR, starte es neu. Starte zuerst Ombrel.exe: Ohne dieses lehnt der Treiber ab.\n"
    "Lass diesen Ordner, wo er ist; bevor du ihn verschiebst oder löschst, führe uninstall.cmd aus.\n"};
constexpr Text kUninstalled{
    "SteamVR no longer knows the Ombrel driver in\n  \"{0}\"\n"
    "If SteamVR is running, restart it. This folder may now be deleted.\n",
    "SteamVR kennt den Ombrel-Treiber nicht mehr in\n  \"{0}\"\n"
    "Läuft SteamVR, starte es neu. Dieser Ordner darf jetzt gelöscht werden.\n"};
constexpr Text kIncomplete{
    "Nothing was changed: this folder is not complete.\n  \"{0}\"\nIt lacks {1}.\n"
    "Unpack the whole archive and run install.cmd there.\n",
    "Nichts wurde geändert: Dieser Ordner ist nicht vollständig.\n  \"{0}\"\nEs fehlt {1}.\n"
    "Entpacke das ganze Archiv und führe dort install.cmd aus.\n"};
constexpr Text kInUse{
    "Nothing was changed: SteamVR is running with the driver in this folder, so Windows could not replace it.\n"
    "  \"{0}\"\nClose SteamVR, unpack the archive to this place once more, and run this again.\n",
    "Nichts wurde geändert: SteamVR läuft mit dem Treiber in diesem Ordner, daher konnte Windows ihn nicht ersetzen.\n"
    "  \"{0}\"\nSchließe SteamVR, entpacke das Archiv noch einmal an diese Stelle und wiederhole dies.\n"};
constexpr Text kNoRegistry{
    "Nothing was changed: SteamVR was not found. It keeps the list of its folders in\n  \"{0}\"\n"
    "and there is no such file. Install SteamVR, start it once, and run this again.\n",
    "Nichts wurde geändert: SteamVR wurde nicht gefunden. Die Liste seiner Ordner führt es in\n  \"{0}\"\n"
    "und diese Datei fehlt. Installiere SteamVR, starte es einmal und wiederhole dies.\n"};
constexpr Text kNotUnderstood{
    "Nothing was changed: SteamVR was not found. The list of its folders,\n  \"{0}\"\n"
    "does not name its folder: it cannot be read from line {1} on. Start SteamVR once, and run this again.\n",
    "Nichts wurde geändert: SteamVR wurde nicht gefunden. Die Liste seiner Ordner,\n  \"{0}\"\n"
    "nennt seinen Ordner nicht: Ab Zeile {1} ist sie unlesbar. Starte SteamVR einmal und wiederhole dies.\n"};
constexpr Text kNoRuntime{
    "Nothing was changed: SteamVR was not found. The list of its folders,\n  \"{0}\"\n"
    "does not name its folder. Start SteamVR once, and run this again.\n",
    "Nichts wurde geändert: SteamVR wurde nicht gefunden. Die Liste seiner Ordner,\n  \"{0}\"\n"
    "nennt seinen Ordner nicht. Starte SteamVR einmal und wiederhole dies.\n"};
constexpr Text kNoProgram{
    "Nothing was changed: SteamVR was not found. It is said to be in\n  \"{0}\"\n"
    "but there is no bin\\win64\\vrpathreg.exe in it. Start SteamVR once, and run this again.\n",
    "Nichts wurde geändert: SteamVR wurde nicht gefunden. Es soll liegen in\n  \"{0}\"\n"
    "aber darin gibt es kein bin\\win64\\vrpathreg.exe. Starte SteamVR einmal und wiederhole dies.\n"};
constexpr Text kByHand{
    "By hand, this does the same, with the folder of SteamVR put in:\n"
    "  \"<SteamVR>\\bin\\win64\\vrpathreg.exe\" {0} \"{1}\"\n",
    "Von Hand bewirkt dies dasselbe, mit dem Ordner von SteamVR eingesetzt:\n"
    "  \"<SteamVR>\\bin\\win64\\vrpathreg.exe\" {0} \"{1}\"\n"};
constexpr Text kProgramFailed{"SteamVR's own program failed with code {0}:\n  \"{1}\" {2} \"{3}\"\n",
                              "SteamVRs eigenes Programm ist gescheitert, Code {0}:\n  \"{1}\" {2} \"{3}\"\n"};
constexpr Text kDeleted{"Deleted \"{0}\", which an older version left.\n",
                        "\"{0}\" gelöscht, was von einer älteren Version übrig war.\n"};
constexpr Text kTakenOut{"SteamVR no longer knows the copy in\n  \"{0}\"\n",
                         "SteamVR kennt die Kopie nicht mehr in\n  \"{0}\"\n"};
constexpr Text kOtherCopyFirst{
    "But SteamVR still loads another copy of it, which its list names first:\n  \"{0}\"\n"
    "To take that one out of the list, run: install.cmd --replace\n",
    "Aber SteamVR lädt weiterhin eine andere Kopie, die seine Liste zuerst nennt:\n  \"{0}\"\n"
    "Um diese aus der Liste zu nehmen, führe aus: install.cmd --replace\n"};

class Registrar {
 public:
  Registrar(Machine& machine, Hands& hands, Language language)
      : machine_(machine), hands_(hands), language_(language), folder_(machine.DriverFolder()) {}

  RegistrarResult Install(bool replace);
  RegistrarResult Uninstall();

 private:
  void Say(const Text& text, const std::vector<std::string>& values = {}) {
    result_.text += Filled(text.In(language_), values);
  }
  RegistrarResult Refuse(RegistrarCode code, const Text& text, const std::vector<std::string>& values) {
    result_.code = code;
    Say(text, values);
    return result_;
  }

  [[nodiscard]] std::string LackingFile() const;
  // Each leaves a code in result_ when it fails.
  bool FindProgram(const char* verb);
  bool Change(const char* verb, const std::string& folder);
  void DeleteLeftovers();
  void DeleteLeftoversOf(const std::string& list, const std::vector<std::string>& kept);
  // Nothing when the runtime would load ours.
  [[nodiscard]] std::optional<std::string> CopyBeforeOurs() const;

  Machine& machine_;
  Hands& hands_;
  Language language_;
  std::string folder_;
  Runtime runtime_;
  std::string program_;
  RegistrarResult result_;
};

std::string Registrar::LackingFile() const {
  for (const std::string& file : {std::string(kLibrary), std::string(kManifest), ListOfFiles()}) {
    if (machine_.Kind(Join(folder_, file)) != PathKind::kFile) return file;
  }
  return {};
}

// In the first of the listed runtimes that exists, otherwise where the list of installed programs has it.
bool Registrar::FindProgram(const char* verb) {
  runtime_ = LookAtRuntime(machine_);
  const JsonFile& registry = runtime_.pathRegistry;
  if (registry.state != ReadState::kRead) {
    Refuse(RegistrarCode::kNoRegistry, kNoRegistry, {registry.path});
    return false;
  }
  std::string runtime = runtime_.folder;
  if (runtime.empty()) runtime = runtime_.installed.value_or("");
  if (runtime.empty() && !runtime_.folders.empty()) runtime = runtime_.folders.front();
  program_ = Join(runtime, kRegistrationProgram);
  if (runtime.empty() && registry.IsUnderstood()) Refuse(RegistrarCode::kNoRuntime, kNoRuntime, {registry.path});
  if (runtime.empty() && !registry.IsUnderstood()) {
    Refuse(RegistrarCode::kNoRuntime, kNotUnderstood, {registry.path, std::to_string(registry.wrongLine)});
  }
  if (!runtime.empty() && machine_.Kind(program_) != PathKind::kFile) {
    Refuse(RegistrarCode::kNoProgram, kNoProgram, {runtime});
  }
  if (result_.code != RegistrarCode::kDone) Say(kByHand, {verb, folder_});
  return result_.code == RegistrarCode::kDone;
}

bool Registrar::Change(const char* verb, const std::string& folder) {
  const std::optional<int> code = hands_.Run(program_, {verb, folder});
  if (code == 0) return true;
  Refuse(RegistrarCode::kProgramFailed, kProgramFailed,
         {code ? std::to_string(*code) : std::string("?"), program_, verb, folder});
  return false;
}

void Registrar::DeleteLeftovers() {
  const std::string resources = Join(folder_, "resources");
  const std::string ownList = Join(folder_, ListOfFiles());
  const std::vector<std::string> kept = ReadListOfFiles(machine_, ownList);
  for (const FolderEntry& entry : machine_.List(resources)) {
    const std::string name = LowerAscii(entry.name);
    const std::string list = Join(resources, entry.name);
    const bool isList = name.starts_with("files-") && name.ends_with(".txt");
    if (isList && !SamePath(list, ownList)) DeleteLeftoversOf(list, kept);
  }
}

// A list may be anybody's: nothing outside the folder is touched.
bool StaysInside(const std::string& file) {
  return !file.starts_with('\\') && !Contains(file, "..") && !Contains(file, ":") && !Contains(file, "/");
}

void Registrar::DeleteLeftoversOf(const std::string& list, const std::vector<std::string>& kept) {
  for (const std::string& file : ReadListOfFiles(machine_, list)) {
    const auto isSame = [&](const std::string& each) { return EqualIgnoringCase(each, file); };
    const bool isLeft = StaysInside(file) && std::none_of(kept.begin(), kept.end(), isSame);
    if (isLeft && hands_.Delete(Join(folder_, file))) Say(kDeleted, {file});
  }
  hands_.Delete(list);
}

std::optional<std::string> Registrar::CopyBeforeOurs() const {
  for (const ListedFolder& each : LookAtRuntime(machine_).drivers) {
    if (SamePath(each.path, folder_)) return std::nullopt;
    if (each.isOurs && each.isThere) return each.path;
  }
  return std::nullopt;
}

RegistrarResult Registrar::Install(bool replace) {
  if (const std::string file = LackingFile(); !file.empty()) {
    return Refuse(RegistrarCode::kIncomplete, kIncomplete, {folder_, file});
  }
  const std::string library = Join(folder_, kLibrary);
  if (hands_.IsInUse(library)) return Refuse(RegistrarCode::kInUse, kInUse, {library});
  if (!FindProgram("adddriver")) return result_;
  for (const ListedFolder& each : runtime_.drivers) {
    if (!replace || !(each.isOurs || each.holdsInnerCopy) || SamePath(each.path, folder_)) continue;
    if (!Change("removedriver", each.path)) return result_;
    Say(kTakenOut, {each.path});
  }
  if (!Change("adddriver", folder_)) return result_;
  DeleteLeftovers();
  Say(kInstalled, {folder_});
  if (const auto other = CopyBeforeOurs()) return Refuse(RegistrarCode::kOtherCopyFirst, kOtherCopyFirst, {*other});
  return result_;
}

RegistrarResult Registrar::Uninstall() {
  if (!FindProgram("removedriver") || !Change("removedriver", folder_)) return result_;
  Say(kUninstalled, {folder_});
  return result_;
}

}  // namespace

RegistrarResult Install(Machine& machine, Hands& hands, bool replace, Language language) {
  return Registrar(machine, hands, language).Install(replace);
}

RegistrarResult Uninstall(Machine& machine, Hands& hands, Language language) {
  return Registrar(machine, hands, language).Uninstall();
}

}  // namespace ombrel::doctor
