#include "platform/winsys/core/window_tree.h"

#include <algorithm>
#include <utility>

namespace winsys::core
{

std::uintptr_t detail::NextHandleValue()
{
    static std::uintptr_t last = 0x10000;
    last += 4;
    return last;
}

ATOM WindowTree::RegisterClass(const WNDCLASSW& record)
{
    if (record.lpszClassName == nullptr || *record.lpszClassName == L'\0' || record.lpfnWndProc == nullptr ||
        FindClass(record.lpszClassName) != nullptr) {
        return 0;
    }
    auto added = std::make_shared<WindowClass>();
    added->name = record.lpszClassName;
    added->atom = next_atom_++;
    added->record = record;
    added->record.lpszClassName = added->name.c_str();
    const ATOM atom = added->atom;
    classes_.emplace(added->name, std::move(added));
    return atom;
}

bool WindowTree::UnregisterClass(std::wstring_view name)
{
    const auto found = classes_.find(name);
    if (found == classes_.end())
        return false;
    const bool in_use = std::ranges::any_of(
        windows_, [&](const auto& entry) { return entry.second->window_class == found->second; });
    if (!in_use)
        classes_.erase(found);
    return !in_use;
}

std::shared_ptr<const WindowClass> WindowTree::FindClass(std::wstring_view name) const
{
    const auto found = classes_.find(name);
    return found != classes_.end() ? found->second : nullptr;
}

Window* WindowTree::Find(HWND window) const
{
    const auto found = windows_.find(window);
    return found != windows_.end() ? found->second.get() : nullptr;
}

HWND WindowTree::FindAdopted(std::uintptr_t native_id) const
{
    const auto found = std::ranges::find_if(windows_, [&](const auto& entry) {
        return entry.second->IsAdopted() && entry.second->native_id == native_id &&
               entry.second->stage == Stage::Alive;
    });
    return found != windows_.end() ? found->first : nullptr;
}

Window& WindowTree::Add(std::unique_ptr<Window> window)
{
    Window& added = *window;
    windows_.emplace(added.handle, std::move(window));
    if (Window* parent = Find(added.parent); parent != nullptr)
        parent->dependents.push_back(added.handle);
    return added;
}

void WindowTree::Remove(HWND window)
{
    const auto found = windows_.find(window);
    if (found == windows_.end())
        return;
    if (Window* parent = Find(found->second->parent); parent != nullptr)
        std::erase(parent->dependents, window);
    windows_.erase(found);
}

bool WindowTree::IsWithin(HWND window, HWND ancestor) const
{
    for (const Window* at = Find(window); at != nullptr; at = at->IsChild() ? Find(at->parent) : nullptr)
        if (at->handle == ancestor)
            return true;
    return false;
}

bool WindowTree::IsVisible(const Window& window) const
{
    for (const Window* at = &window; at != nullptr; at = at->IsChild() ? Find(at->parent) : nullptr)
        if (!at->IsShown())
            return false;
    return true;
}

POINT WindowTree::ScreenOrigin(const Window& window) const
{
    POINT origin{};
    for (const Window* at = &window; at != nullptr; at = at->IsChild() ? Find(at->parent) : nullptr) {
        origin.x += at->position.x;
        origin.y += at->position.y;
    }
    return origin;
}

bool WindowTree::WantsPaint(const Window& window) const
{
    return window.needs_paint && !window.IsAdopted() && window.size.cx > 0 && window.size.cy > 0 &&
           IsVisible(window);
}

HWND WindowTree::FindWindowToPaint(const std::function<bool(HWND)>& accepts) const
{
    const auto found = std::ranges::find_if(
        windows_, [&](const auto& entry) { return WantsPaint(*entry.second) && accepts(entry.first); });
    return found != windows_.end() ? found->first : nullptr;
}

} // namespace winsys::core
