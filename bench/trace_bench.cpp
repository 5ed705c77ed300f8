// Measures the cost of the trace-and-guard wrapper while no sink is installed.
#include "bench/trace_bench.h"

#include "module/guard.h"

#include <algorithm>
#include <limits>

namespace karv_bench
{

namespace
{

constexpr int kCalls = 100'000;

// The bodies do nothing that the compiler could remove.

[[gnu::noinline]] void CallPlain()
{
    benchmark::ClobberMemory();
}

[[gnu::noinline]] void CallGuarded()
{
    karv::Guarded<L"TraceBench::CallGuarded">([] { benchmark::ClobberMemory(); });
}

/// The seconds of `kCalls` calls: the fastest of several tries, which other load disturbs least.
template <typename Call>
double SecondsOfCalls(Call call)
{
    constexpr int kTries = 10;
    double fastest = std::numeric_limits<double>::infinity();
    for (int i = 0; i < kTries; ++i)
        fastest = std::min(fastest, SecondsOf([&] {
                               for (int k = 0; k < kCalls; ++k)
                                   call();
                           }));
    return fastest;
}

} // namespace

void RegisterTraceEntries(const Effort& effort)
{
    constexpr int kRounds = 101;
    const Row row{.per = kCalls, .per_what = "call"};
    benchmark::RegisterBenchmark("traced and guarded call, no sink",
                                 [row](benchmark::State& state) {
                                     RunPairs(
                                         state, row, [] { return SecondsOfCalls(CallGuarded); },
                                         [] { return SecondsOfCalls(CallPlain); });
                                 })
        ->UseManualTime()
        ->Iterations(effort.Rounds(kRounds));
}

} // namespace karv_bench
