// The viewer for Windows: shows a model file, or a bundled scene, in a dialog.
//
//   win32_dialog [MODEL] [--script FILE] [--picture FILE.bmp]
//
// With --script or --picture the program ends as soon as the script has been played and the picture has been
// written; without them it ends when the user closes the dialog. Exit status: 0 for success, 1 for a failure
// and 2 for a wrong command line. Failures are reported in one line, on the standard error with --script or
// --picture, else in a message box; a wrong command line is always reported on the standard error.
#include "platform/host/rx/module_loader.h"
#include "platform/tools/utf8.h"
#include "viewer/apps/win32-dialog/bundled_scene.h"
#include "viewer/apps/win32-dialog/dialog.h"
#include "viewer/apps/win32-dialog/model_file.h"
#include "viewer/apps/win32-dialog/script.h"
#include "viewer/apps/win32-dialog/script_user.h"

#include <shellapi.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace win32_dialog
{

namespace
{

struct Options {
    std::optional<std::filesystem::path> model;
    std::optional<std::filesystem::path> script;
    std::optional<std::filesystem::path> picture;

    /// Whether the program runs without a user.
    [[nodiscard]] bool RunsByItself() const { return script || picture; }
};

class UsageError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

std::vector<std::wstring> Arguments()
{
    int count = 0;
    wchar_t** const first = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::wstring> arguments(first + 1, first + count);
    LocalFree(first);
    return arguments;
}

Options ParseOptions(const std::vector<std::wstring>& arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::wstring& argument = arguments[i];
        const bool is_model = !argument.starts_with(L"--");
        auto& option = is_model ? options.model : argument == L"--script" ? options.script : options.picture;
        if (!is_model && argument != L"--script" && argument != L"--picture")
            throw UsageError("there is no option " + Utf8FromWide(argument));
        if (option)
            throw UsageError(is_model ? "there is room for one model only"
                                      : Utf8FromWide(argument) + " stands twice");
        if (!is_model && ++i == arguments.size())
            throw UsageError(Utf8FromWide(argument) + " needs a file");
        option = arguments[i];
    }
    return options;
}

void ShowError(HWND owner, const std::string& error)
{
    MessageBoxW(owner, WideFromUtf8(error).c_str(), L"Viewport", MB_OK | MB_ICONERROR);
}

void ShowDialog(const Options& options)
{
    const std::vector<ScriptCommand> script =
        options.script ? ReadScript(*options.script) : std::vector<ScriptCommand>();
    viewer::Model model = options.model ? ReadModelFile(*options.model) : MakeBundledScene();
    ViewerDialog dialog(std::move(model), options.RunsByItself() ? ViewerDialog::ErrorReport() : ShowError);
    if (options.script)
        PlayScript(*options.script, script, dialog);
    if (options.picture)
        TakePicture(dialog, *options.picture);
    while (dialog.IsOpen() && !options.RunsByItself())
        dialog.Dispatch();
}

void Run(const Options& options)
{
    // The program is linked to the module; the host has to load it like any application module.
    host::ModuleLoader& loader = host::ProcessModuleLoader();
    void* const module = loader.Load(host::LoadedModuleFile("KARV3DViewport10"));
    ShowDialog(options);
    loader.Unload(module);
}

} // namespace

} // namespace win32_dialog

int WINAPI wWinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, PWSTR /*command_line*/, int /*show*/)
{
    using namespace win32_dialog;
    Options options;
    try {
        options = ParseOptions(Arguments());
        Run(options);
        return 0;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "win32_dialog: %s\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        if (options.RunsByItself())
            std::fprintf(stderr, "win32_dialog: %s\n", error.what());
        else
            ShowError(nullptr, error.what());
        return 1;
    }
}
