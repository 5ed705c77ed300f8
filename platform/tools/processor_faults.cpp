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

constexpr std::size_t kMaxImages = 9; // karv_platform and eight more

/// A range is written before `image_count` includes it, and does not change while it is included.
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

/// Reads a function's table of exception handlers from front to back.
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

// The only form in which the compiler writes these tables for shared libraries. Others are not understood.
constexpr unsigned char kOmitted = 0xFF;
constexpr unsigned char kUnsignedVariable = 0x01;

/// Whether an exception may pass the function's call. The table lists all calls that may throw; an
/// exception from another call ends the process. The handlers themselves do not matter: outside guards only
/// the standard library has handlers, and they rethrow.
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
    // The result keeps the compiler from turning the call above into a jump.
    return true;
}

Search::Step Search::Examine(const Frame& frame) noexcept
{
    if (!IsInCaughtImage(frame.call))
        return Step::Stop;
    const bool may_throw = MayThrow(frame);
    if (is_guard_next_) {
        has_found_guard_ = may_throw;
        return Step::Stop;
    }
    is_guard_next_ = frame.function == reinterpret_cast<std::uintptr_t>(&RunBody);
    // The compiler does not align the stack for a call of a function that is known not to need it. A
    // function that makes such a call has no objects to destroy.
    constexpr std::uintptr_t kAlignment = 16;
    if (may_throw && is_throwing_call_next_ && frame.stack % kAlignment != 0)
        return Step::SkipCall;
    is_throwing_call_next_ = !may_throw;
    if (may_throw)
        return Step::Continue;
    // Functions of karv_platform may hold locks of the process, which would stay locked.
    return OwnImage().Contains(frame.call) ? Step::Stop : Step::SkipCall;
}

void ThrowProcessorFault()
{
    // Only `catch (...)` catches a type that no other function can name.
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

void StopCatchingProcessorFaults() noexcept
{
    using namespace fault_search;
    const std::lock_guard lock(switching);
    if (image_count.exchange(0) == 0)
        return;
    trace_detail::WatchEveryCall(false);
    RemoveHandler();
}
