#include "tests/support/import_patch.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace karv_test
{
namespace
{

template <typename Record>
const Record* At(HMODULE library, std::uintptr_t offset)
{
    return reinterpret_cast<const Record*>(reinterpret_cast<std::uintptr_t>(library) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* Imports(HMODULE library)
{
    const auto* const dos = At<IMAGE_DOS_HEADER>(library, 0);
    const auto* const headers = At<IMAGE_NT_HEADERS64>(library, static_cast<std::uintptr_t>(dos->e_lfanew));
    return At<IMAGE_IMPORT_DESCRIPTOR>(
        library, headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
}

/// The slot of a function that is imported by name; null if there is none.
void** FindSlot(HMODULE library, std::string_view function)
{
    for (const auto* from = Imports(library); from->Name != 0; ++from) {
        const auto* name = At<IMAGE_THUNK_DATA64>(library, from->OriginalFirstThunk);
        const auto* slot = At<IMAGE_THUNK_DATA64>(library, from->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if ((name->u1.Ordinal & IMAGE_ORDINAL_FLAG64) != 0)
                continue;
            const auto* const hint = At<IMAGE_IMPORT_BY_NAME>(library, name->u1.AddressOfData);
            if (function == reinterpret_cast<const char*>(hint->Name))
                return reinterpret_cast<void**>(reinterpret_cast<std::uintptr_t>(slot));
        }
    }
    return nullptr;
}

void Write(void** slot, void* address)
{
    DWORD before = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = address;
    VirtualProtect(slot, sizeof *slot, before, &before);
}

} // namespace

ImportPatch::ImportPatch(const wchar_t* library, const char* function, void* replacement)
{
    const HMODULE module = GetModuleHandleW(library);
    slot_ = module != nullptr ? FindSlot(module, function) : nullptr;
    if (slot_ == nullptr)
        throw std::runtime_error(std::string("nothing loaded imports ") + function);
    original_ = *slot_;
    Write(slot_, replacement);
}

ImportPatch::~ImportPatch()
{
    Write(slot_, original_);
}

} // namespace karv_test
