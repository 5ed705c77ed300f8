#include "bench/allocation_meter.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace
{

std::atomic<bool> counting{false};
std::atomic<std::int64_t> live_bytes{0};
std::atomic<std::int64_t> peak_bytes{0};
std::atomic<std::int64_t> allocations{0};

void NoteAllocation(void* block)
{
    const auto size = static_cast<std::int64_t>(malloc_usable_size(block));
    const std::int64_t live = live_bytes.fetch_add(size, std::memory_order_relaxed) + size;
    allocations.fetch_add(1, std::memory_order_relaxed);
    // Not atomic as a whole. Other threads hardly allocate, so a lost peak does not matter.
    if (live > peak_bytes.load(std::memory_order_relaxed))
        peak_bytes.store(live, std::memory_order_relaxed);
}

void Release(void* block) noexcept
{
    if (block != nullptr && counting.load(std::memory_order_relaxed))
        live_bytes.fetch_sub(static_cast<std::int64_t>(malloc_usable_size(block)), std::memory_order_relaxed);
    std::free(block);
}

} // namespace

void* operator new(std::size_t size)
{
    void* const block = std::malloc(std::max<std::size_t>(size, 1));
    if (block == nullptr)
        throw std::bad_alloc();
    if (counting.load(std::memory_order_relaxed))
        NoteAllocation(block);
    return block;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void* block) noexcept
{
    Release(block);
}

void operator delete[](void* block) noexcept
{
    Release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    Release(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    Release(block);
}

namespace karv_bench
{

AllocationMeter::AllocationMeter()
{
    live_bytes = 0;
    peak_bytes = 0;
    allocations = 0;
    counting = true;
}

AllocationMeter::~AllocationMeter()
{
    counting = false;
}

std::int64_t AllocationMeter::PeakBytes() const
{
    return peak_bytes;
}

std::int64_t AllocationMeter::Allocations() const
{
    return allocations;
}

double HeapBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

} // namespace karv_bench
