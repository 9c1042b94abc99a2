#include "direct3d.h"

#include <algorithm>
#include <cstdio>

namespace ombrel::selftest {
namespace {

constexpr const char* kDirect3DGroup = "Direct3D";
constexpr unsigned kNeededLevel = 0xa000;  // of the driver's shaders, 4.0

std::string Hex(Code code) {
  char text[16];
  std::snprintf(text, sizeof(text), "0x%08X", code);
  return text;
}

bool IsOk(Code code) { return code == 0; }
bool IsTimeOut(Code code) { return code == kTimedOut; }
bool IsAbandoned(Code code) { return code == kAbandoned; }
bool IsRefused(Code code) { return code != 0; }

constexpr const char* kHandOver = "Frames are handed over by it. If this does not hold, frames stop or tear.";
constexpr const char* kRecovery = "The driver makes textures anew when a companion ended while it held one.";
constexpr const char* kMisuse = "Neither side does this; a Direct3D that allows it hides faults of companions.";

Verdict JudgeSharing(const Direct3DAnswers& answers, bool canShare) {
  const bool isOwn = answers.sharing == "own";
  const Result otherwise = canShare && !answers.isForced ? Result::kBad : Result::kUnknown;
  return {kDirect3DGroup,
          "Shared textures",
          isOwn ? Result::kGood : otherwise,
          "Direct3D's own sharing",
          answers.sharing + " sharing: " + answers.sharingReason,
          isOwn ? "What follows was done by this machine's Direct3D alone."
                : "Stand-ins of the test carried the pictures. The driver needs a Direct3D that shares textures."};
}

Verdict JudgeLevel(unsigned level) {
  char found[16];
  std::snprintf(found, sizeof(found), "%u_%u", level >> 12, (level >> 8) & 0xF);
  return {kDirect3DGroup, "Feature level", GoodIf(level >= kNeededLevel),
          "10_0 or more", found,           "The driver's shaders need it."};
}

Verdict JudgeRule(const KeyedMutexRule& rule, const Direct3DAnswers& answers) {
  const auto answer = std::ranges::find(answers.rules, rule.id, &RuleAnswer::rule);
  if (answer == answers.rules.end()) {
    return {kDirect3DGroup, rule.name, Result::kBad, rule.expected, "it was not come to", rule.meaning};
  }
  return {kDirect3DGroup, rule.name, GoodIf(rule.holds(answer->code)), rule.expected, Hex(answer->code), rule.meaning};
}

bool Works(const FormatAnswer& format) { return IsOk(format.made) && IsOk(format.opened) && IsOk(format.drawn); }

Verdict JudgeFormats(const std::vector<FormatAnswer>& formats) {
  std::string missing;
  bool isUsable = !formats.empty();
  for (const FormatAnswer& each : formats) {
    if (Works(each)) continue;
    missing += (missing.empty() ? "all but " : ", ") + each.format;
    isUsable = isUsable && !each.isRequired;
  }
  const Result result = !isUsable ? Result::kBad : missing.empty() ? Result::kGood : Result::kUnknown;
  return {kDirect3DGroup,
          "Formats",
          result,
          "shared, opened and drawn into",
          missing.empty() ? "all" : missing,
          "A runtime chooses the format of its swap textures. One that is not to be had leaves an eye black."};
}

Verdict JudgePicture(const PictureAnswer& picture) {
  const std::string found = picture.difference > 255 ? "no picture" : std::to_string(picture.difference);
  return {kDirect3DGroup,
          "Picture: " + picture.name,
          GoodIf(picture.difference <= picture.tolerance),
          "within " + std::to_string(picture.tolerance) + " of 255 levels",
          found,
          "What the driver draws of a layer, beside what was worked out. A difference is a wrong colour or place."};
}

}  // namespace

const std::vector<KeyedMutexRule>& KeyedMutexRules() {
  static const std::vector<KeyedMutexRule> kRules{
      {"first", "Keyed mutex: begins with key 0", "0x00000000", IsOk, kHandOver},
      {"held", "Keyed mutex: has one holder", "0x00000102, a time-out", IsTimeOut, kHandOver},
      {"held_by_process", "Keyed mutex: another process waits its turn", "0x00000102, a time-out", IsTimeOut,
       kHandOver},
      {"wrong_key", "Keyed mutex: a wrong key does not open it", "0x00000102, a time-out", IsTimeOut, kHandOver},
      {"released_key", "Keyed mutex: the key of the release opens it", "0x00000000", IsOk, kHandOver},
      {"after_process", "Keyed mutex: comes back from another process", "0x00000000", IsOk, kHandOver},
      {"second_acquire", "Keyed mutex: a second acquire by its holder", "refused", IsRefused, kMisuse},
      {"foreign_release", "Keyed mutex: a release by another", "refused", IsRefused, kMisuse},
      {"abandoned", "Keyed mutex: a holder whose process ended", "0x00000080, abandoned", IsAbandoned, kRecovery},
  };
  return kRules;
}

Json AsJson(const Direct3DAnswers& answers) {
  Json rules = Json::object(), formats = Json::array(), pictures = Json::array();
  for (const RuleAnswer& each : answers.rules) rules[each.rule] = each.code;
  for (const FormatAnswer& each : answers.formats) {
    formats.push_back({{"format", each.format},
                       {"made", each.made},
                       {"opened", each.opened},
                       {"drawn", each.drawn},
                       {"required", each.isRequired}});
  }
  for (const PictureAnswer& each : answers.pictures) {
    pictures.push_back({{"name", each.name}, {"difference", each.difference}, {"tolerance", each.tolerance}});
  }
  return {{"sharing", answers.sharing},
          {"reason", answers.sharingReason},
          {"forced", answers.isForced},
          {"featureLevel", answers.featureLevel},
          {"rules", rules},
          {"formats", formats},
          {"pictures", pictures},
          {"failure", answers.failure}};
}

Direct3DAnswers ReadDirect3D(const Json& json) {
  Direct3DAnswers answers;
  answers.sharing = json.at("sharing");
  answers.sharingReason = json.at("reason");
  answers.isForced = json.at("forced");
  answers.featureLevel = json.at("featureLevel");
  answers.failure = json.at("failure");
  for (const auto& [rule, code] : json.at("rules").items()) answers.rules.push_back({rule, code.get<Code>()});
  for (const Json& each : json.at("formats")) {
    answers.formats.push_back(
        {each.at("format"), each.at("made"), each.at("opened"), each.at("drawn"), each.at("required")});
  }
  for (const Json& each : json.at("pictures")) {
    answers.pictures.push_back({each.at("name"), each.at("difference"), each.at("tolerance")});
  }
  return answers;
}

std::vector<Verdict> Judge(const Direct3DAnswers& answers, bool canShare) {
  std::vector<Verdict> verdicts{JudgeSharing(answers, canShare), JudgeLevel(answers.featureLevel)};
  if (!answers.failure.empty()) {
    verdicts.push_back({kDirect3DGroup, "All questions are asked", Result::kBad, "an answer to each", answers.failure,
                        "Direct3D failed where it should not, or the program that asks crashed."});
  }
  for (const KeyedMutexRule& rule : KeyedMutexRules()) verdicts.push_back(JudgeRule(rule, answers));
  verdicts.push_back(JudgeFormats(answers.formats));
  if (answers.pictures.empty()) {
    verdicts.push_back(
        {kDirect3DGroup, "Pictures", Result::kBad, "pictures of layers", "none", "The driver draws nothing."});
  }
  for (const PictureAnswer& each : answers.pictures) verdicts.push_back(JudgePicture(each));
  return verdicts;
}

Json SectionOf(const Direct3DAnswers& answers) {
  Json formats = Json::array();
  for (const FormatAnswer& each : answers.formats) {
    formats.push_back({each.format, Hex(each.made), Hex(each.opened), Hex(each.drawn)});
  }
  return {{"title", "Direct3D"},
          {"text", answers.sharing + " sharing: " + answers.sharingReason},
          {"tables", Json::array({Table("Formats of swap textures",
                                        {"format", "shared texture", "opened by a second device", "drawn into"},
                                        std::move(formats))})}};
}

}  // namespace ombrel::selftest
