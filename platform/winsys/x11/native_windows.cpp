#include "platform/winsys/x11/native_windows.h"

#include <algorithm>
#include <utility>

namespace winsys::x11
{

NativeRecord& NativeWindows::Add(const NativeRecord& record)
{
    return records_.insert_or_assign(record.handle, record).first->second;
}

void NativeWindows::Remove(HWND window)
{
    records_.erase(window);
}

NativeRecord* NativeWindows::Find(HWND window)
{
    const auto found = records_.find(window);
    return found != records_.end() ? &found->second : nullptr;
}

const NativeRecord* NativeWindows::FindById(::Window id) const
{
    const auto found = std::ranges::find_if(records_, [id](const auto& entry) {
        const NativeRecord& record = entry.second;
        return record.outer == id || (record.surface.window != 0 && record.surface.window == id);
    });
    return found != records_.end() ? &found->second : nullptr;
}

NativeRecord* NativeWindows::FindById(::Window id)
{
    const NativeRecord* record = std::as_const(*this).FindById(id);
    return record != nullptr ? Find(record->handle) : nullptr;
}

bool NativeWindows::IsWithin(const NativeRecord& record, HWND ancestor) const
{
    auto at = records_.find(record.handle);
    while (at != records_.end() && at->first != ancestor)
        at = records_.find(at->second.parent);
    return at != records_.end();
}

NativeRecord& NativeWindows::TopOf(NativeRecord& record)
{
    NativeRecord* top = &record;
    for (NativeRecord* parent = Find(top->parent); parent != nullptr; parent = Find(top->parent))
        top = parent;
    return *top;
}

POINT NativeWindows::OffsetInTop(const NativeRecord& record)
{
    POINT offset{};
    for (const NativeRecord* at = &record; at != nullptr && !at->IsTopLevel(); at = Find(at->parent)) {
        offset.x += at->position.x;
        offset.y += at->position.y;
    }
    return offset;
}

} // namespace winsys::x11
