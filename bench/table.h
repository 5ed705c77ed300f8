// Prints what was measured as one table, with a verdict for every row that has a limit.
#pragma once

#include <benchmark/benchmark.h>

#include <vector>

namespace karv_bench
{

class TableReporter : public benchmark::BenchmarkReporter
{
  public:
    /// Prints the head of the table.
    bool ReportContext(const Context& context) override;
    /// Prints a row.
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Whether a measurement could not be made.
    [[nodiscard]] bool HasErrors() const { return has_errors_; }

  private:
    bool has_errors_ = false;
};

} // namespace karv_bench
