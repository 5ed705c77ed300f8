// Records of window classes and windows: parents, geometry, and which windows need painting. It sends no
// message and calls no backend; window_lifecycle.h changes the records in the order that programs can
// observe.
#pragma once

#include "platform/winsys/winsys.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace winsys::core
{

/// Returns a handle that is unique in the life of the process.
template <typename Handle>
[[nodiscard]] Handle NewHandle();

struct WindowClass {
    std::wstring name;
    ATOM atom = 0;
    WNDCLASSW record{};
};

/// The progress of a window's destruction. Each step runs once, even if a handler destroys the window again.
enum class Stage { Alive, Destroying, DestroySent, NcDestroySent };

struct Window {
    HWND handle = nullptr;
    std::shared_ptr<const WindowClass> window_class;
    /// The parent of a child window, the owner of a top-level one.
    HWND parent = nullptr;
    /// Child windows and owned top-level ones, in order of creation.
    std::vector<HWND> dependents;
    std::wstring title;
    DWORD style = 0;
    DWORD ex_style = 0;
    /// The native id of another toolkit's window; 0 for a window of the layer.
    std::uintptr_t native_id = 0;
    POINT position{};
    SIZE size{};
    LONG_PTR user_data = 0;
    Stage stage = Stage::Alive;
    /// WM_SIZE has been sent at least once.
    bool size_announced = false;
    bool needs_paint = false;
    bool needs_erase = false;
    HDC own_dc = nullptr;
    int pixel_format = 0;
    unsigned long swap_count = 0;

    [[nodiscard]] bool IsAdopted() const { return native_id != 0; }
    [[nodiscard]] bool IsChild() const { return (style & WS_CHILD) != 0; }
    /// The window's own flag; the window is not visible if an ancestor is hidden.
    [[nodiscard]] bool IsShown() const { return (style & WS_VISIBLE) != 0; }
};

class WindowTree
{
  public:
    /// Returns the atom of the new class; 0 if the name is taken or the record lacks a name or a procedure.
    ATOM RegisterClass(const WNDCLASSW& record);
    /// False if no such class is registered or a window of it exists.
    bool UnregisterClass(std::wstring_view name);
    /// Null if no such class is registered.
    [[nodiscard]] std::shared_ptr<const WindowClass> FindClass(std::wstring_view name) const;

    /// Null for null and for destroyed windows.
    [[nodiscard]] Window* Find(HWND window) const;
    /// The handle of the adopted window with this native id; null if there is none or its destruction has
    /// begun.
    [[nodiscard]] HWND FindAdopted(std::uintptr_t native_id) const;
    [[nodiscard]] bool IsEmpty() const { return windows_.empty(); }
    /// Stores the record and adds it to its parent.
    Window& Add(std::unique_ptr<Window> window);
    /// Removes the record; its dependents must have been removed.
    void Remove(HWND window);

    /// Whether the window is `ancestor` or a child of it at any depth.
    [[nodiscard]] bool IsWithin(HWND window, HWND ancestor) const;
    /// Whether the window and all its parents are shown.
    [[nodiscard]] bool IsVisible(const Window& window) const;
    /// The client origin in screen coordinates.
    [[nodiscard]] POINT ScreenOrigin(const Window& window) const;

    /// Whether the window is invalid, visible and not empty. False for an adopted window.
    [[nodiscard]] bool WantsPaint(const Window& window) const;
    /// The oldest window that needs painting and that `accepts` returns true for; null if there is none.
    [[nodiscard]] HWND FindWindowToPaint(const std::function<bool(HWND)>& accepts) const;

  private:
    std::map<std::wstring, std::shared_ptr<const WindowClass>, std::less<>> classes_;
    // Handles only grow, so the order of the map is the order of creation.
    std::map<HWND, std::unique_ptr<Window>, std::less<>> windows_;
    ATOM next_atom_ = 0xC000;
};

namespace detail
{
/// Never returns the same value twice in a process.
[[nodiscard]] std::uintptr_t NextHandleValue();
} // namespace detail

template <typename Handle>
Handle NewHandle()
{
    return reinterpret_cast<Handle>(detail::NextHandleValue());
}

} // namespace winsys::core
