// Records of window classes and windows: who is whose child, where each one is, and which of them want
// painting. It sends no message and calls no backend; window_lifecycle.h changes the records in the order
// that programs may watch.
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

/// A handle that no object of the process has had before.
template <typename Handle>
[[nodiscard]] Handle NewHandle();

struct WindowClass {
    std::wstring name;
    ATOM atom = 0;
    WNDCLASSW record{};
};

/// How far the destruction of a window has come; each step is taken once, whatever handlers destroy
/// meanwhile.
enum class Stage { kAlive, kDestroying, kDestroySent, kNcDestroySent };

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
    /// The native id of another toolkit's window that this record stands for; 0 for a window of the layer.
    std::uintptr_t native_id = 0;
    POINT position{};
    SIZE size{};
    LONG_PTR user_data = 0;
    Stage stage = Stage::kAlive;
    /// WM_SIZE has been sent at least once.
    bool size_announced = false;
    bool needs_paint = false;
    bool needs_erase = false;
    HDC own_dc = nullptr;
    int pixel_format = 0;
    unsigned long swap_count = 0;

    [[nodiscard]] bool IsAdopted() const { return native_id != 0; }
    [[nodiscard]] bool IsChild() const { return (style & WS_CHILD) != 0; }
    /// The window's own flag; its ancestors may be hidden.
    [[nodiscard]] bool IsShown() const { return (style & WS_VISIBLE) != 0; }
};

class WindowTree
{
  public:
    /// The atom of the new class; 0 where the name is taken or the record has no name or procedure.
    ATOM RegisterClass(const WNDCLASSW& record);
    /// False where no such class is registered or a window of it exists.
    bool UnregisterClass(std::wstring_view name);
    [[nodiscard]] std::shared_ptr<const WindowClass> FindClass(std::wstring_view name) const;

    /// Null for null and for handles of windows that are gone.
    [[nodiscard]] Window* Find(HWND window) const;
    /// The record of this window of another toolkit; null where it is not adopted, or on its way out.
    [[nodiscard]] HWND FindAdopted(std::uintptr_t native_id) const;
    [[nodiscard]] bool IsEmpty() const { return windows_.empty(); }
    /// Takes the record in and enters it with its parent.
    Window& Add(std::unique_ptr<Window> window);
    /// Forgets the record; its dependents must be gone.
    void Remove(HWND window);

    /// The window is `ancestor` or a child, at any depth, of it.
    [[nodiscard]] bool IsWithin(HWND window, HWND ancestor) const;
    /// Shown, and all its parents are.
    [[nodiscard]] bool IsVisible(const Window& window) const;
    /// The client origin on the screen.
    [[nodiscard]] POINT ScreenOrigin(const Window& window) const;

    /// Invalid, visible and not empty.
    [[nodiscard]] bool WantsPaint(const Window& window) const;
    /// The oldest window that wants painting and passes the filter; null where none does.
    [[nodiscard]] HWND FindPaint(const std::function<bool(HWND)>& accepts) const;

  private:
    std::map<std::wstring, std::shared_ptr<const WindowClass>, std::less<>> classes_;
    // Handles grow, so the order of the map is the order of creation.
    std::map<HWND, std::unique_ptr<Window>, std::less<>> windows_;
    ATOM next_atom_ = 0xC000;
};

namespace detail
{
[[nodiscard]] std::uintptr_t NextHandleValue();
}

template <typename Handle>
Handle NewHandle()
{
    return reinterpret_cast<Handle>(detail::NextHandleValue());
}

} // namespace winsys::core
