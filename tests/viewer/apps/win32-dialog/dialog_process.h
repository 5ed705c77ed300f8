// The example program as a process of its own, run with a script or used by the keyboard; and a folder for
// its files.
#pragma once

#include "platform/winsys/winsys.h"
#include "tests/viewer/apps/win32-dialog/bitmap_file.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace dialog_test
{

/// A new folder that is removed with everything in it.
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
    std::string error; ///< what it wrote to the standard error, its lines ended by a line feed
};

/// The running program, which is ended with this object if it still runs then.
class DialogProcess
{
  public:
    /// Starts it with arguments, separated by blanks, in a folder.
    DialogProcess(const std::wstring& arguments, const std::filesystem::path& folder);
    DialogProcess(const DialogProcess&) = delete;
    DialogProcess& operator=(const DialogProcess&) = delete;
    ~DialogProcess();

    /// Waits for the end of the program.
    [[nodiscard]] Outcome Wait();
    /// Its dialog, waited for; null where none comes.
    [[nodiscard]] HWND Dialog() const;
    /// Waits until something holds; false where it does not within a minute, or the program ends before.
    [[nodiscard]] bool WaitUntil(const std::function<bool()>& holds) const;
    /// The control of the dialog that has the keyboard focus.
    [[nodiscard]] HWND Focus() const;

  private:
    PROCESS_INFORMATION process_{};
    HANDLE error_ = nullptr; ///< the end of a pipe to read from
};

/// Runs the program in a folder, to its end.
[[nodiscard]] Outcome RunDialog(const Folder& folder, const std::wstring& arguments);
/// The same with a script of these lines, named script.txt, and more arguments before it.
[[nodiscard]] Outcome RunScript(const Folder& folder, const std::string& script,
                                const std::wstring& arguments = {});

} // namespace dialog_test
