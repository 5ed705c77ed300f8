// karv_bench: prints a table that compares the component with bare programs that make the same OpenGL calls.
//
//   karv_bench [--quick] [--thread-time] [--benchmark_filter=PATTERN] ...
//
// Each row is the ratio of two measurements that alternate within this run. Figures of different runs or
// machines are not comparable. --quick measures a fifth of the rounds. --thread-time measures the processor
// time of the measuring thread instead of wall time, for a machine with other load. All other options are
// those of the benchmark library.
#include "bench/append_bench.h"
#include "bench/bench_window.h"
#include "bench/first_frame_bench.h"
#include "bench/frame_bench.h"
#include "bench/pairs.h"
#include "bench/table.h"
#include "bench/trace_bench.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>

namespace
{

/// Removes the option from the arguments. Returns whether it was there.
bool TakeOption(int& argc, char** argv, const char* option)
{
    char** const end = std::remove_if(argv + 1, argv + argc,
                                      [option](const char* each) { return std::strcmp(each, option) == 0; });
    const bool found = end != argv + argc;
    argc = static_cast<int>(end - argv);
    *end = nullptr;
    return found;
}

int Run(int argc, char** argv)
{
    const std::string folder = std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
    const karv_bench::Effort effort{TakeOption(argc, argv, "--quick")};
    if (TakeOption(argc, argv, "--thread-time"))
        karv_bench::UseClock(karv_bench::Clock::Thread);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    karv_bench::UseOffscreenWindows();
    karv_bench::RegisterFirstFrames(effort, folder);
    karv_bench::RegisterTraceEntries(effort);
    karv_bench::RegisterFrames(effort);
    karv_bench::RegisterAppends(effort);
    karv_bench::TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return table.HasErrors() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "karv_bench: " << error.what() << '\n';
        return 1;
    }
}
