#include "platform/tools/processor_faults.h"

#include "platform/tools/fault_search.h"
#include "platform/tools/trace.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>

namespace fault_search
{

namespace
{

constexpr std::size_t kMaxImages = 9; // karv_platform's own and eight more

/// Ranges are written before `image_count` covers them and never changed while it does.
std::array<ImageRange, kMaxImages> images;
std::atomic<std::size_t> image_count{0};
std::mutex switching;

/// The image of karv_platform, which comes first.
const ImageRange& OwnImage()
{
    return images.front();
}

bool HasRoomFor(const ImageRange& image, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        if (images.at(i) == image)
            return true;
    return count < kMaxImages;
}

void Add(const ImageRange& image)
{
    const std::size_t count = image_count.load(std::memory_order_relaxed);
    for (std::size_t i = 0; i < count; ++i)
        if (images.at(i) == image)
            return;
    images.at(count) = image;
    image_count.store(count + 1, std::memory_order_release);
}

/// Goes through a table of handlers from front to back.
class TableReader
{
  public:
    explicit TableReader(const unsigned char* place) : place_(place) {}

    [[nodiscard]] const unsigned char* Place() const { return place_; }
    unsigned char Byte() { return *place_++; }

    std::uintptr_t Unsigned()
    {
        std::uintptr_t value = 0;
        unsigned shift = 0;
        unsigned char byte = 0;
        do {
            byte = Byte();
            value |= static_cast<std::uintptr_t>(byte & 0x7FU) << shift;
            shift += 7;
        } while ((byte & 0x80U) != 0 && shift < 64);
        return value;
    }

  private:
    const unsigned char* place_;
};

// The one form in which this compiler writes tables for shared libraries; others are not understood.
constexpr unsigned char kOmitted = 0xFF;
constexpr unsigned char kUnsignedVariable = 0x01;

/// Whether an exception may come out of the function's call: the table lists all calls that may throw, and
/// one that it does not list ends the process. What handlers there are does not matter: those outside guards
/// are the standard library's, and throw on.
bool MayThrow(const Frame& frame)
{
    if (frame.table == nullptr)
        return true;
    TableReader reader(frame.table);
    if (reader.Byte() != kOmitted)
        return false;
    if (reader.Byte() != kOmitted)
        static_cast<void>(reader.Unsigned());
    if (reader.Byte() != kUnsignedVariable)
        return false;
    const std::uintptr_t length = reader.Unsigned();
    const unsigned char* const calls_end = reader.Place() + length;
    while (reader.Place() < calls_end) {
        const std::uintptr_t begin = frame.function + reader.Unsigned();
        const std::uintptr_t end = begin + reader.Unsigned();
        static_cast<void>(reader.Unsigned());
        static_cast<void>(reader.Unsigned());
        if (frame.call >= begin && frame.call < end)
            return true;
    }
    return false;
}

} // namespace

bool IsInCaughtImage(std::uintptr_t address) noexcept
{
    const std::size_t count = image_count.load(std::memory_order_acquire);
    for (std::size_t i = 0; i < count; ++i)
        if (images[i].Contains(address))
            return true;
    return false;
}

bool RunBody(void (*body)(void*), void* argument)
{
    body(argument);
    // Something is left to do, so that the call above is one and no jump.
    return true;
}

Search::Step Search::After(const Frame& frame) noexcept
{
    if (!IsInCaughtImage(frame.call))
        return Step::Stop;
    const bool may_throw = MayThrow(frame);
    if (is_guard_next_) {
        has_found_guard_ = may_throw;
        return Step::Stop;
    }
    is_guard_next_ = frame.function == reinterpret_cast<std::uintptr_t>(&RunBody);
    // Where the function called is known to need no aligned stack, the compiler leaves it as it is. Such a
    // caller destroys nothing.
    constexpr std::uintptr_t kAlignment = 16;
    if (may_throw && is_to_throw_ && frame.stack % kAlignment != 0)
        return Step::LeaveToo;
    is_to_throw_ = !may_throw;
    if (may_throw)
        return Step::GoOn;
    // Functions of karv_platform may hold locks of the whole process, which nobody would give back.
    return OwnImage().Contains(frame.call) ? Step::Stop : Step::LeaveToo;
}

void ThrowProcessorFault()
{
    // Of a type that no handler names: what catches everything catches it.
    struct ProcessorFault {
    };
    throw ProcessorFault{};
}

} // namespace fault_search

bool CatchProcessorFaults(const void* address) noexcept
{
    using namespace fault_search;
    if (address == nullptr)
        return false;
    const auto image = ImageAt(address);
    const auto own = ImageAt(reinterpret_cast<const void*>(&ThrowProcessorFault));
    if (!image.has_value() || !own.has_value())
        return false;
    const std::lock_guard lock(switching);
    const std::size_t count = image_count.load(std::memory_order_relaxed);
    if (!HasRoomFor(*image, count) || (count == 0 && !InstallHandler()))
        return false;
    Add(*own);
    Add(*image);
    trace_detail::WatchEveryCall(true);
    return true;
}

void LetProcessorFaultsPass() noexcept
{
    using namespace fault_search;
    const std::lock_guard lock(switching);
    if (image_count.exchange(0) == 0)
        return;
    trace_detail::WatchEveryCall(false);
    RemoveHandler();
}
