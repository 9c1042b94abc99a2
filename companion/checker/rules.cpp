#include "checker/rules.h"

#include <sstream>

namespace checker {
namespace {

// In their order: the title, indented the remedy, and an empty line.
constexpr const char* kTexts = R"(Run as `Ombrel.exe`, spelled like this, before the runtime loads the driver
  Name the program's file Ombrel.exe, in exactly this case, and start it before the runtime.

Make both pipes before you wait for the driver on either
  Call CreateNamedPipe for In and for Out one after the other, and ConnectNamedPipe only then: the driver opens Out
  150 ms after In.

Give a payload at least the length that its type and format need
  Compare the length with the tables of the messages; the pose format is the last four bytes of the payload.

Announce no payload over 65,536 bytes
  Write the length of the payload alone, in bytes, little-endian; look for a header that was written twice or not at
  all, since everything behind a wrong length is read as something else.

Write a message to its end within a tenth of a second
  Put header and payload into one buffer and write it by one WriteFile; send from one thread, or under one lock.

Send only message types and pose formats that this page names
  Look at the type and the pose format that were sent; a strange one is often the first bytes of something else.

Send finite numbers
  Test with isfinite before sending, and send the last good pose instead; a quaternion of length 0 that is normalised
  is the usual source.

Send rotations of unit length, within a hundredth
  Normalise the quaternion, or the columns of the matrix, before sending.

Keep poses coming: begin within two seconds, and pause for one at most
  Send the last pose again (pose format 1 does, in twelve bytes) while nothing new comes from the sensors.

Send at most 1,000 poses a second
  Send a pose when a new one comes from the sensors, not in a loop without a wait; drop what is older.

Do not begin with pose format 5
  Send the first pose by format 4: format 5 publishes the former pose, and there is none yet.

Never ask for a frame rate of 0
  Leave the FramerateUpdate out until the display's rate is known; 60 holds until then.

Use at most 63 controller ids in a session
  Give a controller that comes back the id that it had; ids are never free again while the runtime runs.

Read each message of the driver within a quarter of a second
  Read In on a thread of its own, from the connection's beginning to its end, whether you use the messages or not.

Open the announced textures and take frames within two seconds
  When FrameSharingInfo comes, open both handles, widened with zeros, on the default adapter, and acquire texture 0
  first.

Acquire and release with key 0
  Pass 0 as the key to AcquireSync and ReleaseSync, always.

Acquire a texture once, and release only what you hold
  Compare the result of AcquireSync with S_OK, not by FAILED: a time-out is positive, and holds nothing. Release each
  hold once.

Read a texture only while you hold it
  Copy between AcquireSync and ReleaseSync; unbind views of the texture before you release it, and draw from the copy.

Read each frame once
  Turn to the other texture after each frame, and make sure that a texture that was free at once is new: try the other
  one, as the page says.

Give a texture back within a frame period
  Queue one copy, read the pose slot and release: no mapping, no encoding, no waiting while you hold the texture.

End a connection by closing or disconnecting both pipes
  Close or disconnect Out as well as In, on every way out of the program and before it ends; disconnect the former
  client on both before you listen again.

Let go of the memory block within two seconds of the connection's end
  UnmapViewOfFile and CloseHandle when the connection ends, and open the block of the next FrameSharingInfo anew.
)";

std::array<RuleText, kRules> ReadTexts() {
  std::array<RuleText, kRules> rules;
  std::istringstream lines(kTexts);
  int number = 0;
  for (RuleText& rule : rules) {
    rule.rule = static_cast<Rule>(++number);
    std::getline(lines, rule.title);
    for (std::string line; std::getline(lines, line) && !line.empty();) {
      rule.remedy += line.substr(rule.remedy.empty() ? 2 : 1);
    }
  }
  return rules;
}

}  // namespace

const std::array<RuleText, kRules>& Rules() {
  static const std::array<RuleText, kRules> rules = ReadTexts();
  return rules;
}

const RuleText& TextOf(Rule rule) { return Rules()[static_cast<std::size_t>(rule) - 1]; }

}  // namespace checker
