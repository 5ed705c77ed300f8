// karv-view: shows model files, or a bundled model, in the viewport.
#include "viewer/apps/karv-view/application.h"
#include "viewer/apps/karv-view/options.h"
#include "viewer/apps/karv-view/standard_streams.h"

#include <chrono>
#include <csignal>
#include <iostream>

int main(int argc, char** argv)
{
    viewer::OccupyClosedStreams();
    // NOTE: A program inherits ignored signals. Where this one is ignored, the exit status of a reader is lost.
    std::signal(SIGCHLD, SIG_DFL);
    // A write beyond the limit of a file's size fails then, and what was written is removed.
    std::signal(SIGXFSZ, SIG_IGN);
    const auto start = std::chrono::steady_clock::now();
    const viewer::ParsedOptions parsed = viewer::ParseOptions(argc, argv, std::cout, std::cerr);
    if (!parsed.options)
        return parsed.exit_status;
    return viewer::Run(*parsed.options, start, std::cout, std::cerr);
}
