#include "bench/RatioTable.h"

#include <algorithm>
#include <cstdio>

namespace quillmont {
namespace {

std::string timeText(double seconds) {
  char text[32];
  if (seconds < 1e-3) {
    std::snprintf(text, sizeof text, "%.1f us", seconds * 1e6);
  } else {
    std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
  }
  return text;
}

}  // namespace

void RatioTable::ReportRuns(const std::vector<Run>& runs) {
  for (const auto& run : runs) {
    const auto name =
        run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
    if (run.error_occurred) {
      skipped_[name] = run.error_message;
    } else if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
      const double time = run.real_accumulated_time / static_cast<double>(run.iterations);
      const auto known = seconds_.try_emplace(name, time).first;
      known->second = std::min(known->second, time);
    }
  }
}

void RatioTable::Finalize() {
  std::printf("%-64s %12s %12s %7s %7s\n", "", "measured", "compared", "ratio", "target");
  for (const auto& row : rows_) print(row);
}

std::optional<double> RatioTable::seconds(const std::string& name) const {
  const auto found = seconds_.find(name);
  return found == seconds_.end() ? std::nullopt : std::optional(found->second);
}

void RatioTable::print(const RatioRow& row) {
  const auto measured = seconds(row.measured);
  const auto compared = seconds(row.comparedWith);
  if (measured && compared) {
    const double ratio = *measured / *compared;
    std::printf("%-64s %12s %12s %7.3f %7.3f%s\n", row.what.c_str(), timeText(*measured).c_str(),
                timeText(*compared).c_str(), ratio, row.target,
                ratio > row.target ? "  missed" : "");
    return;
  }
  const auto& missing = measured ? row.comparedWith : row.measured;
  const auto reason = skipped_.find(missing);
  if (reason == skipped_.end()) return;  // not asked for
  std::printf("%-64s skipped: %s\n", row.what.c_str(), reason->second.c_str());
}

}  // namespace quillmont
