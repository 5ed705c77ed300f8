// A shared library that the process loads by its file: what differs between the systems, and nothing of what
// the host makes of it.
#pragma once

#include <filesystem>

namespace host
{

/// A reference to a loaded library; the system counts them and unloads with the last one. Movable.
class SharedLibrary
{
  public:
    /// Loads the file, or refers to it once more. Throws std::runtime_error with the reason, one line without
    /// the file's name, where it is no whole library of this system, or where one that it needs is missing.
    explicit SharedLibrary(const std::filesystem::path& file);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    SharedLibrary(SharedLibrary&& other) noexcept;
    SharedLibrary& operator=(SharedLibrary&&) = delete;
    ~SharedLibrary();

    /// The function that this very library exports under the plain name, not one of a library that it needs;
    /// null for none. The caller knows its type.
    template <typename Function>
    [[nodiscard]] Function Find(const char* name) const noexcept
    {
        return reinterpret_cast<Function>(FindAddress(name));
    }

    /// Whether both refer to one loaded library.
    [[nodiscard]] bool IsSameAs(const SharedLibrary& other) const noexcept
    {
        return handle_ == other.handle_;
    }

  private:
    [[nodiscard]] void* FindAddress(const char* name) const noexcept;

    void* handle_;
};

} // namespace host
