#include "session.h"

#include <cstdio>

#include "base/percentile.h"

namespace ombrel::selftest {
namespace {

using bench::Percentile;

// The driver waits for a frame's time to the millisecond.
constexpr double kMostPacingErrorMs = 1;
// Of what was asked for; a display that runs without a gap loses the first and the last frame of a session at most.
constexpr double kMostOfFrames = 0.95;
// Where the processor draws, both sides' work is the processor's, and a companion misses what it is too late for.
constexpr double kHalf = 0.5;

std::string Words(const SessionPlan& plan) {
  return (plan.mode == "direct" ? "Direct mode, " : "Virtual display, ") + std::to_string(plan.fps) +
         " frames a second";
}

std::string Rounded(double value, int decimals = 0) {
  char text[64];
  std::snprintf(text, sizeof(text), "%.*f", decimals, value);
  return text;
}

std::string Of(std::uint64_t part, std::uint64_t whole) {
  return std::to_string(part) + " of " + std::to_string(whole);
}

class Judgement {
 public:
  Judgement(const SessionOutcome& session, bool isTimely)
      : session_(session),
        group_(Words(session.plan)),
        late_(isTimely ? Result::kBad : Result::kUnknown),
        share_(isTimely ? kMostOfFrames : kHalf) {}

  std::vector<Verdict> All() const {
    if (!session_.failure.empty()) {
      return {{group_, "Session", Result::kBad, "runs to its end", session_.failure,
               "Driver, runtime or companion failed. Nothing else can be said of this session."}};
    }
    std::vector<Verdict> all{Rate(),     Received(),    Poses(),        Pictures(),
                             Protocol(), PoseLatency(), FrameLatency(), Pacing()};
    if (session_.plan.mode == "direct") all.push_back(Matching());
    return all;
  }

 private:
  [[nodiscard]] double PeriodMs() const { return 1000.0 / session_.plan.fps; }
  [[nodiscard]] Result InTime(bool holds) const { return holds ? Result::kGood : late_; }

  [[nodiscard]] Verdict Rate() const {
    const double wanted = session_.plan.fps;
    return {group_,
            "Frame rate",
            InTime(session_.framesPerSecond >= kMostOfFrames * wanted),
            Rounded(wanted) + " frames a second",
            Rounded(session_.framesPerSecond, 1) + " a second, " + std::to_string(session_.dropped) + " dropped",
            "Fewer are seen as stutter."};
  }
  [[nodiscard]] Verdict Received() const {
    const auto least = share_ * static_cast<double>(session_.presented);
    const bool holds = session_.received > 0 && static_cast<double>(session_.received) >= least;
    // Nothing at all is no matter of time.
    const Result result = holds ? Result::kGood : session_.received == 0 ? Result::kBad : late_;
    return {group_,
            "Frames received",
            result,
            "at least " + Rounded(100 * share_) + "% of those presented",
            Of(session_.received, session_.presented),
            "The companion gets what the runtime drew."};
  }
  [[nodiscard]] Verdict Matching() const {
    const bool holds = session_.matching > 0 && session_.mismatching == 0;
    return {group_,
            "Pose beside each frame",
            GoodIf(holds),
            "one that the companion sent",
            Of(session_.matching, session_.matching + session_.mismatching) + " frames",
            "The companion places each frame by it. A wrong one is seen as swimming."};
  }
  [[nodiscard]] Verdict Poses() const {
    const bool holds = session_.posesSent > 0 && 10 * session_.posesArrived >= 9 * session_.posesSent;
    return {group_,
            "Poses at the runtime",
            GoodIf(holds),
            "at least 90% of those sent",
            Of(session_.posesArrived, session_.posesSent),
            "The picture follows the head by them."};
  }
  [[nodiscard]] Verdict Pictures() const {
    // A head that has turned is seen some frames later.
    constexpr std::size_t kEnoughFrames = 60;
    const bool isSeen = session_.pictures == session_.picturesWanted;
    return {group_,
            "Pictures",
            session_.received < kEnoughFrames ? InTime(isSeen) : GoodIf(isSeen),
            std::to_string(session_.picturesWanted) + " looks, each with the wall that lies there",
            Of(session_.pictures, session_.picturesWanted),
            "The room as the companion sees it: colours, sides and directions are right."};
  }
  [[nodiscard]] Verdict Protocol() const {
    std::string found = "no complaint";
    for (const std::string& each : session_.complaints) found = (found == "no complaint" ? "" : found + "; ") + each;
    return {group_,
            "Companion's own checks",
            GoodIf(session_.complaints.empty()),
            "no complaint",
            found,
            "What the driver sends is held against the protocol."};
  }
  [[nodiscard]] Verdict PoseLatency() const {
    const bool holds = !session_.poseMs.empty() && Percentile(session_.poseMs, 0.9) <= PeriodMs();
    return {group_,
            "Pose to runtime",
            InTime(holds),
            "p90 within a frame, " + Rounded(PeriodMs(), 1) + " ms",
            PercentilesText(session_.poseMs) + " ms (median / p90 / p99)",
            "Time that the picture lags behind the head."};
  }
  [[nodiscard]] Verdict FrameLatency() const {
    const bool holds = !session_.frameMs.empty() && Percentile(session_.frameMs, 0.5) <= PeriodMs();
    return {group_,
            "Frame to companion",
            InTime(holds),
            "median within a frame, " + Rounded(PeriodMs(), 1) + " ms",
            PercentilesText(session_.frameMs) + " ms (median / p90 / p99)",
            session_.isFrameMsByTime ? "Found by time: of the virtual display no pose comes with a frame."
                                     : "Found by the pose that comes with each frame."};
  }
  [[nodiscard]] Verdict Pacing() const {
    const bool holds = !session_.pacingErrorMs.empty() && Percentile(session_.pacingErrorMs, 0.5) <= kMostPacingErrorMs;
    return {group_,
            "Pacing",
            InTime(holds),
            "median error within " + Rounded(kMostPacingErrorMs) + " ms",
            PercentilesText(session_.pacingErrorMs) + " ms (median / p90 / p99)",
            "Uneven times are seen as judder."};
  }

  const SessionOutcome& session_;
  const std::string group_;
  const Result late_;
  const double share_;
};

Json Figures(const SessionOutcome& session) {
  return Json::array({{"frames presented", session.presented},
                      {"frames received", session.received},
                      {"intervals without a frame", session.dropped},
                      {"frames with a pose that was sent", session.matching},
                      {"frames with a pose that was not", session.mismatching},
                      {"poses sent", session.posesSent},
                      {"poses found at the runtime", session.posesArrived},
                      {"pictures that the script names", session.pictures}});
}

}  // namespace

std::vector<Verdict> Judge(const SessionOutcome& session, bool isTimely) { return Judgement(session, isTimely).All(); }

Json SectionOf(const SessionOutcome& session) {
  Json section{{"title", Words(session.plan)}};
  if (!session.failure.empty()) {
    section["text"] = session.failure;
    return section;
  }
  if (!session.contactSheet.empty()) {
    section["images"] = Json::array({{{"source", session.contactSheet},
                                      {"alt", "Frames of a room, as the companion received them"},
                                      {"caption", "What the companion received"}}});
  }
  section["charts"] = session.charts;
  section["tables"] = Json::array({Table("Figures", {"what", "number"}, Figures(session))});
  return section;
}

}  // namespace ombrel::selftest
