#include "platform/host/rx/shared_library.h"

#include "platform/host/rx/module_loader.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#ifdef _WIN32
#include <cstddef>

#include <windows.h>
#else
#include <array>
#include <cstring>
#include <memory>

#include <dlfcn.h>
#include <link.h>
#endif

namespace host
{

SharedLibrary::SharedLibrary(SharedLibrary&& other) noexcept : handle_(std::exchange(other.handle_, nullptr))
{
}

namespace
{

/// Throws std::runtime_error where the path names nothing that has bytes of its own, such as a folder or a
/// pipe.
void CheckIsFile(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        throw std::runtime_error("there is no such file");
    if (!std::filesystem::is_regular_file(status))
        throw std::runtime_error("is not a file");
}

/// Whether the file is long enough for `length` bytes from `start`.
bool Holds(std::uintmax_t size, std::uintmax_t start, std::uintmax_t length)
{
    return start <= size && length <= size - start;
}

template <typename Record>
bool ReadAt(std::ifstream& file, std::uintmax_t place, Record* records, std::size_t count)
{
    file.seekg(static_cast<std::streamoff>(place));
    file.read(reinterpret_cast<char*>(records), static_cast<std::streamsize>(count * sizeof(Record)));
    return file.good();
}

} // namespace

#ifdef _WIN32

namespace
{

HMODULE AsModule(void* handle)
{
    return static_cast<HMODULE>(handle);
}

/// Whether the sections, the symbols that a compiler left and the signature lie within the file.
bool IsWhole(std::ifstream& file, const IMAGE_NT_HEADERS64& headers, std::uintmax_t sections_start,
             std::uintmax_t size)
{
    std::vector<IMAGE_SECTION_HEADER> sections(headers.FileHeader.NumberOfSections);
    if (!ReadAt(file, sections_start, sections.data(), sections.size()))
        return false;
    for (const IMAGE_SECTION_HEADER& section : sections)
        if (!Holds(size, section.PointerToRawData, section.SizeOfRawData))
            return false;
    const std::uintmax_t symbols = headers.FileHeader.PointerToSymbolTable;
    if (symbols != 0) {
        // The names follow; their length, itself counted, comes first.
        const std::uintmax_t names =
            symbols + std::uintmax_t{headers.FileHeader.NumberOfSymbols} * IMAGE_SIZEOF_SYMBOL;
        DWORD length = 0;
        if (!ReadAt(file, names, &length, 1) || !Holds(size, names, length))
            return false;
    }
    const IMAGE_DATA_DIRECTORY& signature =
        headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_SECURITY];
    return Holds(size, signature.VirtualAddress, signature.Size);
}

/// Throws std::runtime_error where the file is no whole library for this machine.
/// NOTE: the system's loader tells all of this by one code for a bad image, if it notices.
void CheckIsLibrary(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!file || error)
        throw std::runtime_error("cannot be read");

    IMAGE_DOS_HEADER dos{};
    IMAGE_NT_HEADERS64 headers{};
    constexpr std::size_t kUntilMachine = offsetof(IMAGE_NT_HEADERS64, OptionalHeader);
    if (!ReadAt(file, 0, &dos, 1) || dos.e_magic != IMAGE_DOS_SIGNATURE || dos.e_lfanew < 0 ||
        !ReadAt(file, static_cast<std::uintmax_t>(dos.e_lfanew), reinterpret_cast<char*>(&headers),
                kUntilMachine) ||
        headers.Signature != IMAGE_NT_SIGNATURE)
        throw std::runtime_error("is not a module");
    if (headers.FileHeader.Machine != IMAGE_FILE_MACHINE_AMD64)
        throw std::runtime_error("cannot be loaded: it is for another kind of machine");
    if ((headers.FileHeader.Characteristics & IMAGE_FILE_DLL) == 0)
        throw std::runtime_error("is not a module");
    const std::uintmax_t start = static_cast<std::uintmax_t>(dos.e_lfanew);
    const std::uintmax_t sections = start + kUntilMachine + headers.FileHeader.SizeOfOptionalHeader;
    if (!ReadAt(file, start, &headers, 1) || !IsWhole(file, headers, sections, size))
        throw std::runtime_error("is cut short");
}

/// What the system says of an error, on one line.
std::string ReasonOf(DWORD code)
{
    if (code == ERROR_MOD_NOT_FOUND)
        return "a library that it needs is missing"; // the file itself is there
    return std::system_category().message(static_cast<int>(code));
}

