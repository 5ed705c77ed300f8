// A map from directed edges between numbered points to a number for each, with look-up in constant time.
// All of it is one block of memory, because a body of a million faces has three million edges.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace AModeler
{

/// A hash table with open addressing that does not grow.
class EdgeTable
{
  public:
    /// A table for at most `max_edges` edges.
    explicit EdgeTable(std::size_t max_edges) : slots_(std::bit_ceil(max_edges + max_edges / 3 + 1)) {}

    /// Adds the edge with its value. Where the table has the edge, returns its present value and changes
    /// nothing.
    std::optional<std::size_t> Add(int from, int to, std::size_t value)
    {
        Slot& slot = slots_[FindSlot(KeyOf(from, to))];
        if (slot.value != kFree)
            return slot.value;
        slot = {KeyOf(from, to), value};
        return std::nullopt;
    }
    /// The edge's value; none where the table does not have it.
    [[nodiscard]] std::optional<std::size_t> Find(int from, int to) const
    {
        const Slot& slot = slots_[FindSlot(KeyOf(from, to))];
        return slot.value != kFree ? std::optional(slot.value) : std::nullopt;
    }

  private:
    static constexpr std::size_t kFree = static_cast<std::size_t>(-1);
    struct Slot {
        std::uint64_t key = 0;
        std::size_t value = kFree;
    };

    static std::uint64_t KeyOf(int from, int to)
    {
        return static_cast<std::uint64_t>(static_cast<std::uint32_t>(from)) << 32U |
               static_cast<std::uint32_t>(to);
    }

    /// The slot of the key, or the free slot where it belongs. The search ends because a quarter of the
    /// slots stays free.
    [[nodiscard]] std::size_t FindSlot(std::uint64_t key) const
    {
        // Mixes the bits: neighbouring numbers in neighbouring slots would make long runs to search.
        std::uint64_t hash = key;
        hash = (hash ^ (hash >> 30U)) * 0xBF58476D1CE4E5B9U;
        hash = (hash ^ (hash >> 27U)) * 0x94D049BB133111EBU;
        std::size_t slot = static_cast<std::size_t>(hash ^ (hash >> 31U)) & (slots_.size() - 1);
        while (slots_[slot].value != kFree && slots_[slot].key != key)
            slot = (slot + 1) & (slots_.size() - 1);
        return slot;
    }

    std::vector<Slot> slots_;
};

} // namespace AModeler
