// Measurements in pairs: the component and the bare program alternate within one run, so that other load on
// the machine affects both. Only their ratio counts.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string_view>

namespace karv_bench
{

/// The unit of a row of the table.
enum class Unit { Seconds, Bytes };

/// The unit, the limit and the scale of a row of the table.
struct Row {
    Unit unit = Unit::Seconds;
    double limit = 0.0; ///< of the ratio; 0 for none
    /// Both figures are divided by this number and named "per `per_what`".
    double per = 1.0;
    std::string_view per_what = {};
};

/// Measures one side of a pair and returns the figure in the row's unit.
using Side = std::function<double()>;

/// Measures both sides once in each of the state's iterations; the side that goes first alternates. Stores
/// the medians of both sides, the median of the ratios and its quartiles in the state's counters. `prepare`
/// is called before each round with the round's number, from 0. An exception is stored in the state as an
/// error.
void RunPairs(benchmark::State& state, const Row& row, const Side& component, const Side& bare,
              const std::function<void(int round)>& prepare = {});

/// The clock of `SecondsOf`: wall time, or the processor time of the calling thread. The latter depends less
/// on other load and does not include the work of the rasteriser's own threads.
enum class Clock { Wall, Thread };
void UseClock(Clock clock);

/// Runs an action and returns its duration in seconds.
[[nodiscard]] double SecondsOf(const std::function<void()>& action);

/// The number of measurements.
struct Effort {
    bool quick = false; ///< whether to measure fewer rounds than asked for
    /// The number of rounds to measure where `rounds` are asked for.
    [[nodiscard]] int Rounds(int rounds) const;
    /// The number of setups where `setups` are asked for; at least two, because setups alternate too.
    [[nodiscard]] int Setups(int setups) const;
};

} // namespace karv_bench
