#include "session_charts.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace bench {
namespace {

using Json = nlohmann::ordered_json;

// Of a longer session every second, third ... point is kept, lest the page become too heavy for a phone.
constexpr std::size_t kMostPoints = 10000;

double Rounded(double value) { return std::round(value * 1000.0) / 1000.0; }

Json Rounded(const std::vector<double>& values) {
  Json list = Json::array();
  for (const double value : values) {
    list.push_back(Rounded(value));
  }
  return list;
}

double Degrees(float radians) { return static_cast<double>(radians) * 180.0 / std::numbers::pi; }

// Where the head looks, in degrees: positive to the left, positive upwards. -z is straight ahead.
double YawOf(const TimedPose& pose) { return Degrees(std::atan2(pose.pose[2], pose.pose[10])); }
double PitchOf(const TimedPose& pose) { return Degrees(std::asin(std::clamp(-pose.pose[6], -1.0F, 1.0F))); }

// Seconds of the session, which begins with the first pose that was sent.
class SessionTime {
 public:
  explicit SessionTime(const SessionRecord& record)
      : start_(record.sent.empty() ? 0 : record.sent.front().ticks), frequency_(record.frequency) {}
  double Seconds(std::int64_t ticks) const {
    return Rounded(static_cast<double>(ticks - start_) / static_cast<double>(frequency_));
  }

 private:
  std::int64_t start_;
  std::int64_t frequency_;
};

template <typename ValueOf>
Json Series(const char* name, const std::vector<TimedPose>& poses, const SessionTime& time, ValueOf valueOf) {
  Json times = Json::array();
  Json values = Json::array();
  const std::size_t step = poses.size() / kMostPoints + 1;
  for (std::size_t index = 0; index < poses.size(); index += step) {
    times.push_back(time.Seconds(poses[index].ticks));
    values.push_back(Rounded(valueOf(index)));
  }
  return {{"name", name}, {"x_values", times}, {"values", values}};
}

// From before the first pose that is not the first one's angle to after the last that is not the last one's: a head that
// holds still for the rest of a session would leave nothing to be seen of its movement.
template <typename AngleOf>
Json MovingRange(const std::vector<TimedPose>& poses, const SessionTime& time, AngleOf angleOf) {
  constexpr double kStill = 0.5;   // degrees
  constexpr double kMargin = 0.5;  // seconds
  if (poses.empty()) {
    return nullptr;
  }
  const auto movedFrom = [&](const TimedPose& still) {
    return [&](const TimedPose& pose) { return std::abs(angleOf(pose) - angleOf(still)) > kStill; };
  };
  const auto first = std::find_if(poses.begin(), poses.end(), movedFrom(poses.front()));
  const auto last = std::find_if(poses.rbegin(), poses.rend(), movedFrom(poses.back()));
  if (first == poses.end() || last == poses.rend()) {
    return nullptr;
  }
  return {std::max(time.Seconds(first->ticks) - kMargin, 0.0), time.Seconds(last->ticks) + kMargin};
}

template <typename AngleOf>
Json AngleChart(const char* title, const char* label, const SessionRecord& record, const SessionFigures& figures,
                AngleOf angleOf) {
  const SessionTime time(record);
  const auto series = [&](const char* name, const std::vector<TimedPose>& poses) {
    return Series(name, poses, time, [&](std::size_t index) { return angleOf(poses[index]); });
  };
  Json lines = Json::array({series("sent", record.sent), series("at the runtime", record.arrived)});
  lines.push_back(figures.framesByTime ? series("rendered with", record.presented)
                                       : series("beside the frame", record.held));
  Json chart = {{"kind", "lines"},
                {"title", title},
                {"x", {{"label", "time"}, {"unit", "s"}}},
                {"y", {{"label", label}, {"unit", "°"}}},
                {"series", lines}};
  if (const Json range = MovingRange(record.sent, time, angleOf); !range.is_null()) {
    chart["x_range"] = range;
  }
  return chart;
}

// The first of `events` has no interval before it.
Json IntervalSeries(const char* name, const std::vector<TimedPose>& events, const std::vector<double>& intervals,
                    const SessionTime& time) {
  const std::vector<TimedPose> later(events.begin() + (events.empty() ? 0 : 1), events.end());
  return Series(name, later, time, [&](std::size_t index) { return intervals[index]; });
}

Json DropMarks(const SessionRecord& record, const SessionTime& time) {
  Json marks = Json::array();
  for (std::size_t frame = 0; frame < record.presented.size(); ++frame) {
    if (record.dropped[frame] > 0) {
      marks.push_back({{"at", time.Seconds(record.presented[frame].ticks)},
                       {"label", std::to_string(record.dropped[frame]) + " dropped"}});
    }
  }
  return marks;
}

Json IntervalChart(const SessionRecord& record, const SessionFigures& figures) {
  const SessionTime time(record);
  return {
      {"kind", "lines"},
      {"title", "Frame intervals over time, with drops"},
      {"note", "The marks are drops: display intervals in which the runtime handed nothing to the driver."},
      {"x", {{"label", "time"}, {"unit", "s"}}},
      {"y", {{"label", "interval"}, {"unit", "ms"}}},
      {"series", Json::array({IntervalSeries("presented", record.presented, figures.presentIntervalsMs, time),
                              IntervalSeries("held by the companion", record.held, figures.heldIntervalsMs, time)})},
      {"marks", DropMarks(record, time)}};
}

Json Distribution(const char* title, const char* of, const char* what, const std::vector<double>& samples,
                  const std::string& note = "") {
  Json chart = {{"kind", "distribution"},
                {"title", title},
                {"x", {{"label", what}, {"unit", "ms"}}},
                {"y", {{"label", of}, {"unit", ""}}},
                {"series", Json::array({{{"name", of}, {"values", Rounded(samples)}}})}};
  if (!note.empty()) {
    chart["note"] = note;
  }
  return chart;
}

// An interval counts as dropped frames from one and a half periods on.
Json PresentIntervals(const SessionRecord& record, const SessionFigures& figures) {
  Json chart = Distribution("Frame intervals at the runtime", "frames", "interval", figures.presentIntervalsMs);
  const double rate = record.runtime.value("framesPerSecondDue", 0.0);
  if (rate > 0.0) {
    chart["marks"] = Json::array({{{"at", Rounded(1500.0 / rate)}, {"label", "dropped from here on"}}});
  }
  return chart;
}

}  // namespace

