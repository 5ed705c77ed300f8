// The host's database entities, with the data that a viewer reads: the colour index, and the ends of a
// line. Lengths are in model units. Any thread, one at a time for each object.
#pragma once

#include "platform/host/ge/geometry.h"
#include "platform/host/rx/object.h"

#include <cstdint>

namespace Adesk
{
using UInt8 = std::uint8_t;
using UInt16 = std::uint16_t;
using UInt32 = std::uint32_t;
} // namespace Adesk

/// A drawable object of the database.
class KARV_PLATFORM_API AcDbEntity : public AcRxObject
{
  public:
    [[nodiscard]] static AcRxClass* desc();
    [[nodiscard]] AcRxClass* isA() const override;

    /// The entity's colour index (platform/host/cm/color.h). A new entity has 256, by layer.
    [[nodiscard]] Adesk::UInt16 colorIndex() const noexcept { return color_index_; }
    void setColorIndex(Adesk::UInt16 index) noexcept { color_index_ = index; }

  private:
    Adesk::UInt16 color_index_ = 256;
};

/// The base of curves.
class KARV_PLATFORM_API AcDbCurve : public AcDbEntity
{
  public:
    [[nodiscard]] static AcRxClass* desc();
    [[nodiscard]] AcRxClass* isA() const override;
};

/// A straight segment.
class KARV_PLATFORM_API AcDbLine : public AcDbCurve
{
  public:
    AcDbLine() = default;
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : start_(start), end_(end) {}

    [[nodiscard]] static AcRxClass* desc();
    [[nodiscard]] AcRxClass* isA() const override;

    [[nodiscard]] AcGePoint3d startPoint() const { return start_; }
    [[nodiscard]] AcGePoint3d endPoint() const { return end_; }
    void setStartPoint(const AcGePoint3d& point) { start_ = point; }
    void setEndPoint(const AcGePoint3d& point) { end_ = point; }

  private:
    AcGePoint3d start_;
    AcGePoint3d end_;
};

/// A circle.
class KARV_PLATFORM_API AcDbCircle : public AcDbCurve
{
  public:
    AcDbCircle() = default;
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
        : center_(center), normal_(normal), radius_(radius)
    {
    }

    [[nodiscard]] static AcRxClass* desc();
    [[nodiscard]] AcRxClass* isA() const override;

    [[nodiscard]] AcGePoint3d center() const { return center_; }
    [[nodiscard]] AcGeVector3d normal() const { return normal_; }
    [[nodiscard]] double radius() const { return radius_; }

  private:
    AcGePoint3d center_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double radius_ = 0.0;
};
