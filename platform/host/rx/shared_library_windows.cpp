#include "platform/host/rx/library_file.h"
#include "platform/host/rx/shared_library.h"

#include <cstddef>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <windows.h>

namespace host
{

namespace
{

HMODULE AsModule(void* handle)
{
    return static_cast<HMODULE>(handle);
}

/// Whether the sections, the compiler's symbols and the signature lie within the file.
bool IsWhole(LibraryFile& file, const IMAGE_NT_HEADERS64& headers, std::uintmax_t sections_start)
{
    std::vector<IMAGE_SECTION_HEADER> sections(headers.FileHeader.NumberOfSections);
    if (!file.ReadAt(sections_start, sections.data(), sections.size()))
        return false;
    for (const IMAGE_SECTION_HEADER& section : sections)
        if (!file.Holds(section.PointerToRawData, section.SizeOfRawData))
            return false;
    const std::uintmax_t symbols = headers.FileHeader.PointerToSymbolTable;
    if (symbols != 0) {
        // The names follow the symbols. They begin with their total length, which counts its own bytes.
        const std::uintmax_t names =
            symbols + std::uintmax_t{headers.FileHeader.NumberOfSymbols} * IMAGE_SIZEOF_SYMBOL;
        DWORD length = 0;
        if (!file.ReadAt(names, &length, 1) || !file.Holds(names, length))
            return false;
    }
    const IMAGE_DATA_DIRECTORY& signature =
        headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_SECURITY];
    return file.Holds(signature.VirtualAddress, signature.Size);
}

/// Throws std::runtime_error where the file is not a complete library for this machine.
/// NOTE: the system's loader has one code, a bad image, for all of this, and does not notice every case.
void CheckIsLibrary(const std::filesystem::path& path)
{
    LibraryFile file(path);
    IMAGE_DOS_HEADER dos{};
    IMAGE_NT_HEADERS64 headers{};
    constexpr std::size_t kUntilMachine = offsetof(IMAGE_NT_HEADERS64, OptionalHeader);
    if (!file.ReadAt(0, &dos, 1) || dos.e_magic != IMAGE_DOS_SIGNATURE || dos.e_lfanew < 0 ||
        !file.ReadAt(static_cast<std::uintmax_t>(dos.e_lfanew), reinterpret_cast<char*>(&headers),
                     kUntilMachine) ||
        headers.Signature != IMAGE_NT_SIGNATURE)
        throw std::runtime_error("is not a module");
    if (headers.FileHeader.Machine != IMAGE_FILE_MACHINE_AMD64)
        throw std::runtime_error("cannot be loaded: it is for another kind of machine");
    if ((headers.FileHeader.Characteristics & IMAGE_FILE_DLL) == 0)
        throw std::runtime_error("is not a module");
    const std::uintmax_t start = static_cast<std::uintmax_t>(dos.e_lfanew);
    const std::uintmax_t sections = start + kUntilMachine + headers.FileHeader.SizeOfOptionalHeader;
    if (!file.ReadAt(start, &headers, 1) || !IsWhole(file, headers, sections))
        throw std::runtime_error("is cut short");
}

/// The system's text for an error, on one line.
std::string ReasonOf(DWORD code)
{
    if (code == ERROR_MOD_NOT_FOUND)
        return "a library that it needs is missing"; // the file itself exists: it was read before
    return std::system_category().message(static_cast<int>(code));
}

/// Keeps the system from showing a dialog about a library that it cannot load, while the object lives.
class QuietErrors
{
  public:
    QuietErrors() noexcept { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before_); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors() { SetThreadErrorMode(before_, nullptr); }

  private:
    DWORD before_ = 0;
};

HMODULE OpenLibrary(const std::filesystem::path& file)
{
    CheckIsLibrary(file);
    const QuietErrors quiet;
    // The libraries that it needs are looked for in its own folder too.
    const HMODULE module = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module == nullptr)
        throw std::runtime_error("cannot be loaded: " + ReasonOf(GetLastError()));
    return module;
}

} // namespace

SharedLibrary::SharedLibrary(const std::filesystem::path& file) : handle_(OpenLibrary(file)) {}

SharedLibrary::~SharedLibrary()
{
    if (handle_ != nullptr)
        FreeLibrary(AsModule(handle_));
}

std::filesystem::path SharedLibrary::FileOfLoaded(const std::string& name)
{
    const HMODULE module = GetModuleHandleW(std::filesystem::path(name + ".dll").c_str());
    if (module == nullptr)
        return {};
    constexpr std::size_t kMaxPath = 32768; // of the system, its end included
    std::wstring file(kMaxPath, L'\0');
    file.resize(GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size())));
    return file;
}

void* SharedLibrary::FindAddress(const char* name) const noexcept
{
    return reinterpret_cast<void*>(GetProcAddress(AsModule(handle_), name));
}

} // namespace host
