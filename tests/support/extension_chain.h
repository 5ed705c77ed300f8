// Reads the framework's chain of extension modules.
#pragma once

#include "platform/framework/extension_module.h"

#include <vector>

namespace karv_test
{

/// The modules of the chain, first to last.
[[nodiscard]] inline std::vector<HINSTANCE> Chain()
{
    std::vector<HINSTANCE> modules;
    for (const CDynLinkLibrary* library = AfxGetModuleState()->m_pFirstDLL; library != nullptr;
         library = library->m_pNextDLL)
        modules.push_back(library->m_hModule);
    return modules;
}

/// The number of modules in the chain.
[[nodiscard]] inline int ChainLength()
{
    return static_cast<int>(Chain().size());
}

} // namespace karv_test
