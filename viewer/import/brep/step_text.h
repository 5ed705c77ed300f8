// The text of a STEP file, as entities with values. It checks no schema.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace viewer
{

using StepId = std::uint64_t; ///< the number behind '#'; 0 for none

/// Holds the whole text in memory, and the place of each entity.
class StepText
{
  public:
    /// A file that cannot be read has no entities.
    explicit StepText(const std::string& path);
    StepText(const StepText&) = delete;
    StepText& operator=(const StepText&) = delete;

    /// Entities of a simple type, in the order of the file.
    [[nodiscard]] std::vector<StepId> OfType(std::string_view type) const;
    /// Empty for unknown and for complex entities.
    [[nodiscard]] std::string_view TypeOf(StepId id) const;
    /// The values of an entity of a simple type; empty for others. The views live as long as this object.
    [[nodiscard]] std::vector<std::string_view> ValuesOf(StepId id) const;
    /// All behind the equals sign; empty for an unknown entity.
    [[nodiscard]] std::string_view WholeOf(StepId id) const;
    /// The length unit of the first context, in millimetres.
    [[nodiscard]] std::optional<double> FirstLengthUnit() const;

  private:
    std::string text_;
    std::unordered_map<StepId, std::string_view> entities_;
    std::vector<StepId> order_;
};

/// The length unit of a context of representations, in millimetres; absent if it is not understood.
[[nodiscard]] std::optional<double> LengthUnitOf(const StepText& text, StepId context);

/// The entity that the value refers to; 0 if it is no reference.
[[nodiscard]] StepId StepReference(std::string_view value);
/// All references in the value, also in nested lists.
[[nodiscard]] std::vector<StepId> StepReferences(std::string_view value);
/// All numbers in the value, also in nested lists.
[[nodiscard]] std::vector<double> StepNumbers(std::string_view value);
/// The numbers in each list of a list.
[[nodiscard]] std::vector<std::vector<double>> StepNumberLists(std::string_view value);
/// The characters between the quotes, not decoded; empty for other values.
[[nodiscard]] std::string StepString(std::string_view value);

/// Whether the file has one of these words, of at most 64 characters. Reads the file in blocks, up to the
/// word.
[[nodiscard]] bool FileHasOneOf(const std::string& path, std::span<const std::string_view> words);

} // namespace viewer