/// Keeps the system from showing a dialog for a library that it cannot load, while the object lives.
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
    CheckIsFile(file);
    CheckIsLibrary(file);
    const QuietErrors quiet;
    // What it needs may lie beside it.
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

void* SharedLibrary::FindAddress(const char* name) const noexcept
{
    return reinterpret_cast<void*>(GetProcAddress(AsModule(handle_), name));
}

std::filesystem::path LoadedModuleFile(const std::string& name)
{
    const HMODULE module = GetModuleHandleW(std::filesystem::path(name + ".dll").c_str());
    if (module == nullptr)
        return {};
    // The longest path that the system knows, with its end.
    std::wstring file(32768, L'\0');
    file.resize(GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size())));
    return file;
}

#else

namespace
{

using ElfHeader = ElfW(Ehdr);
using ElfSegment = ElfW(Phdr);

/// Whether everything that the headers speak of lies within the file.
bool IsWhole(std::ifstream& file, const ElfHeader& header, std::uintmax_t size)
{
    if (header.e_phentsize != sizeof(ElfSegment))
        return false;
    std::vector<ElfSegment> segments(header.e_phnum);
    if (!ReadAt(file, header.e_phoff, segments.data(), segments.size()))
        return false;
    for (const ElfSegment& segment : segments)
        if (segment.p_type == PT_LOAD && !Holds(size, segment.p_offset, segment.p_filesz))
            return false;
    return Holds(size, header.e_shoff, std::uintmax_t{header.e_shnum} * header.e_shentsize);
}

/// Throws std::runtime_error where the file is no whole library.
/// NOTE: the system's loader does not compare a library's segments with the length of its file, and the
/// process dies of SIGBUS when it touches what is missing.
void CheckIsLibrary(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!file || error)
        throw std::runtime_error("cannot be read");

    ElfHeader header{};
    static constexpr std::array<char, SELFMAG + 1> kMagic{ELFMAG};
    if (!ReadAt(file, 0, &header, 1) || std::memcmp(header.e_ident, kMagic.data(), SELFMAG) != 0)
        throw std::runtime_error("is not a module");
    // What is meant for another machine has other headers; the system's loader says so.
    constexpr unsigned char kClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    if (header.e_ident[EI_CLASS] == kClass && !IsWhole(file, header, size))
        throw std::runtime_error("is cut short");
}

/// What the system's loader said last, without the name of the file before it.
std::string LoaderError(const std::filesystem::path& file)
{
    const char* const text = dlerror();
    std::string reason = text != nullptr ? text : "the system gives no reason";
    const std::string prefix = file.string() + ": ";
    if (reason.starts_with(prefix))
        reason.erase(0, prefix.size());
    return reason;
}

void* OpenLibrary(const std::filesystem::path& file)
{
    CheckIsFile(file);
    CheckIsLibrary(file);
    void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        throw std::runtime_error("cannot be loaded: " + LoaderError(file));
    return handle;
}

/// The loader's record of a library; null where it has none.
const link_map* RecordOf(void* handle) noexcept
{
    link_map* record = nullptr;
    return dlinfo(handle, RTLD_DI_LINKMAP, static_cast<void*>(&record)) == 0 ? record : nullptr;
}

} // namespace

SharedLibrary::SharedLibrary(const std::filesystem::path& file) : handle_(OpenLibrary(file)) {}

SharedLibrary::~SharedLibrary()
{
    if (handle_ != nullptr)
        dlclose(handle_);
}

void* SharedLibrary::FindAddress(const char* name) const noexcept
{
    // The look-up goes on in the libraries that this one needs.
    void* const address = dlsym(handle_, name);
    Dl_info info{};
    void* owner = nullptr;
    if (address == nullptr || dladdr1(address, &info, &owner, RTLD_DL_LINKMAP) == 0)
        return nullptr;
    return owner == RecordOf(handle_) ? address : nullptr;
}

std::filesystem::path LoadedModuleFile(const std::string& name)
{
    const std::string file = "lib" + name + ".so";
    const std::unique_ptr<void, int (*)(void*)> library(dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD),
                                                        dlclose);
    const link_map* const record = library != nullptr ? RecordOf(library.get()) : nullptr;
    return record != nullptr ? std::filesystem::path(record->l_name) : std::filesystem::path();
}

#endif

} // namespace host
