// A process under the limits of a reader, built without sanitizers, that allocates memory until there is
// none.
#include "viewer/import/process/process_limits.h"

#include <cstdlib>
#include <vector>

int main(int argc, char** argv)
{
    constexpr std::size_t kMebibyte = 1U << 20U;
    if (argc < 2)
        return EXIT_FAILURE;
    viewer::LimitProcess(std::chrono::seconds(100), static_cast<std::size_t>(std::atoi(argv[1])) * kMebibyte);
    std::vector<std::vector<char>> all;
    constexpr std::size_t kMax = 1024;
    while (all.size() < kMax)
        all.emplace_back(kMebibyte);
    return 0;
}
