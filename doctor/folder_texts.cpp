// What is wrong with the driver's folder and settings. Rows stand in the order in which things go wrong.
#include "subjects.h"

namespace ombrel::doctor {
namespace {

using enum Severity;

constexpr FindingText kTexts[] = {
    // Where the folder lies
    {"path_not_ascii",
     kProblem,
     {"The folder's path has letters that SteamVR cannot load a driver from: {0}",
      "Der Pfad des Ordners hat Buchstaben, mit denen SteamVR keinen Treiber laden kann: {0}"},
     {"Run uninstall.cmd, move the folder to one such as C:\\VR\\ombrel, and run install.cmd there.",
      "uninstall.cmd ausführen, den Ordner etwa nach C:\\VR\\ombrel verschieben und dort install.cmd ausführen."}},
    {"folder_renamed",
     kProblem,
     {"The folder is called \"{0}\"; SteamVR finds the library only in one called \"ombrel\".",
      "Der Ordner heißt \"{0}\"; SteamVR findet die Bibliothek nur in einem namens \"ombrel\"."},
     {"Run uninstall.cmd, name the folder \"ombrel\" again, and run install.cmd.",
      "uninstall.cmd ausführen, den Ordner wieder \"ombrel\" nennen und install.cmd ausführen."}},
    {"folder_nested",
     kWarning,
     {"A copy of the driver lies inside another one: {0}", "Eine Kopie des Treibers liegt in einer anderen: {0}"},
     {"Keep one: unpack the archive to a place where there is no folder \"ombrel\", and run install.cmd there.",
      "Nur eine behalten: das Archiv entpacken, wo es noch keinen Ordner \"ombrel\" gibt, und dort install.cmd "
      "ausführen."}},
    {"network_drive",
     kWarning,
     {"The folder lies on a network drive: {0}", "Der Ordner liegt auf einem Netzlaufwerk: {0}"},
     {"Run uninstall.cmd, move the folder to a drive of this computer, and run install.cmd there.",
      "uninstall.cmd ausführen, den Ordner auf ein Laufwerk dieses Computers verschieben und dort install.cmd "
      "ausführen."}},

    // What lies in the folder
    {"file_missing",
     kProblem,
     {"A file of the driver is missing: {0}", "Eine Datei des Treibers fehlt: {0}"},
     {"Unpack the whole archive once more. If it vanishes again, look into the virus scanner's quarantine.",
      "Das ganze Archiv noch einmal entpacken. Verschwindet sie wieder, in der Quarantäne des Virenscanners "
      "nachsehen."}},
    {"json_broken",
     kProblem,
     {"A file of the driver is damaged at line {1}: {0}", "Eine Datei des Treibers ist in Zeile {1} beschädigt: {0}"},
     {"Unpack the whole archive to this place once more.", "Das ganze Archiv noch einmal an diese Stelle entpacken."}},
    {"manifest_other_name",
     kProblem,
     {"The driver's manifest names it \"{0}\" instead of \"ombrel\".",
      "Das Manifest des Treibers nennt ihn \"{0}\" statt \"ombrel\"."},
     {"Unpack the whole archive to this place once more.", "Das ganze Archiv noch einmal an diese Stelle entpacken."}},
    {"library_not_64_bits",
     kProblem,
     {"The driver's library is no 64-bit library of Windows.",
      "Die Bibliothek des Treibers ist keine 64-Bit-Bibliothek für Windows."},
     {"Unpack the whole archive to this place once more.", "Das ganze Archiv noch einmal an diese Stelle entpacken."}},
    {"library_lacks_library",
     kProblem,
     {"The driver's library does not load: a library of Windows that it needs is missing (126).",
      "Die Bibliothek des Treibers lädt nicht: Eine Bibliothek von Windows, die sie braucht, fehlt (126)."},
     {"Update Windows (10 or 11, 64 bits) and the graphics driver.",
      "Windows (10 oder 11, 64 Bit) und den Grafiktreiber aktualisieren."}},
    {"library_lacks_function",
     kProblem,
     {"The driver's library does not load: a library that it needs is too old, or it is another library (127).",
      "Die Bibliothek des Treibers lädt nicht: Eine Bibliothek, die sie braucht, ist zu alt, oder sie ist eine andere "
      "(127)."},
     {"Unpack the whole archive to this place once more; update Windows.",
      "Das ganze Archiv noch einmal an diese Stelle entpacken; Windows aktualisieren."}},
    {"library_damaged",
     kProblem,
     {"The driver's library does not load: it is damaged (193).",
      "Die Bibliothek des Treibers lädt nicht: Sie ist beschädigt (193)."},
     {"Unpack the whole archive to this place once more.", "Das ganze Archiv noch einmal an diese Stelle entpacken."}},
    {"library_blocked",
     kProblem,
     {"Windows or a virus scanner does not let the driver's library be loaded ({0}).",
      "Windows oder ein Virenscanner lässt die Bibliothek des Treibers nicht laden ({0})."},
     {"Allow the file in the virus scanner; before unpacking, take \"Unblock\" in the archive's properties.",
      "Die Datei im Virenscanner zulassen; vor dem Entpacken in den Eigenschaften des Archivs \"Zulassen\" wählen."}},
    {"library_not_loading",
     kProblem,
     {"The driver's library does not load: Windows' error {0}.",
      "Die Bibliothek des Treibers lädt nicht: Windows-Fehler {0}."},
     {"Unpack the whole archive to this place once more. If it stays, send the bundle of \"check.cmd --bundle "
      "FOLDER\".",
      "Das ganze Archiv noch einmal an diese Stelle entpacken. Bleibt es so, schick das Bündel von "
      "\"check.cmd --bundle ORDNER\"."}},
    {"library_crashes",
     kProblem,
     {"The driver's library crashes while it is loaded ({0}).",
      "Die Bibliothek des Treibers stürzt beim Laden ab ({0})."},
     {"Send the bundle of \"check.cmd --bundle FOLDER\" to whoever helps you.",
      "Schick das Bündel von \"check.cmd --bundle ORDNER\" an den, der dir hilft."}},

    // Settings
    {"settings_wrong_type",
     kWarning,
     {"The setting \"{0}\" is not written as the driver reads it.",
      "Die Einstellung \"{0}\" ist nicht so geschrieben, wie der Treiber sie liest."},
     {"Write whole numbers without quotes, switches as true or false.",
      "Ganze Zahlen ohne Anführungszeichen schreiben, Schalter als true oder false."}},
    {"settings_smallest_picture",
     kWarning,
     {"The settings give a picture of the smallest size: {0} x {1} for each eye.",
      "Die Einstellungen ergeben ein Bild der kleinsten Größe: {0} x {1} je Auge."},
     {"Delete windowWidth and windowHeight from the section \"driver_ombrel\" of steamvr.vrsettings.",
      "windowWidth und windowHeight aus dem Abschnitt \"driver_ombrel\" von steamvr.vrsettings löschen."}},
    {"settings_virtual_mode",
     kWarning,
     {"The setting hmdMode is 1: SteamVR composes the picture, which is not the usual mode.",
      "Die Einstellung hmdMode ist 1: SteamVR setzt das Bild zusammen, was nicht der übliche Modus ist."},
     {"If the picture is black or slow, delete hmdMode from steamvr.vrsettings.",
      "Ist das Bild schwarz oder langsam, hmdMode aus steamvr.vrsettings löschen."}},
    {"settings_odd_mode",
     kWarning,
     {"The setting hmdMode is {0}, which means the same as 0.",
      "Die Einstellung hmdMode ist {0}, was dasselbe bedeutet wie 0."},
     {"Delete hmdMode from steamvr.vrsettings, or set it to 0 or 1.",
      "hmdMode aus steamvr.vrsettings löschen oder auf 0 oder 1 setzen."}},
};

}  // namespace

std::span<const FindingText> FolderTexts() { return kTexts; }

}  // namespace ombrel::doctor
