#include "platform/framework/extension_module.h"

#include <memory>

namespace
{

/// Has no destructor: modules leave the chain in the last steps of the process.
constinit AFX_MODULE_STATE module_state;

} // namespace

CDynLinkLibrary::CDynLinkLibrary(const AFX_EXTENSION_MODULE& state, BOOL system)
    : m_hModule(state.hModule), m_hResource(state.hResource), m_bSystem(system)
{
    CDynLinkLibrary** place = &module_state.m_pFirstDLL;
    while (system != FALSE && *place != nullptr)
        place = &(*place)->m_pNextDLL;
    m_pNextDLL = *place;
    *place = this;
}

CDynLinkLibrary::~CDynLinkLibrary()
{
    CDynLinkLibrary** place = &module_state.m_pFirstDLL;
    while (*place != nullptr && *place != this)
        place = &(*place)->m_pNextDLL;
    if (*place == this)
        *place = m_pNextDLL;
}

AFX_MODULE_STATE* AfxGetModuleState() noexcept
{
    return &module_state;
}

HINSTANCE AfxGetResourceHandle()
{
    if (module_state.m_hCurrentResourceHandle == nullptr)
        module_state.m_hCurrentResourceHandle = ::GetModuleHandleW(nullptr);
    return module_state.m_hCurrentResourceHandle;
}

void AfxSetResourceHandle(HINSTANCE instance) noexcept
{
    module_state.m_hCurrentResourceHandle = instance;
}

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HINSTANCE instance) noexcept
{
    if (state.bInitialized != FALSE)
        return TRUE;
    if (instance == nullptr)
        return FALSE;
    state = {.bInitialized = TRUE, .hModule = instance, .hResource = instance};
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all)
{
    const bool is_known = state.bInitialized != FALSE;
    CDynLinkLibrary* next = nullptr;
    for (CDynLinkLibrary* library = module_state.m_pFirstDLL; library != nullptr; library = next) {
        next = library->m_pNextDLL;
        if (all != FALSE || (is_known && library->m_hModule == state.hModule))
            const std::unique_ptr<CDynLinkLibrary> freed(library);
    }
    state = {};
}
