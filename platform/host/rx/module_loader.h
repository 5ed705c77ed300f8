// The host's side of the dynamic linker: it loads application modules by their files, gives them the host's
// messages and keeps what they register. For hosts and tests; modules see AcRxDynamicLinker alone.
//
// Everything here is for the host's user-interface thread.
#pragma once

#include "platform/host/rx/dynamic_linker.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace host
{

/// A loaded application module, as the loader knows it.
struct LoadedModule {
    void* application = nullptr;        ///< its handle, never used again for another one
    std::filesystem::path file;         ///< absolute
    int loads = 0;                      ///< how many calls of `Load` have not been undone
    bool may_be_unloaded = false;       ///< it called `allowUnload`
    bool serves_many_documents = false; ///< it called `allowManyDocuments`
};

/// A dynamic linker that loads modules. Its run-time class is that of its base. Not copyable. Modules may
/// call it from their entry points.
class KARV_PLATFORM_API ModuleLoader final : public AcRxDynamicLinker
{
  public:
    ModuleLoader();
    ModuleLoader(const ModuleLoader&) = delete;
    ModuleLoader& operator=(const ModuleLoader&) = delete;
    /// Unloads all its modules, the last one loaded first, whatever they answer or allowed.
    ~ModuleLoader() override;

    /// Loads a module, checks that it exports both entry points and was built for this release of the host,
    /// and sends it `Message::Initialise`. Returns its handle. A file that this loader has loaded already, by
    /// whatever name, is counted once more and gets no message.
    ///
    /// Throws std::runtime_error with one line that names the file and the reason; then the file is unloaded,
    /// its registrations are forgotten, and other modules stay as they are. So too where the module's entry
    /// point throws, answers with an error, or asks for the module itself to be loaded or unloaded.
    void* Load(const std::filesystem::path& file);

    /// Undoes one `Load`. With the last one the module gets `Message::Unload` and is unloaded, unless the
    /// process uses its file otherwise.
    ///
    /// Throws std::runtime_error with one line where the handle is of no loaded module; and, naming the file,
    /// where the module has not allowed it, answers with an error or throws: then it stays loaded.
    void Unload(void* application);

    /// The loaded modules in the order of their loading.
    [[nodiscard]] std::vector<LoadedModule> Modules() const;

    bool allowUnload(void* application) override;
    bool allowManyDocuments(void* application) override;

  private:
    struct Module;

    [[nodiscard]] Module* Find(void* application) const;

    std::map<void*, std::unique_ptr<Module>> modules_;
};

/// The process's loader, which the system registry holds under kDynamicLinkerKey. It ends with the process,
/// and what is loaded then gets no message.
[[nodiscard]] KARV_PLATFORM_API ModuleLoader& ProcessModuleLoader();

/// The file of a library that the process has loaded or was linked to, by the library's name without what
/// the system puts before and after it; empty where there is none. So a program that is linked to a module
/// finds the file by which to load it as the host does.
[[nodiscard]] KARV_PLATFORM_API std::filesystem::path LoadedModuleFile(const std::string& name);

} // namespace host
