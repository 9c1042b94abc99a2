#pragma once

#include <nlohmann/json.hpp>

#include "session_figures.h"
#include "session_record.h"

namespace bench {

/// Lines over the session's seconds: yaw and pitch as sent, at the runtime and with the frames, and the intervals between
/// frames with the drops marked. As report.schema.json has charts.
[[nodiscard]] nlohmann::ordered_json TimelineCharts(const SessionRecord& record, const SessionFigures& figures);

/// Frame intervals and latencies as distributions.
[[nodiscard]] nlohmann::ordered_json DistributionCharts(const SessionRecord& record, const SessionFigures& figures);

}  // namespace bench
