// Records the window-system calls of the module and of the framework: the test program's own definitions
// pre-empt the layer's, record each call and pass it on. Refusals and answers stage results that no system
// gives on demand.
//
// It knows nothing of the control. For one thread. The program must be linked with its symbols exported.
#pragma once

#include "platform/winsys/winsys.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace karv_test
{

/// One creation of a window, with its class as registered at that time.
struct WindowCreation {
    DWORD ex_style = 0;
    std::wstring name;
    DWORD style = 0;
    RECT rect{}; ///< position and size as left, top, width, height
    HWND parent = nullptr;
    HMENU menu = nullptr;
    HINSTANCE instance = nullptr;
    LPVOID param = nullptr;
    WNDCLASSW window_class{};
    HWND window = nullptr; ///< null until the creation returns, and if it was refused
};

/// Records the calls made during its life; of nested recordings only the innermost records. Handles are shown
/// as names: "SetFocus(3DView)", "SwapBuffers(dc of 3DView)", contexts as "context 1", "context 2" in the
/// order of their creation.
class WindowCalls
{
  public:
    WindowCalls();
    WindowCalls(const WindowCalls&) = delete;
    WindowCalls& operator=(const WindowCalls&) = delete;
    ~WindowCalls();

    [[nodiscard]] const std::vector<std::string>& Listing() const { return listing_; }
    [[nodiscard]] int Count(std::string_view text) const;
    void Clear()
    {
        listing_.clear();
        defaulted_messages_.clear();
    }
    /// Adds a line of the test's own, to order other events with the calls.
    void Mark(std::string text) { listing_.push_back(std::move(text)); }

    [[nodiscard]] const std::vector<WindowCreation>& Creations() const { return creations_; }
    /// The creation of the window of this name. Throws std::out_of_range if there was none.
    [[nodiscard]] const WindowCreation& Creation(std::wstring_view name) const;
    /// The descriptors passed to ChoosePixelFormat and SetPixelFormat, in order.
    [[nodiscard]] const std::vector<PIXELFORMATDESCRIPTOR>& Descriptors() const { return descriptors_; }
    /// The device contexts that GetDC returned, in order.
    [[nodiscard]] const std::vector<HDC>& DeviceContexts() const { return device_contexts_; }
    /// The contexts created, in order.
    [[nodiscard]] const std::vector<HGLRC>& Contexts() const { return contexts_; }
    /// The messages passed to DefWindowProcW, in order; the listing leaves them out.
    [[nodiscard]] const std::vector<UINT>& DefaultedMessages() const { return defaulted_messages_; }

    /// The operations from here on are for the pre-empting definitions.
    [[nodiscard]] std::string NameOf(HWND window);
    [[nodiscard]] std::string NameOf(HDC dc);
    [[nodiscard]] std::string NameOf(HGLRC context) const;
    void NoteCreation(WindowCreation creation) { creations_.push_back(std::move(creation)); }
    void NoteCreated(std::size_t index, HWND window) { creations_.at(index).window = window; }
    void NoteDescriptor(const PIXELFORMATDESCRIPTOR* descriptor);
    void NoteDeviceContext(HWND window, HDC dc);
    void NoteContext(HGLRC context);
    void NoteDefaultedMessage(UINT message) { defaulted_messages_.push_back(message); }

  private:
    std::vector<std::string> listing_;
    std::vector<WindowCreation> creations_;
    std::vector<PIXELFORMATDESCRIPTOR> descriptors_;
    std::vector<HDC> device_contexts_;
    std::vector<HGLRC> contexts_;
    std::vector<UINT> defaulted_messages_;
    std::map<HWND, std::string> windows_;
    std::map<HDC, std::string> dcs_;
    WindowCalls* outer_;
};

/// Makes an entry point return 0, null or FALSE without calling the system: at its call number `nth`, counted
/// from 1 since the refusal was made, or at every call if `nth` is 0.
class WindowRefusal
{
  public:
    explicit WindowRefusal(std::string name, int nth = 0);
    WindowRefusal(const WindowRefusal&) = delete;
    WindowRefusal& operator=(const WindowRefusal&) = delete;
    ~WindowRefusal();

    /// For the pre-empting definitions.
    [[nodiscard]] bool Refuses(std::string_view name);

  private:
    std::string name_;
    int nth_;
    int calls_ = 0;
};

/// Makes `wglGetProcAddress` return this address for an extension's entry point; null for a missing one. Of
/// several for one name the newest counts.
class EntryPointAnswer
{
  public:
    EntryPointAnswer(std::string entry_point, PROC result);
    EntryPointAnswer(const EntryPointAnswer&) = delete;
    EntryPointAnswer& operator=(const EntryPointAnswer&) = delete;
    ~EntryPointAnswer();

    /// The operations from here on are for the pre-empting definitions.
    [[nodiscard]] const std::string& EntryPoint() const { return entry_point_; }
    [[nodiscard]] PROC Result() const { return result_; }

  private:
    std::string entry_point_;
    PROC result_;
};

} // namespace karv_test
