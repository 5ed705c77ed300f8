// An entity, a table entry or the header of a drawing as its groups, for the kinds that the parsing library
// does not report in full. Numbers are parsed where they are used.
#pragma once

#include "viewer/import/dxf/group_reader.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace viewer
{

/// A value of an entity is not a number, or not finite.
class DxfValueError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Groups in the order of the file, without extended data. Lookups take the first group with the code.
class DxfGroups
{
  public:
    DxfGroups() = default;
    explicit DxfGroups(std::vector<DxfGroup> groups) : groups_(std::move(groups)) {}

    void Add(const DxfGroup& group) { groups_.push_back(group); }
    [[nodiscard]] const std::vector<DxfGroup>& All() const { return groups_; }
    [[nodiscard]] bool IsEmpty() const { return groups_.empty(); }
    [[nodiscard]] const DxfGroup* Find(int code) const;
    /// The value as it is in the file; empty without the group.
    [[nodiscard]] std::string Text(int code) const;
    /// Throw DxfValueError if the value is no finite number, or no whole one.
    [[nodiscard]] double Real(int code, double otherwise = 0.0) const;
    [[nodiscard]] int Integer(int code, int otherwise = 0) const;
    /// The point whose x coordinate has this code. The codes of y and z are higher by 10 and 20; a missing
    /// coordinate is 0. Throws DxfValueError.
    [[nodiscard]] std::optional<Point> PointAt(int code) const;
    /// All points with this code, in order. Throws DxfValueError.
    [[nodiscard]] std::vector<Point> PointsAt(int code) const;
    /// The point whose x coordinate is the group with this index. Throws DxfValueError.
    [[nodiscard]] Point PointFrom(std::size_t index) const;
    /// The frame of the extrusion direction, group 210. Throws DxfValueError.
    [[nodiscard]] Affine Frame() const;

  private:
    std::vector<DxfGroup> groups_;
};

/// The value of a group. Throw DxfValueError.
[[nodiscard]] double RealOf(const DxfGroup& group);
[[nodiscard]] int IntegerOf(const DxfGroup& group);

struct DxfRawEntity {
    std::string kind; ///< "HEADER" for the header
    std::size_t line = 0;
    std::optional<std::string> block; ///< the name of the block that contains it
    std::string layer = "0";
    DxfGroups groups;   ///< empty for kinds of which only the number is of interest
    DxfGroups embedded; ///< of its embedded object

    /// The colour of its groups: a palette index, `kColorByLayer` or `kColorByBlock`.
    [[nodiscard]] int Color() const;
};

} // namespace viewer
