// The one table of the benchmarks: what each thing costs beside the thing that it is compared with.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillmont {

struct RatioRow {
  std::string what;          ///< for the reader
  std::string measured;      ///< name of a benchmark
  std::string comparedWith;  ///< name of another one
  double target;             ///< the ratio is to be at most this
};

/// Collects the times of one run; of a benchmark that was repeated, the least counts, which is the
/// one that others on the machine have disturbed the least.
class RatioTable : public benchmark::BenchmarkReporter {
 public:
  explicit RatioTable(std::vector<RatioRow> rows) : rows_(std::move(rows)) {}

  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Prints the rows whose two benchmarks have run, and why others have not.
  void Finalize() override;

 private:
  std::optional<double> seconds(const std::string& name) const;
  void print(const RatioRow& row);

  const std::vector<RatioRow> rows_;
  std::map<std::string, double> seconds_;
  std::map<std::string, std::string> skipped_;  ///< with the reason
};

}  // namespace quillmont
