#include "platform/host/rx/library_file.h"
#include "platform/host/rx/shared_library.h"

#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

#include <dlfcn.h>
#include <link.h>

namespace host
{

namespace
{

using ElfHeader = ElfW(Ehdr);
using ElfSegment = ElfW(Phdr);

/// Whether every part that the header and the segments name lies within the file.
bool IsWhole(LibraryFile& file, const ElfHeader& header)
{
    if (header.e_phentsize != sizeof(ElfSegment))
        return false;
    std::vector<ElfSegment> segments(header.e_phnum);
    if (!file.ReadAt(header.e_phoff, segments.data(), segments.size()))
        return false;
    for (const ElfSegment& segment : segments)
        if (segment.p_type == PT_LOAD && !file.Holds(segment.p_offset, segment.p_filesz))
            return false;
    return file.Holds(header.e_shoff, std::uintmax_t{header.e_shnum} * header.e_shentsize);
}

/// Throws std::runtime_error where the file is not a complete library.
/// NOTE: the system's loader does not compare a library's segments with the length of its file. The process
/// dies of SIGBUS when it touches a missing part.
void CheckIsLibrary(const std::filesystem::path& path)
{
    LibraryFile file(path);
    ElfHeader header{};
    static constexpr std::array<char, SELFMAG + 1> kMagic{ELFMAG};
    if (!file.ReadAt(0, &header, 1) || std::memcmp(header.e_ident, kMagic.data(), SELFMAG) != 0)
        throw std::runtime_error("is not a module");
    // A library for another kind of machine has another header. The system's loader refuses it.
    constexpr unsigned char kClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    if (header.e_ident[EI_CLASS] == kClass && !IsWhole(file, header))
        throw std::runtime_error("is cut short");
}

/// The last error of the system's loader, without the file's name in front.
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

std::filesystem::path SharedLibrary::FileOfLoaded(const std::string& name)
{
    const std::string file = "lib" + name + ".so";
    const std::unique_ptr<void, int (*)(void*)> library(dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD),
                                                        dlclose);
    const link_map* const record = library != nullptr ? RecordOf(library.get()) : nullptr;
    return record != nullptr ? std::filesystem::path(record->l_name) : std::filesystem::path();
}

void* SharedLibrary::FindAddress(const char* name) const noexcept
{
    // dlsym goes on in the libraries that this one needs: an address of theirs does not count.
    void* const address = dlsym(handle_, name);
    Dl_info info{};
    void* owner = nullptr;
    if (address == nullptr || dladdr1(address, &info, &owner, RTLD_DL_LINKMAP) == 0)
        return nullptr;
    return owner == RecordOf(handle_) ? address : nullptr;
}

} // namespace host
