#include "tests/support/allocation_count.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace
{

thread_local bool counting = false;
thread_local std::size_t allocations = 0;
thread_local std::size_t bytes = 0;
constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
thread_local std::size_t refused_from = kNone;

} // namespace

/// Every form except the aligned ones is defined here, because a sanitizer's own operators cannot free blocks
/// from these.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    if (counting) {
        ++allocations;
        bytes += size;
    }
    if (size >= refused_from)
        return nullptr;
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size)
{
    void* const block = operator new(size, std::nothrow);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept
{
    return operator new(size, tag);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

void operator delete[](void* block) noexcept
{
    std::free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept
{
    std::free(block);
}

void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept
{
    std::free(block);
}

namespace karv_test
{

AllocationCount::AllocationCount()
{
    allocations = 0;
    bytes = 0;
    counting = true;
}

AllocationCount::~AllocationCount()
{
    counting = false;
}

std::size_t AllocationCount::Allocations() const
{
    return allocations;
}

std::size_t AllocationCount::Bytes() const
{
    return bytes;
}

AllocationRefusal::AllocationRefusal(std::size_t from_bytes)
{
    refused_from = from_bytes;
}

AllocationRefusal::~AllocationRefusal()
{
    refused_from = kNone;
}

} // namespace karv_test
