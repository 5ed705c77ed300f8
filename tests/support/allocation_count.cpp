#include "tests/support/allocation_count.h"

#include <cstdlib>
#include <new>

namespace
{

thread_local bool counting = false;
thread_local std::size_t allocations = 0;
thread_local std::size_t bytes = 0;

} // namespace

// All forms but the aligned ones stand here: a sanitizer's own would not know the blocks of ours.

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    if (counting) {
        ++allocations;
        bytes += size;
    }
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

} // namespace karv_test
