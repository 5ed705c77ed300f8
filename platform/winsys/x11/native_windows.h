// The records of the X backend's windows: the X windows that each consists of, and their places. Sends
// nothing to the server.
#pragma once

#include "platform/winsys/x11/glx_contexts.h"

#include <map>

namespace winsys::x11
{

struct NativeRecord {
    HWND handle = nullptr;
    /// The parent of a child window, null for a top-level one.
    HWND parent = nullptr;
    /// The X window that receives the input; for an adopted window that of the other toolkit.
    ::Window outer = 0;
    Surface surface;
    POINT position{};
    SIZE size{};
    bool is_adopted = false;
    /// Another program destroyed it on the server.
    bool is_gone = false;
    /// The layer has shown it.
    bool is_shown = false;
    /// It is mapped on the server: shown and not empty.
    bool is_mapped = false;
    /// A window manager has reparented it into a frame.
    bool is_framed = false;
    /// The serial of the last request that placed it; older reports of the server are outdated.
    unsigned long last_placement = 0;

    [[nodiscard]] bool IsTopLevel() const { return parent == nullptr; }
};

class NativeWindows
{
  public:
    NativeRecord& Add(const NativeRecord& record);
    void Remove(HWND window);

    /// Null for null and for unknown windows.
    [[nodiscard]] NativeRecord* Find(HWND window);
    /// Finds a window by the id of its outer X window or of its surface; null if there is none.
    [[nodiscard]] NativeRecord* FindById(::Window id);
    [[nodiscard]] const NativeRecord* FindById(::Window id) const;
    /// Whether the window is `ancestor` or a child of it at any depth.
    [[nodiscard]] bool IsWithin(const NativeRecord& record, HWND ancestor) const;
    /// The top-level or adopted window that contains this one.
    [[nodiscard]] NativeRecord& TopOf(NativeRecord& record);
    /// The window's client origin relative to that of its top-level window.
    [[nodiscard]] POINT OffsetInTop(const NativeRecord& record);

  private:
    std::map<HWND, NativeRecord> records_;
};

} // namespace winsys::x11
