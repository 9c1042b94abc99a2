#pragma once

#include <functional>
#include <optional>
#include <string>

namespace bench {

// Whose shared textures a program's devices have: those of Direct3D itself, with nothing intercepted, or the stand-in's.
enum class Sharing { kOwn, kStandIn };

// "own", "stand-in": as the command line and reports spell it.
[[nodiscard]] const char* NameOf(Sharing sharing);

// Whether textures with keyed mutexes go between devices and between processes.
struct SharingAnswer {
  std::string failedStep;  // the first step that did not go; empty when all did

  [[nodiscard]] bool Shares() const { return failedStep.empty(); }
};

// What a process uses, and why, for its report.
struct SharingDecision {
  Sharing sharing = Sharing::kStandIn;
  std::string reason;

  [[nodiscard]] std::string Text() const { return std::string(NameOf(sharing)) + " sharing: " + reason; }
};

// The answer of the machine that the program runs on, whose main must begin with AnswerSharing. See question.h.
[[nodiscard]] SharingAnswer AskMachine();

// Decides for the whole process, before its first device: the wish, if there is one, otherwise Direct3D's own sharing
// where it is there. One thread.
SharingDecision ChooseSharing(std::optional<Sharing> wish, const std::function<SharingAnswer()>& ask = AskMachine);

// What was decided; the stand-in until then. Any thread.
[[nodiscard]] Sharing SharingInUse();

}  // namespace bench
