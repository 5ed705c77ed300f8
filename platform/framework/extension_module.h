// Extension modules of the framework. Each joins the chain of modules whose resources and classes the
// framework searches, and leaves it before it is unloaded. The resources and classes themselves are not
// implemented here.
//
// The chain is one per process; everything here is for the thread that owns the windows.
#pragma once

#include "platform/export.h"
#include "platform/winsys/winsys.h"

/// The framework's state of an extension module. The module owns it and keeps it until
/// `AfxTermExtensionModule`.
struct AFX_EXTENSION_MODULE {
    BOOL bInitialized = FALSE;
    HINSTANCE hModule = nullptr;
    HINSTANCE hResource = nullptr; ///< contains its resources: the module itself
};

/// A module's entry in the chain. The module allocates it with `new` once its state is initialised.
/// `AfxTermExtensionModule` frees it; before that the module may `delete` it.
class KARV_PLATFORM_API CDynLinkLibrary
{
  public:
    HINSTANCE m_hModule;
    HINSTANCE m_hResource;
    BOOL m_bSystem;
    CDynLinkLibrary* m_pNextDLL = nullptr; ///< searched after this one; null for the last

    /// Joins the chain: at the front, or at the end if `system` marks a module whose contents others may
    /// replace. `state` is only read.
    explicit CDynLinkLibrary(const AFX_EXTENSION_MODULE& state, BOOL system = FALSE);
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;
    /// Leaves the chain.
    virtual ~CDynLinkLibrary();
};

/// The framework's state, one per process.
struct AFX_MODULE_STATE {
    HINSTANCE m_hCurrentResourceHandle = nullptr; ///< null before the first request or change
    CDynLinkLibrary* m_pFirstDLL = nullptr;       ///< the head of the chain, null for an empty one
};

/// Returns the state; never null, valid until the process ends.
[[nodiscard]] KARV_PLATFORM_API AFX_MODULE_STATE* AfxGetModuleState() noexcept;

/// Returns the module whose resources are searched by default: the program, unless another one was set.
[[nodiscard]] KARV_PLATFORM_API HINSTANCE AfxGetResourceHandle();
/// Sets the module whose resources are searched by default; null selects the program.
KARV_PLATFORM_API void AfxSetResourceHandle(HINSTANCE instance) noexcept;

/// Initialises the state of the module that was loaded as `instance`. TRUE, without a change, if it is
/// already initialised. FALSE, without a change, for a null instance.
KARV_PLATFORM_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HINSTANCE instance) noexcept;

/// Frees the module's entries in the chain (with `all`, those of every module) and resets its state, which
/// may then be initialised again. An uninitialised state has no entries.
KARV_PLATFORM_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all = FALSE);
