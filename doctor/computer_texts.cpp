// What is wrong around the driver, has crashed, or could not be judged. Rows stand in the order in which things go wrong.
#include "subjects.h"

namespace ombrel::doctor {
namespace {

using enum Severity;

constexpr FindingText kTexts[] = {
    // Accounts
    {"account_other",
     kProblem,
     {"This check runs as another account than the one that is signed in; SteamVR's list is that one's.",
      "Diese Prüfung läuft unter einem anderen Konto als dem angemeldeten; SteamVRs Liste ist die des angemeldeten."},
     {"Run check.cmd and install.cmd by a double-click, not as administrator.",
      "check.cmd und install.cmd mit einem Doppelklick ausführen, nicht als Administrator."}},
    {"companion_other_rights",
     kWarning,
     {"Ombrel.exe runs as administrator or under another account; SteamVR may not be able to reach it.",
      "Ombrel.exe läuft als Administrator oder unter einem anderen Konto; SteamVR erreicht es womöglich nicht."},
     {"Start Ombrel.exe and SteamVR the same way, by a double-click, not as administrator.",
      "Ombrel.exe und SteamVR auf dieselbe Art starten, mit einem Doppelklick, nicht als Administrator."}},

    // The runtime
    {"runtime_missing",
     kProblem,
     {"SteamVR was not found: its list names no folder that exists.",
      "SteamVR wurde nicht gefunden: Seine Liste nennt keinen Ordner, den es gibt."},
     {"Install SteamVR or start it once, then run install.cmd.",
      "SteamVR installieren oder einmal starten, dann install.cmd ausführen."}},
    {"runtime_incomplete",
     kProblem,
     {"The folder that is said to be SteamVR's lacks bin\\win64\\{1}: {0}",
      "In dem Ordner, der SteamVRs sein soll, fehlt bin\\win64\\{1}: {0}"},
     {"In Steam, have SteamVR's installed files verified, then start SteamVR once.",
      "In Steam die Dateien von SteamVR überprüfen lassen, dann SteamVR einmal starten."}},
    {"runtime_elsewhere",
     kWarning,
     {"SteamVR's list names {0}, but SteamVR is installed in {1}.",
      "SteamVRs Liste nennt {0}, installiert ist SteamVR aber in {1}."},
     {"Start SteamVR once from where it is now.", "SteamVR einmal dort starten, wo es jetzt liegt."}},

    // Graphics
    {"adapter_none",
     kProblem,
     {"Windows names no graphics adapter.", "Windows nennt keine Grafikkarte."},
     {"Install the graphics card's driver. Over a remote desktop there may be none: run this at the computer itself.",
      "Den Treiber der Grafikkarte installieren. Über Remotedesktop fehlt sie womöglich: am Computer selbst "
      "ausführen."}},
    {"adapter_software",
     kWarning,
     {"The adapter that the driver takes draws without a graphics card: {0}",
      "Der Adapter, den der Treiber nimmt, zeichnet ohne Grafikkarte: {0}"},
     {"Install the graphics card's driver.", "Den Treiber der Grafikkarte installieren."}},
    {"adapters_several",
     kHint,
     {"There are several graphics adapters; the driver takes {0}. SteamVR and Ombrel.exe must use the same one.",
      "Es gibt mehrere Grafikkarten; der Treiber nimmt {0}. SteamVR und Ombrel.exe müssen dieselbe benutzen."},
     {"If the picture is black: in Windows' graphics settings set vrserver.exe, vrcompositor.exe and Ombrel.exe alike.",
      "Bleibt das Bild schwarz: in den Grafikeinstellungen von Windows vrserver.exe, vrcompositor.exe und Ombrel.exe "
      "gleich einstellen."}},

    // The link
    {"pipes_missing",
     kProblem,
     {"Ombrel.exe runs, but does not offer the driver its connection.",
      "Ombrel.exe läuft, bietet dem Treiber aber seine Verbindung nicht an."},
     {"Restart Ombrel.exe, then SteamVR. If it stays, Ombrel.exe is of another version.",
      "Ombrel.exe neu starten, dann SteamVR. Bleibt es so, hat Ombrel.exe eine andere Version."}},
    {"pipe_missing",
     kProblem,
     {"Ombrel.exe offers one half of its connection; the other is missing: {0}",
      "Ombrel.exe bietet eine Hälfte seiner Verbindung an; die andere fehlt: {0}"},
     {"Restart Ombrel.exe, then SteamVR.", "Ombrel.exe neu starten, dann SteamVR."}},
    {"pipes_without_companion",
     kWarning,
     {"A program that is not called Ombrel.exe offers the driver's connection.",
      "Ein Programm, das nicht Ombrel.exe heißt, bietet die Verbindung des Treibers an."},
     {"Close it: it holds the connection away from Ombrel.exe.",
      "Dieses Programm beenden: Es hält die Verbindung von Ombrel.exe fern."}},

    // Crashes
    {"crash_in_driver",
     kWarning,
     {"SteamVR crashed in this driver on {1}, at driver_ombrel.dll+{2}: {0}",
      "SteamVR ist am {1} in diesem Treiber abgestürzt, bei driver_ombrel.dll+{2}: {0}"},
     {"Send this line, or the bundle of \"check.cmd --bundle FOLDER\", to whoever helps you. Delete the file when "
      "solved.",
      "Schick diese Zeile oder das Bündel von \"check.cmd --bundle ORDNER\" an den, der dir hilft. Ist es gelöst, die "
      "Datei löschen."}},
    {"crash_with_driver",
     kHint,
     {"A program crashed on {1} with this driver loaded, but elsewhere: {0}",
      "Ein Programm ist am {1} abgestürzt, während dieser Treiber geladen war, aber an anderer Stelle: {0}"},
     {"If SteamVR crashes again, send the bundle of \"check.cmd --bundle FOLDER\" to whoever helps you.",
      "Stürzt SteamVR wieder ab, schick das Bündel von \"check.cmd --bundle ORDNER\" an den, der dir hilft."}},

    // What could not be judged
    {"not_understood",
     kWarning,
     {"A file of SteamVR's was not understood from line {1} on, and so not judged: {0}",
      "Eine Datei von SteamVR wurde ab Zeile {1} nicht verstanden und daher nicht beurteilt: {0}"},
     {"If you changed it by hand, look at that line; otherwise start and close SteamVR once.",
      "Wurde sie von Hand geändert, diese Zeile ansehen; sonst SteamVR einmal starten und beenden."}},
    {"unexpected_value",
     kWarning,
     {"In a file of SteamVR's the value \"{1}\" was not understood, and so not judged: {0}",
      "In einer Datei von SteamVR wurde der Wert \"{1}\" nicht verstanden und daher nicht beurteilt: {0}"},
     {"If you changed it by hand, undo that; otherwise start and close SteamVR once.",
      "Wurde er von Hand geändert, das rückgängig machen; sonst SteamVR einmal starten und beenden."}},
    {"unreadable",
     kWarning,
     {"A file could not be opened, and so not judged: {0}",
      "Eine Datei ließ sich nicht öffnen und wurde daher nicht beurteilt: {0}"},
     {"Close SteamVR and run this check again.", "SteamVR schließen und diese Prüfung wiederholen."}},
};

}  // namespace

std::span<const FindingText> ComputerTexts() { return kTexts; }

}  // namespace ombrel::doctor
