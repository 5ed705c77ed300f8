// Frees the memory that a module's C++ library keeps when the process unloads the module. Compiled into each
// module: each has its own static copy of that library.

namespace __gnu_cxx
{

/// Provided by the C++ library: frees its reserve for exceptions that are thrown when memory has run out.
void __freeres();

} // namespace __gnu_cxx

namespace
{

/// HACK: the reserve of about 70 KB is allocated at each load and never freed, so a host that repeatedly
/// loads and unloads a module would grow. No longer needed once the library frees it itself.
class RuntimeRelease
{
  public:
    RuntimeRelease() = default;
    RuntimeRelease(const RuntimeRelease&) = delete;
    RuntimeRelease& operator=(const RuntimeRelease&) = delete;
    ~RuntimeRelease() { __gnu_cxx::__freeres(); }
};

const RuntimeRelease release;

} // namespace
