// Measurements in pairs: the component and the bare program take turns within one run, so that what disturbs
// the machine disturbs both, and only their ratio counts.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string_view>

namespace karv_bench
{

/// What a row of the table counts in.
enum class Unit { kSeconds, kBytes };

/// How a row of the table is judged.
struct Row {
    Unit unit = Unit::kSeconds;
    double limit = 0.0; ///< of the ratio; 0 for none
    /// Divides both figures, for "per face" and the like.
    double per = 1.0;
    std::string_view per_what = {};
};

/// One side of a pair; returns what it measured, in the row's unit.
using Side = std::function<double()>;

/// Measures both sides once in each of the state's iterations, taking turns at being first, and leaves
/// medians, the median of the ratios and their quartiles in the state's counters. `prepare` is told the
/// number of each round before it begins, from 0. Failures go to the state.
void RunPairs(benchmark::State& state, const Row& row, const Side& component, const Side& bare,
              const std::function<void(int round)>& prepare = {});

/// Which clock `SecondsOf` reads: wall time, or the processor time of the calling thread alone, which a busy
/// machine disturbs less and which leaves out what the rasteriser does on threads of its own.
enum class Clock { kWall, kThread };
void UseClock(Clock clock);

/// The time that an action takes, in seconds.
[[nodiscard]] double SecondsOf(const std::function<void()>& action);

/// How often a pair is measured; less for a quick look.
struct Effort {
    bool quick = false;
    [[nodiscard]] int Rounds(int rounds) const;
    /// Two at the least, because they take turns too.
    [[nodiscard]] int Setups(int setups) const;
};

} // namespace karv_bench
