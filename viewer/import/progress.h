// Progress of an import.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>

namespace viewer
{

/// Called with the fraction that is done, from 0 to 1.
using ProgressFunction = std::function<void(double fraction)>;

/// Progress of an import that parses the whole file first and then builds the model from the parsed parts.
/// Each further percent is reported once.
class ImportProgress
{
  public:
    /// Parsing takes the share `parsing` of the time, from 0 to 1. `report` may be empty; it must outlive the
    /// object.
    ImportProgress(const ProgressFunction& report, double parsing) : report_(report), parsing_(parsing) {}

    /// This fraction of the file is parsed, from 0 to 1.
    void Parsed(double fraction) { Report(parsing_ * fraction); }
    /// So many parts of `total` are built. Numbers above `total` count as `total`.
    void Built(std::size_t count, std::size_t total)
    {
        const double fraction = static_cast<double>(count) / static_cast<double>(total);
        Report(parsing_ + (1.0 - parsing_) * std::min(fraction, 1.0));
    }

  private:
    void Report(double fraction)
    {
        constexpr double kStep = 0.01;
        if (!report_ || !(fraction >= reported_ + kStep))
            return;
        reported_ = fraction;
        report_(fraction);
    }

    const ProgressFunction& report_;
    double parsing_;
    double reported_ = 0.0;
};

} // namespace viewer
