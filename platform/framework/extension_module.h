// Extension modules of the framework: each joins the chain of those whose resources and classes the framework
// searches, and leaves it before it is unloaded. What they keep there is not looked at here.
//
// The chain belongs to the process; everything here is for the thread that owns the windows.
#pragma once

#include "platform/winsys/winsys.h"

/// What the framework knows of an extension module. The module owns it and keeps it until
/// `AfxTermExtensionModule`.
struct AFX_EXTENSION_MODULE {
    BOOL bInitialized = FALSE;
    HINSTANCE hModule = nullptr;
    HINSTANCE hResource = nullptr; ///< where its resources lie: in the module itself
};

/// A module's place in the chain. Made on the heap by the module, once its state is initialised; freed by
/// `AfxTermExtensionModule`, or by `delete` before that.
class KARV_PLATFORM_API CDynLinkLibrary
{
  public:
    HINSTANCE m_hModule;
    HINSTANCE m_hResource;
    BOOL m_bSystem;
    CDynLinkLibrary* m_pNextDLL = nullptr; ///< searched after this one; null for the last

    /// Joins the chain: before all others, or behind them where `system` says that it holds what modules may
    /// replace. `state` is read here and not kept.
    explicit CDynLinkLibrary(const AFX_EXTENSION_MODULE& state, BOOL system = FALSE);
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;
    /// Leaves the chain.
    virtual ~CDynLinkLibrary();
};

/// The framework's state in this process.
struct AFX_MODULE_STATE {
    HINSTANCE m_hCurrentResourceHandle = nullptr; ///< null until it is first asked for or set
    CDynLinkLibrary* m_pFirstDLL = nullptr;       ///< the head of the chain, null for an empty one
};

/// The state; never null, and valid until the process ends.
[[nodiscard]] KARV_PLATFORM_API AFX_MODULE_STATE* AfxGetModuleState() noexcept;

/// The module whose resources are searched by default; the program, unless another one was set.
[[nodiscard]] KARV_PLATFORM_API HINSTANCE AfxGetResourceHandle();
/// Null stands for the program.
KARV_PLATFORM_API void AfxSetResourceHandle(HINSTANCE instance) noexcept;

/// Fills the state of the module that was loaded as `instance`. TRUE without a change where it is initialised
/// already; FALSE, with the state as it was, for no instance.
KARV_PLATFORM_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HINSTANCE instance) noexcept;

/// Frees what the module has in the chain (with `all`, what every module has) and ends its state, which may
/// then be initialised anew. A state that is not initialised has nothing there.
KARV_PLATFORM_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all = FALSE);
