#include "viewer/import/process/reader_location.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

#include <link.h>

namespace viewer
{

namespace
{

struct CodeFile {
    std::uintptr_t address = 0;
    std::string path; ///< empty for the program itself
};

/// Takes the name of the loaded file that holds the address.
int FindFile(dl_phdr_info* info, std::size_t /*size*/, void* data)
{
    CodeFile& wanted = *static_cast<CodeFile*>(data);
    for (ElfW(Half) i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        const std::uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
        if (segment.p_type != PT_LOAD || wanted.address < begin || wanted.address - begin >= segment.p_memsz)
            continue;
        wanted.path = info->dlpi_name;
        return 1;
    }
    return 0;
}

} // namespace

std::string ReaderBesideThisCode()
{
    CodeFile file{reinterpret_cast<std::uintptr_t>(&ReaderBesideThisCode), {}};
    // NOTE: dladdr names the program as it was called, which is of no use after a change of the working folder.
    dl_iterate_phdr(&FindFile, &file);
    std::error_code error;
    const std::filesystem::path path =
        std::filesystem::canonical(file.path.empty() ? "/proc/self/exe" : file.path, error);
    return (path.parent_path() / "karv-reader").string();
}

} // namespace viewer
