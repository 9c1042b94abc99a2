#include "session.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "csv_table.h"
#include "report/page.h"
#include "session_charts.h"

namespace ombrel::selftest {
namespace {

// The companion goes on after the runtime has ended its session.
std::size_t CountUntilLast(const std::vector<bench::TimedPose>& sent, const std::vector<bench::TimedPose>& arrived) {
  if (arrived.empty()) return sent.size();
  const auto isBefore = [&](const bench::TimedPose& pose) { return pose.ticks <= arrived.back().ticks; };
  return static_cast<std::size_t>(std::ranges::count_if(sent, isBefore));
}

double RateOf(const std::vector<double>& intervalsMs) {
  double sum = 0;
  for (const double each : intervalsMs) sum += each;
  return sum > 0 ? 1000.0 * static_cast<double>(intervalsMs.size()) / sum : 0;
}

std::vector<double> PacingErrors(const std::vector<double>& intervalsMs, int fps) {
  std::vector<double> errors;
  for (const double each : intervalsMs) errors.push_back(std::abs(each - 1000.0 / fps));
  return errors;
}

std::vector<double> SyncWaits(const std::filesystem::path& frames, std::int64_t ticksPerSecond) {
  const bench::CsvTable table = bench::ReadCsvFile(frames);
  const std::size_t column = table.Column("sync_wait");
  std::vector<double> waits;
  for (const auto& row : table.rows) {
    waits.push_back(1000.0 * std::strtod(row[column].c_str(), nullptr) / static_cast<double>(ticksPerSecond));
  }
  return waits;
}

Json ChartsOf(const bench::SessionRecord& record, const bench::SessionFigures& figures, const SessionOutcome& session) {
  Json charts = bench::DistributionCharts(record, figures);
  charts.push_back(Distribution("Waits for the runtime's keyed mutex", "wait", "ms", "frames", session.syncWaitMs));
  charts.push_back(Distribution("Pacing error", "error", "ms", "frames", session.pacingErrorMs));
  return charts;
}

}  // namespace

SessionOutcome ReadOutcome(const SessionPlan& plan, const std::filesystem::path& folder) {
  const bench::SessionRecord record = bench::ReadSession(folder);
  const bench::SessionFigures figures = bench::FiguresOf(record);
  SessionOutcome session;
  session.plan = plan;
  session.complaints = record.companion.at("failures").get<std::vector<std::string>>();
  session.framesPerSecond = RateOf(figures.presentIntervalsMs);
  session.presented = figures.framesPresented;
  session.received = figures.framesReceived;
  session.dropped = figures.dropped;
  session.matching = record.companion.at("matching");
  session.mismatching = record.companion.at("mismatching");
  session.posesSent = CountUntilLast(record.sent, record.arrived);
  session.posesArrived = figures.poseToRuntimeMs.size();
  session.pictures = record.companion.at("namedPictures");
  session.poseMs = figures.poseToRuntimeMs;
  session.frameMs = figures.frameToCompanionMs;
  session.isFrameMsByTime = figures.framesByTime;
  session.syncWaitMs = SyncWaits(folder / "runtime_frames.csv", record.frequency);
  session.pacingErrorMs = PacingErrors(figures.presentIntervalsMs, plan.fps);
  session.charts = ChartsOf(record, figures, session);
  if (!record.contactSheet.empty()) session.contactSheet = report::PngDataUrl(record.contactSheet);
  return session;
}

}  // namespace ombrel::selftest
