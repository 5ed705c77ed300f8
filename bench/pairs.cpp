#include "bench/pairs.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace karv_bench
{

namespace
{

clockid_t clock_id = CLOCK_MONOTONIC;

double Now()
{
    constexpr double kNanosecond = 1e-9;
    timespec now{};
    clock_gettime(clock_id, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * kNanosecond;
}

/// The quantile of the samples for a share from 0 to 1, interpolated linearly between neighbours.
double Quantile(std::vector<double> samples, double share)
{
    std::ranges::sort(samples);
    const double place = share * static_cast<double>(samples.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, samples.size() - 1);
    const double part = place - static_cast<double>(below);
    return samples[below] + (samples[above] - samples[below]) * part;
}

struct Samples {
    std::vector<double> component;
    std::vector<double> bare;
    std::vector<double> ratios;

    void Add(double of_component, double of_bare)
    {
        component.push_back(of_component);
        bare.push_back(of_bare);
        ratios.push_back(of_component / of_bare);
    }
};

void Report(benchmark::State& state, const Row& row, const Samples& samples)
{
    state.counters["component"] = Quantile(samples.component, 0.5) / row.per;
    state.counters["bare"] = Quantile(samples.bare, 0.5) / row.per;
    state.counters["ratio"] = Quantile(samples.ratios, 0.5);
    state.counters["quartile1"] = Quantile(samples.ratios, 0.25);
    state.counters["quartile3"] = Quantile(samples.ratios, 0.75);
    state.counters["limit"] = row.limit;
    state.counters["bytes"] = row.unit == Unit::Bytes ? 1.0 : 0.0;
    state.SetLabel(std::string(row.per_what));
}

} // namespace

void RunPairs(benchmark::State& state, const Row& row, const Side& component, const Side& bare,
              const std::function<void(int round)>& prepare)
{
    Samples samples;
    int number = 0;
    try {
        for ([[maybe_unused]] auto round : state) {
            if (prepare)
                prepare(number);
            const bool component_first = number % 2 == 0;
            ++number;
            double of_component = component_first ? component() : 0.0;
            const double of_bare = bare();
            if (!component_first)
                of_component = component();
            samples.Add(of_component, of_bare);
            state.SetIterationTime(row.unit == Unit::Seconds ? of_component : 1.0);
        }
        Report(state, row, samples);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void UseClock(Clock clock)
{
    clock_id = clock == Clock::Wall ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID;
}

double SecondsOf(const std::function<void()>& action)
{
    const double begin = Now();
    action();
    return Now() - begin;
}

int Effort::Rounds(int rounds) const
{
    constexpr int kQuickShare = 5;
    constexpr int kMinRounds = 3;
    return quick ? std::max(rounds / kQuickShare, std::min(rounds, kMinRounds)) : rounds;
}

int Effort::Setups(int setups) const
{
    constexpr int kMinSetups = 2;
    return quick ? kMinSetups : setups;
}

} // namespace karv_bench
