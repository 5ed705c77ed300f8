// The loaded module's import of the framework's function is replaced. By then the module is already attached.
#include "tests/module/process_end_steps.h"

#include "tests/support/import_patch.h"

#include <memory>

namespace
{

void TermAndWrite(AFX_EXTENSION_MODULE& state, BOOL all)
{
    AfxTermExtensionModule(state, all);
    karv_test::WriteStep(karv_test::DetachedStep(all != FALSE));
}

} // namespace

namespace karv_test
{

void WriteStep(const std::string& line)
{
    const std::string text = line + "\n";
    DWORD written = 0;
    if (WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written,
                  nullptr) == FALSE)
        ExitProcess(3);
}

void WatchModule()
{
    constexpr const wchar_t* kModule = L"KARV3DViewport10.dll";
    static bool is_watched = false;
    if (is_watched || GetModuleHandleW(kModule) == nullptr)
        return;
    // Never undone: the module, and with it the patched address, may be unloaded by then.
    static_cast<void>(std::make_unique<ImportPatch>(kModule,
                                                    "_Z22AfxTermExtensionModuleR20AFX_EXTENSION_MODULEi",
                                                    reinterpret_cast<void*>(&TermAndWrite))
                          .release());
    is_watched = true;
}

} // namespace karv_test
