// Replaces a function that a loaded library imports from another by a test's own.
#pragma once

#include "platform/winsys/winsys.h"

namespace karv_test
{

/// Redirects the calls of one library to `function` of another to `replacement` during its life. Throws
/// std::runtime_error if the library is not loaded or does not import that function. For one thread.
class ImportPatch
{
  public:
    ImportPatch(const wchar_t* library, const char* function, void* replacement);
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch();

  private:
    /// The place of the function's address in the library.
    void** slot_;
    void* original_;
};

} // namespace karv_test
