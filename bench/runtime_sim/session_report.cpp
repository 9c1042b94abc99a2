#include "session_report.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "report/page.h"
#include "session_charts.h"

namespace bench {
namespace {

using Json = nlohmann::ordered_json;

// Verdicts of one session, in its group.
class Verdicts {
 public:
  explicit Verdicts(std::string group) : group_(std::move(group)) {}

  void Add(const char* name, bool isGood, const Json& expected, const Json& found, const char* meaning) {
    list_.push_back({{"group", group_},
                     {"name", name},
                     {"result", isGood ? "good" : "bad"},
                     {"expected", expected},
                     {"found", found},
                     {"meaning", meaning}});
  }
  // A number that should be large enough; nothing is said of what was not required.
  void AddAtLeast(const char* name, std::uint64_t required, std::uint64_t found, const char* meaning) {
    if (required > 0) {
      Add(name, found >= required, "at least " + std::to_string(required), found, meaning);
    }
  }
  Json Take() { return std::move(list_); }

 private:
  std::string group_;
  Json list_ = Json::array();
};

std::string Joined(const nlohmann::json& texts) {
  std::string joined;
  for (const auto& text : texts) {
    joined += (joined.empty() ? "" : "; ") + text.get<std::string>();
  }
  return joined;
}

void AddPosesBesideFrames(Verdicts& verdicts, const nlohmann::json& companion) {
  const auto required = companion.at("required").at("matching").get<std::uint64_t>();
  const auto matching = companion.at("matching").get<std::uint64_t>();
  const auto others = companion.at("mismatching").get<std::uint64_t>();
  if (required > 0) {
    verdicts.Add("Poses beside the frames", matching >= required && others == 0,
                 "at least " + std::to_string(required) + " that were sent, and no others",
                 std::to_string(matching) + " that were sent, " + std::to_string(others) + " others",
                 "Each frame comes with the pose that it was rendered with.");
  }
}

Json VerdictsOf(const std::string& mode, const SessionRecord& record, const SessionFigures& figures) {
  const nlohmann::json& companion = record.companion;
  const nlohmann::json& required = companion.at("required");
  Verdicts verdicts(mode);
  verdicts.AddAtLeast("Frames presented", record.runtime.at("framesRequired"), record.presented.size(),
                      "The runtime renders, and the driver takes its frames.");
  verdicts.AddAtLeast("Frames received", required.at("frames"), companion.at("frames"),
                      "The companion gets a picture to show.");
  AddPosesBesideFrames(verdicts, companion);
  verdicts.AddAtLeast("Pictures", required.at("namedPictures"), companion.at("namedPictures"),
                      "Every look of the head and every input of a controller was seen in the picture.");
  verdicts.AddAtLeast("Haptic pulses", required.at("haptics"), companion.at("haptics"),
                      "What the runtime asks of a controller reaches the companion.");
  verdicts.Add("Latencies", Rests(figures), "poses and frames that are found at both ends",
               std::to_string(figures.poseToRuntimeMs.size()) + " poses, " +
                   std::to_string(figures.frameToCompanionMs.size()) + " frames",
               "The figures below rest on something.");
  const std::string failures = Joined(companion.at("failures"));
  verdicts.Add("The companion's own account", failures.empty(), "no failure", failures.empty() ? "none" : failures,
               "The companion checks what it gets while the session runs.");
  return verdicts.Take();
}

Json FiguresTable(const SessionRecord& record, const SessionFigures& figures) {
  const auto share = [](std::size_t part, std::size_t whole) {
    return whole == 0 ? Json() : Json(100.0 * static_cast<double>(part) / static_cast<double>(whole));
  };
  const Json rows = Json::array({
      {"poses sent", record.sent.size()},
      {"poses at the runtime", record.arrived.size()},
      {"poses a second", figures.posesPerSecond},
      {"frames a second that were due", record.runtime.at("framesPerSecondDue")},
      {"frames presented", figures.framesPresented},
      {"frames received", figures.framesReceived},
      {"frames received, percent", share(figures.framesReceived, figures.framesPresented)},
      {"frames a second", figures.framesPerSecond},
      {"dropped frames (display intervals without one)", figures.dropped},
      {"haptic pulses sent", record.runtime.at("hapticsSent")},
      {"haptic pulses received", record.companion.at("haptics")},
      {"milliseconds of Cleanup", record.runtime.at("cleanupMs")},
  });
  return {{"caption", "Counts and rates"}, {"head", {"figure", "value"}}, {"rows", rows}};
}

Json SectionOf(const std::string& mode, const SessionRecord& record, const SessionFigures& figures) {
  Json section = {{"title", mode}, {"text", SummaryLine(figures) + "."}, {"images", Json::array()}};
  if (!record.contactSheet.empty()) {
    section["images"].push_back(
        {{"source", report::PngDataUrl(record.contactSheet)},
         {"alt",
          "A grid of the frames that the companion received, both eyes side by side: the head looking ahead, left, "
          "right, up and down, the inputs of the left controller as colours, then every sixtieth frame."},
         {"caption", "Contact sheet: what the companion received"}});
  }
  section["charts"] = TimelineCharts(record, figures);
  for (const Json& chart : DistributionCharts(record, figures)) {
    section["charts"].push_back(chart);
  }
  section["tables"] = Json::array({FiguresTable(record, figures)});
  return section;
}

}  // namespace

SessionReport ReportOf(const std::string& mode, const std::filesystem::path& folder) {
  SessionReport report;
  try {
    const SessionRecord record = ReadSession(folder);
    const SessionFigures figures = FiguresOf(record);
    report.line = SummaryLine(figures);
    report.verdicts = VerdictsOf(mode, record, figures);
    report.section = SectionOf(mode, record, figures);
  } catch (const std::exception& error) {
    Verdicts verdicts(mode);
    verdicts.Add("Session", false, "the files of both its ends", error.what(), "The session did not come to its end.");
    report = {error.what(), verdicts.Take(), {{"title", mode}, {"text", "There is nothing to show."}}};
  }
  return report;
}

std::string Overall(const Json& verdicts) {
  const auto has = [&verdicts](const char* result) {
    return std::any_of(verdicts.begin(), verdicts.end(), [result](const Json& one) { return one["result"] == result; });
  };
  if (has("bad")) {
    return "bad";
  }
  return has("unknown") || verdicts.empty() ? "unknown" : "good";
}

}  // namespace bench
