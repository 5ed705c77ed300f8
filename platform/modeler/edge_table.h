// Directed edges between numbered points, each with a number of its own, found in constant time. One block of
// memory, because a body of a million faces has three million of them.
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
    /// For at most `room` edges.
    explicit EdgeTable(std::size_t room) : slots_(std::bit_ceil(room + room / 3 + 1)) {}

    /// Notes the edge with its value; where it is known already, returns its first value and changes nothing.
    std::optional<std::size_t> Add(int from, int to, std::size_t value)
    {
        Slot& slot = slots_[Place(KeyOf(from, to))];
        if (slot.value != kFree)
            return slot.value;
        slot = {KeyOf(from, to), value};
        return std::nullopt;
    }
    [[nodiscard]] std::optional<std::size_t> Find(int from, int to) const
    {
        const Slot& slot = slots_[Place(KeyOf(from, to))];
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

    /// The slot of the key, or the free one where it belongs. There always is one: a quarter of them stays
    /// free.
    [[nodiscard]] std::size_t Place(std::uint64_t key) const
    {
        // Neighbouring numbers must not end up in neighbouring slots, where they would make long runs.
        std::uint64_t hash = key;
        hash = (hash ^ (hash >> 30U)) * 0xBF58476D1CE4E5B9U;
        hash = (hash ^ (hash >> 27U)) * 0x94D049BB133111EBU;
        std::size_t place = static_cast<std::size_t>(hash ^ (hash >> 31U)) & (slots_.size() - 1);
        while (slots_[place].value != kFree && slots_[place].key != key)
            place = (place + 1) & (slots_.size() - 1);
        return place;
    }

    std::vector<Slot> slots_;
};

} // namespace AModeler
