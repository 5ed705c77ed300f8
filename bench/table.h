// Prints the measurements as one table. A row with a limit ends with "ok" or "over".
#pragma once

#include <benchmark/benchmark.h>

#include <vector>

namespace karv_bench
{

/// Prints each row as soon as it is measured.
class TableReporter : public benchmark::BenchmarkReporter
{
  public:
    /// Prints the head of the table.
    bool ReportContext(const Context& context) override;
    /// Prints a row.
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Whether a measurement has failed.
    [[nodiscard]] bool HasErrors() const { return has_errors_; }

  private:
    bool has_errors_ = false;
};

} // namespace karv_bench
