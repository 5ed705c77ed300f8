// Gives back what the C++ library of a module keeps, when the process unloads the module. Compiled into each
// module, which has that library inside it. It knows nothing of the module.

namespace __gnu_cxx
{

/// The library's own: frees its reserve for exceptions that are thrown when no memory is left.
void __freeres();

} // namespace __gnu_cxx

namespace
{

/// HACK: the reserve of some 70 KB is taken at each load and never given back, so that a host that loads and
/// unloads a module again and again would grow. Not needed where the library frees it itself.
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
