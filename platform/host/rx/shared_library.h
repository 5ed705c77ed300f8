// A shared library that the process loads by its file. Only this class differs between the systems; the
// host's rules for modules are in module_loader.h.
#pragma once

#include <filesystem>
#include <string>

namespace host
{

/// A reference to a loaded library. The system counts the references and unloads the library with the last
/// one. Movable, not copyable.
class SharedLibrary
{
  public:
    /// Loads the file, or adds a reference where it is loaded. Throws std::runtime_error with the reason,
    /// one line without the file's name, where the file is not a complete library of this system, and where
    /// a library that it needs is missing.
    explicit SharedLibrary(const std::filesystem::path& file);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    SharedLibrary(SharedLibrary&& other) noexcept;
    SharedLibrary& operator=(SharedLibrary&&) = delete;
    ~SharedLibrary();

    /// The file of a library that the process has loaded or was linked to. `name` is without the system's
    /// prefix and ending. Empty where no such library is loaded.
    [[nodiscard]] static std::filesystem::path FileOfLoaded(const std::string& name);

    /// The function that this library itself, and not one that it needs, exports under the undecorated
    /// name; null where there is none. The caller must know its type: it is not checked.
    template <typename Function>
    [[nodiscard]] Function Find(const char* name) const noexcept
    {
        return reinterpret_cast<Function>(FindAddress(name));
    }

    /// Whether both refer to the same loaded library.
    [[nodiscard]] bool IsSameAs(const SharedLibrary& other) const noexcept
    {
        return handle_ == other.handle_;
    }

  private:
    [[nodiscard]] void* FindAddress(const char* name) const noexcept;

    void* handle_; ///< the system's; null once moved from
};

} // namespace host
