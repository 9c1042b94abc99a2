#include <algorithm>

#include "lint.h"

namespace ombrel::test {

// cmd.exe misses labels in files without carriage returns, and reads letters beyond ASCII in the console's code page.
void CheckScripts(const DriverFiles& files, Findings& findings) {
  for (const std::string script : {"install.cmd", "uninstall.cmd"}) {
    if (!files.Has(script)) {
      findings.push_back(script + ": is missing");
      continue;
    }
    const std::string text = files.Bytes(script);
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
      if (at > 0 && text[at - 1] == '\r') continue;
      findings.push_back(script + ": has a line without a carriage return");
      break;
    }
    const auto isPlain = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (!std::ranges::all_of(text, isPlain)) findings.push_back(script + ": has letters beyond ASCII");
  }
}

}  // namespace ombrel::test
