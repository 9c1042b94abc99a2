#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report.h"

// What was asked of Direct3D, and what is to be thought of the answers. Results are those of COM, as 32 bits.
namespace ombrel::selftest {

using Code = std::uint32_t;

// What AcquireSync answers besides 0; both are no failures to FAILED.
inline constexpr Code kTimedOut = 0x102;
inline constexpr Code kAbandoned = 0x80;

// A rule of the keyed mutex, and what came of trying it.
struct RuleAnswer {
  std::string rule;  // of KeyedMutexRules
  Code code = 0;
};

// A rule that the driver and companions go by.
struct KeyedMutexRule {
  const char* id;
  const char* name;
  const char* expected;
  bool (*holds)(Code code);
  const char* meaning;
};
[[nodiscard]] const std::vector<KeyedMutexRule>& KeyedMutexRules();

// A format in which a runtime may ask for swap textures, and what became of one.
struct FormatAnswer {
  std::string format;
  Code made = 0, opened = 0, drawn = 0;  // a shared texture, on a second device, as a target of drawing
  bool isRequired = false;               // the driver hands out no picture without it
};

// A picture of the driver's renderer beside the one that was worked out.
struct PictureAnswer {
  std::string name;
  int difference = 0;  // the largest of any channel, away from the rim; 256: no picture at all
  int tolerance = 0;
};

struct Direct3DAnswers {
  std::string sharing;  // "own", "stand-in"
  std::string sharingReason;
  bool isForced = false;      // the command line said which
  unsigned featureLevel = 0;  // 0xb000 is 11_0
  std::vector<RuleAnswer> rules;
  std::vector<FormatAnswer> formats;
  std::vector<PictureAnswer> pictures;
  std::string failure;  // what ended the questions early
};

// From and to the file that the asking process leaves behind. Reading throws nlohmann::json::exception.
[[nodiscard]] Json AsJson(const Direct3DAnswers& answers);
[[nodiscard]] Direct3DAnswers ReadDirect3D(const Json& json);

// `canShare`: whether this system's Direct3D is one that shares at all, as Windows' is and Wine's is not.
[[nodiscard]] std::vector<Verdict> Judge(const Direct3DAnswers& answers, bool canShare);
[[nodiscard]] Json SectionOf(const Direct3DAnswers& answers);

}  // namespace ombrel::selftest
