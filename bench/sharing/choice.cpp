#include "sharing/choice.h"

#include <atomic>

namespace bench {
namespace {

std::atomic<Sharing> inUse{Sharing::kStandIn};

SharingDecision Decide(std::optional<Sharing> wish, const std::function<SharingAnswer()>& ask) {
  if (wish) return {*wish, "as the command line says"};
  const SharingAnswer answer = ask();
  if (answer.Shares()) return {Sharing::kOwn, "this Direct3D shares textures between devices and processes"};
  return {Sharing::kStandIn, "this Direct3D does not share textures (" + answer.failedStep + ")"};
}

}  // namespace

const char* NameOf(Sharing sharing) { return sharing == Sharing::kOwn ? "own" : "stand-in"; }

SharingDecision ChooseSharing(std::optional<Sharing> wish, const std::function<SharingAnswer()>& ask) {
  const SharingDecision decision = Decide(wish, ask);
  inUse = decision.sharing;
  return decision;
}

Sharing SharingInUse() { return inUse; }

}  // namespace bench
