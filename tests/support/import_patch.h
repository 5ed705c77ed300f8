// A test's own function in the place of one that a loaded library imports from another.
#pragma once

#include "platform/winsys/winsys.h"

namespace karv_test
{

/// Makes the calls of one library to `function` of another go to `replacement` while it lives. Throws
/// std::runtime_error where the library is not loaded or does not import such a function. One thread.
class ImportPatch
{
  public:
    ImportPatch(const wchar_t* library, const char* function, void* replacement);
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch();

  private:
    /// Where the library keeps the address of the function.
    void** slot_;
    void* original_;
};

} // namespace karv_test