Json TimelineCharts(const SessionRecord& record, const SessionFigures& figures) {
  return Json::array({AngleChart("Yaw", "yaw, to the left", record, figures, YawOf),
                      AngleChart("Pitch", "pitch, upwards", record, figures, PitchOf), IntervalChart(record, figures)});
}

Json DistributionCharts(const SessionRecord& record, const SessionFigures& figures) {
  const std::string byTime =
      figures.framesByTime ? "No pose travels with these frames: each is measured from the last call of Present before "
                             "the companion held it, which is too short when it is more than a frame behind."
                           : "";
  Json charts = Json::array({PresentIntervals(record, figures)});
  charts.push_back(Distribution("Frame intervals at the companion", "frames", "interval", figures.heldIntervalsMs));
  charts.push_back(Distribution("Pose to runtime", "poses", "latency", figures.poseToRuntimeMs,
                                "From the companion's writing of a pose to its arrival at the runtime."));
  charts.push_back(
      Distribution("Frame to companion", "frames", "latency", figures.frameToCompanionMs,
                   byTime.empty() ? "From the call of Present to the companion's hold of the frame." : byTime));
  if (!figures.framesByTime) {
    charts.push_back(
        Distribution("Pose to frame", "frames", "latency", figures.poseToFrameMs,
                     "From the companion's writing of a pose to its hold of a frame that was rendered with it."));
  }
  charts.push_back(Distribution("Age of the pose that is rendered", "frames", "age", figures.poseAgeMs,
                                "From a pose's arrival at the runtime to the rendering with it."));
  charts.push_back(
      Distribution("Present", "frames", "duration", figures.presentMs, "How long the driver's Present took."));
  return charts;
}

}  // namespace bench
