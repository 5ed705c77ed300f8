// The host's side of the dynamic linker: it loads application modules by their files, sends them the host's
// messages and stores what they register. For hosts and tests; modules use AcRxDynamicLinker only.
//
// For the host's user-interface thread.
#pragma once

#include "platform/host/rx/dynamic_linker.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace host
{

/// The loader's record of a loaded application module.
struct LoadedModule {
    void* application = nullptr;        ///< its handle, never used for another module
    std::filesystem::path file;         ///< absolute
    int loads = 0;                      ///< the calls of `Load` that no `Unload` has undone
    bool may_be_unloaded = false;       ///< it called `allowUnload`
    bool serves_many_documents = false; ///< it called `allowManyDocuments`
};

/// A dynamic linker that loads modules. Its run-time class is that of its base. Modules may call it from
/// their entry points.
class KARV_PLATFORM_API ModuleLoader final : public AcRxDynamicLinker
{
  public:
    ModuleLoader();
    ModuleLoader(const ModuleLoader&) = delete;
    ModuleLoader& operator=(const ModuleLoader&) = delete;
    /// Sends `Message::Unload` to all its modules and unloads them, the last loaded first. Their answers and
    /// permissions are ignored.
    ~ModuleLoader() override;

    /// Loads a module, checks that it exports both entry points and was built for this release of the host,
    /// and sends it `Message::Initialise`. Returns its handle. Where this loader has loaded the file
    /// already, under this name or another, only its count grows and it gets no message.
    ///
    /// Throws std::runtime_error with one line, "FILE: reason"; then the file is unloaded, its
    /// registrations are dropped, and other modules stay as they are. This includes an entry point that
    /// throws, answers with an error, or asks for its own module to be loaded or unloaded.
    void* Load(const std::filesystem::path& file);

    /// Undoes one `Load`. The last one sends `Message::Unload` and unloads the module, unless the process
    /// uses its file in another way too.
    ///
    /// Throws std::runtime_error with one line where the handle belongs to no loaded module. Throws it with
    /// the file's name, and leaves the module loaded, where the module has not allowed it, answers with an
    /// error or throws.
    void Unload(void* application);

    /// The loaded modules in the order of loading.
    [[nodiscard]] std::vector<LoadedModule> Modules() const;

    bool allowUnload(void* application) override;
    bool allowManyDocuments(void* application) override;

  private:
    struct Module;

    [[nodiscard]] Module* Find(void* application) const;

    std::map<void*, std::unique_ptr<Module>> modules_;
};

/// The process's loader, which the system registry holds under kDynamicLinkerKey. It is never destroyed:
/// modules that are loaded at the end of the process get no message.
[[nodiscard]] KARV_PLATFORM_API ModuleLoader& ProcessModuleLoader();

/// The file of a library that the process has loaded or was linked to. `name` is without the system's
/// prefix and ending. Empty where no such library is loaded. With it, a program that is linked to a module
/// can load the module as the host does.
[[nodiscard]] KARV_PLATFORM_API std::filesystem::path LoadedModuleFile(const std::string& name);

} // namespace host
