#include "tests/support/image_file.h"

#include "platform/winsys/winsys.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>

namespace karv_test
{
namespace
{

const IMAGE_NT_HEADERS64* HeadersOf(const std::string& content)
{
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(content.data());
    if (content.size() < sizeof *dos || dos->e_magic != IMAGE_DOS_SIGNATURE)
        throw std::runtime_error("no image");
    const auto start = static_cast<std::size_t>(dos->e_lfanew);
    if (start > content.size() || content.size() - start < sizeof(IMAGE_NT_HEADERS64))
        throw std::runtime_error("an image that is cut short");
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(content.data() + start);
    if (headers->Signature != IMAGE_NT_SIGNATURE || headers->FileHeader.Machine != IMAGE_FILE_MACHINE_AMD64)
        throw std::runtime_error("an image for something else");
    return headers;
}

std::string ReadFileAt(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::uintptr_t Directory(const std::string& content, std::size_t index)
{
    return HeadersOf(content)->OptionalHeader.DataDirectory[index].VirtualAddress;
}

} // namespace

ImageFile::ImageFile(const std::string& path) : content_(ReadFileAt(path))
{
    static_cast<void>(HeadersOf(content_));
}

template <typename Record>
const Record* ImageFile::At(std::uintptr_t address) const
{
    const IMAGE_NT_HEADERS64* const headers = HeadersOf(content_);
    const std::span sections(IMAGE_FIRST_SECTION(headers), headers->FileHeader.NumberOfSections);
    for (const IMAGE_SECTION_HEADER& section : sections) {
        if (address < section.VirtualAddress || address >= section.VirtualAddress + section.SizeOfRawData)
            continue;
        const std::uintptr_t place = section.PointerToRawData + (address - section.VirtualAddress);
        if (place + sizeof(Record) <= content_.size())
            return reinterpret_cast<const Record*>(content_.data() + place);
    }
    throw std::runtime_error("an address outside the image");
}

std::set<std::string> ImageFile::Exports() const
{
    const auto* const table = At<IMAGE_EXPORT_DIRECTORY>(Directory(content_, IMAGE_DIRECTORY_ENTRY_EXPORT));
    const std::span addresses(At<DWORD>(table->AddressOfNames), table->NumberOfNames);
    std::set<std::string> names;
    for (const DWORD address : addresses)
        names.insert(Text(address));
    return names;
}

std::size_t ImageFile::NamelessExports() const
{
    const auto* const table = At<IMAGE_EXPORT_DIRECTORY>(Directory(content_, IMAGE_DIRECTORY_ENTRY_EXPORT));
    return table->NumberOfFunctions - table->NumberOfNames;
}

std::map<std::string, std::set<std::string>> ImageFile::Imports() const
{
    std::map<std::string, std::set<std::string>> libraries;
    const auto* from = At<IMAGE_IMPORT_DESCRIPTOR>(Directory(content_, IMAGE_DIRECTORY_ENTRY_IMPORT));
    for (; from->Name != 0; ++from) {
        std::string library = Text(from->Name);
        std::ranges::transform(library, library.begin(),
                               [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
        std::set<std::string>& functions = libraries[library];
        const auto* entry = At<IMAGE_THUNK_DATA64>(from->OriginalFirstThunk);
        for (; entry->u1.AddressOfData != 0; ++entry)
            if ((entry->u1.Ordinal & IMAGE_ORDINAL_FLAG64) == 0)
                functions.insert(Text(entry->u1.AddressOfData + offsetof(IMAGE_IMPORT_BY_NAME, Name)));
    }
    return libraries;
}

} // namespace karv_test
