#include "platform/host/rx/module_loader.h"

#include "platform/host/rx/entry_points.h"
#include "platform/host/rx/shared_library.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace host
{

struct ModuleLoader::Module {
    LoadedModule state;
    SharedLibrary library;
    EntryPoint entry_point;
    bool is_in_entry_point = false;
};

namespace
{

/// A handle that was never used before.
void* NewApplication()
{
    static std::uintptr_t last = 0;
    return reinterpret_cast<void*>(++last);
}

/// The error of a file. Line breaks in the file's name and in the reason become spaces.
std::runtime_error FileError(const std::filesystem::path& file, const std::string& reason)
{
    const std::u8string name = file.u8string();
    std::string line = std::string(name.begin(), name.end()) + ": " + reason;
    std::ranges::replace_if(
        line, [](char letter) { return letter == '\n' || letter == '\r'; }, ' ');
    return std::runtime_error(line);
}

std::string ReleaseText(int version)
{
    return std::to_string(version >> 16) + "." + std::to_string(version & 0xFFFF);
}

/// Runs a function of a module and returns why it failed, empty where it did not. Exceptions are caught and
/// destroyed here, because the code of their type goes when the module is unloaded.
template <typename Function>
std::string ReasonOfFailure(const Function& function)
{
    try {
        return function();
    } catch (const std::exception& exception) {
        return std::string("throws an exception: ") + exception.what();
    } catch (...) {
        return "throws an exception";
    }
}

/// The entry point of a module. Throws std::runtime_error with the reason where the library is not a module
/// for this release of the host.
EntryPoint CheckedEntryPoint(const SharedLibrary& library)
{
    const auto entry_point = library.Find<EntryPoint>(kEntryPointName);
    if (entry_point == nullptr)
        throw std::runtime_error(std::string("exports no ") + kEntryPointName);
    const auto query = library.Find<ApiVersionQuery>(kApiVersionQueryName);
    if (query == nullptr)
        throw std::runtime_error(std::string("exports no ") + kApiVersionQueryName);
    const std::string failure = ReasonOfFailure([query]() -> std::string {
        const int version = query();
        if (version == kApiVersion)
            return {};
        return "was built for release " + ReleaseText(version) + " of the host, not for " +
               ReleaseText(kApiVersion);
    });
    if (!failure.empty())
        throw std::runtime_error(failure);
    return entry_point;
}

/// Sends a message and returns why it failed, empty where it did not.
std::string Send(EntryPoint entry_point, void* application, Message message)
{
    return ReasonOfFailure([&]() -> std::string {
        const Answer answer = entry_point(message, application);
        if (answer == Answer::Ok)
            return {};
        return "answers with the error " + std::to_string(static_cast<std::int32_t>(answer));
    });
}

/// Sets a flag for the duration of a scope.
class FlagInScope
{
  public:
    explicit FlagInScope(bool& flag) noexcept : flag_(&flag) { *flag_ = true; }
    FlagInScope(const FlagInScope&) = delete;
    FlagInScope& operator=(const FlagInScope&) = delete;
    ~FlagInScope() { *flag_ = false; }

  private:
    bool* flag_;
};

} // namespace

ModuleLoader::ModuleLoader() = default;

ModuleLoader::~ModuleLoader()
{
    while (!modules_.empty()) {
        const Module& last = *std::prev(modules_.end())->second;
        void* const application = last.state.application;
        Send(last.entry_point, application, Message::Unload);
        modules_.erase(application);
    }
}

void* ModuleLoader::Load(const std::filesystem::path& file)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(file, error).lexically_normal();
    try {
        SharedLibrary library(error ? file : absolute);
        for (const auto& [application, module] : modules_) {
            if (!module->library.IsSameAs(library))
                continue;
            if (module->is_in_entry_point)
                throw std::runtime_error("is being loaded or unloaded");
            ++module->state.loads;
            return application;
        }
        const EntryPoint entry_point = CheckedEntryPoint(library);
        void* const application = NewApplication();
        Module& module =
            *modules_
                 .emplace(application,
                          std::make_unique<Module>(
                              LoadedModule{.application = application, .file = absolute, .loads = 1},
                              std::move(library), entry_point))
                 .first->second;
        std::string failure;
        {
            const FlagInScope in_entry_point(module.is_in_entry_point);
            failure = Send(entry_point, application, Message::Initialise);
        }
        if (!failure.empty()) {
            modules_.erase(application);
            throw std::runtime_error("at its initialisation it " + failure);
        }
        return application;
    } catch (const std::runtime_error& reason) {
        throw FileError(file, reason.what());
    }
}

void ModuleLoader::Unload(void* application)
{
    Module* const module = Find(application);
    if (module == nullptr)
        throw std::runtime_error("no module with this handle is loaded");
    const std::filesystem::path& file = module->state.file;
    if (module->is_in_entry_point)
        throw FileError(file, "is being loaded or unloaded");
    if (module->state.loads > 1) {
        --module->state.loads;
        return;
    }
    if (!module->state.may_be_unloaded)
        throw FileError(file, "has not allowed the host to unload it");
    std::string failure;
    {
        const FlagInScope in_entry_point(module->is_in_entry_point);
        failure = Send(module->entry_point, application, Message::Unload);
    }
    if (!failure.empty())
        throw FileError(file, "before it is unloaded it " + failure);
    modules_.erase(application);
}

std::vector<LoadedModule> ModuleLoader::Modules() const
{
    std::vector<LoadedModule> modules;
    modules.reserve(modules_.size());
    for (const auto& [application, module] : modules_)
        modules.push_back(module->state);
    return modules;
}

bool ModuleLoader::allowUnload(void* application)
{
    Module* const module = Find(application);
    if (module != nullptr)
        module->state.may_be_unloaded = true;
    return module != nullptr;
}

bool ModuleLoader::allowManyDocuments(void* application)
{
    Module* const module = Find(application);
    if (module != nullptr)
        module->state.serves_many_documents = true;
    return module != nullptr;
}

ModuleLoader::Module* ModuleLoader::Find(void* application) const
{
    const auto found = modules_.find(application);
    return found != modules_.end() ? found->second.get() : nullptr;
}

ModuleLoader& ProcessModuleLoader()
{
    // Never destroyed: at the end of the process the libraries' own teardown unloads the modules.
    static ModuleLoader* const loader = std::make_unique<ModuleLoader>().release();
    return *loader;
}

std::filesystem::path LoadedModuleFile(const std::string& name)
{
    return SharedLibrary::FileOfLoaded(name);
}

} // namespace host
