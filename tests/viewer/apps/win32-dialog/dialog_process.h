// The program as a process of its own, run with a script or used by the keyboard, and a folder for its files.
#pragma once

#include "platform/winsys/winsys.h"
#include "tests/viewer/apps/win32-dialog/bitmap_file.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace dialog_test
{

/// A new folder, removed with its contents by the destructor.
class Folder
{
  public:
    Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder();

    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    /// Writes a file and returns its path.
    std::filesystem::path Write(const std::string& name, const std::string& text) const;
    [[nodiscard]] std::vector<std::string> FileNames() const;
    [[nodiscard]] Picture Read(const std::string& name) const { return ReadBitmap(path_ / name); }

  private:
    std::filesystem::path path_;
};

/// How a run of the program ended.
struct Outcome {
    unsigned long status = 0;
    std::string error; ///< its standard error, with line feeds as line ends
};

/// The running program. The destructor ends it if it still runs.
class DialogProcess
{
  public:
    /// Starts the program in a folder, with arguments that are separated by blanks.
    DialogProcess(const std::wstring& arguments, const std::filesystem::path& folder);
    DialogProcess(const DialogProcess&) = delete;
    DialogProcess& operator=(const DialogProcess&) = delete;
    ~DialogProcess();

    /// Waits for the end of the program. Throws std::runtime_error where it does not end within a minute.
    [[nodiscard]] Outcome Wait();
    /// Waits for the program's dialog; null where none appears.
    [[nodiscard]] HWND Dialog() const;
    /// Waits until the condition holds. False where it does not hold within a minute or before the program
    /// ends.
    [[nodiscard]] bool WaitUntil(const std::function<bool()>& holds) const;
    /// The control of the dialog that has the keyboard focus.
    [[nodiscard]] HWND Focus() const;

  private:
    PROCESS_INFORMATION process_{};
    HANDLE error_ = nullptr; ///< the reading end of a pipe
};

/// Runs the program in a folder and waits for its end.
[[nodiscard]] Outcome RunDialog(const Folder& folder, const std::wstring& arguments);
/// The same with a script, written to script.txt; `arguments` come before it.
[[nodiscard]] Outcome RunScript(const Folder& folder, const std::string& script,
                                const std::wstring& arguments = {});

} // namespace dialog_test
