// What the backend knows of each window beyond its handle: the X windows that make it up, and where they are.
// It sends nothing to the server.
#pragma once

#include "platform/winsys/x11/glx_contexts.h"

#include <map>

namespace winsys::x11
{

struct NativeRecord {
    HWND handle = nullptr;
    /// The parent of a child window.
    HWND parent = nullptr;
    /// The window that takes the input; another toolkit's where adopted.
    ::Window outer = 0;
    Surface surface;
    POINT position{};
    SIZE size{};
    bool is_adopted = false;
    /// The server has destroyed it, by another's doing.
    bool is_gone = false;
    /// The layer wants it to be seen.
    bool is_shown = false;
    /// It is mapped: shown and not empty.
    bool is_mapped = false;
    /// A window manager has put a frame around it.
    bool is_framed = false;
    /// The request that placed it last; what the server tells of the time before is out of date.
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
    /// By the id of the outer window or of its surface.
    [[nodiscard]] NativeRecord* FindById(::Window id);
    [[nodiscard]] const NativeRecord* FindById(::Window id) const;
    /// The window is the other one or in it, at any depth.
    [[nodiscard]] bool IsWithin(const NativeRecord& record, HWND ancestor) const;
    /// The top-level or adopted window that this one is in.
    [[nodiscard]] NativeRecord& TopOf(NativeRecord& record);
    /// The window's client origin within that of its top.
    [[nodiscard]] POINT OffsetInTop(const NativeRecord& record);

  private:
    std::map<HWND, NativeRecord> records_;
};

} // namespace winsys::x11
