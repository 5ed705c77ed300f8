// A limit on the size of files, which fails writes as a full disk does. Linux only.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace karv_test
{

/// Lets files of this process grow to `bytes` and no further while it lives. Writes beyond fail with EFBIG.
class FileSizeLimit
{
  public:
    explicit FileSizeLimit(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }

  private:
    void (*signal_)(int);
    rlimit before_{};
};

} // namespace karv_test
