#include "viewer/import/process/reader_location.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace viewer
{

namespace
{

/// The path of the file that is mapped at the address; empty where none is.
std::string FileMappedAt(std::uintptr_t address)
{
    // NOTE: The dynamic linker's names for loaded files (dladdr, dl_iterate_phdr) are those that they were
    // loaded by. Relative ones are wrong after a change of the working folder.
    std::ifstream mappings("/proc/self/maps");
    for (std::string line; std::getline(mappings, line);) {
        std::istringstream range(line);
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        range >> std::hex >> begin >> dash >> end;
        const std::size_t path = line.find('/');
        if (range && begin <= address && address < end && path != std::string::npos)
            return line.substr(path);
    }
    return {};
}

} // namespace

std::string ReaderBesideThisCode()
{
    // A function with internal linkage, which no other library's can replace.
    const std::string file = FileMappedAt(reinterpret_cast<std::uintptr_t>(&FileMappedAt));
    if (file.empty())
        return {};
    return (std::filesystem::path(file).parent_path() / "karv-reader").string();
}

} // namespace viewer
