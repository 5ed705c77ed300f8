#include "platform/host/ge/geometry.h"

namespace
{

/// Writes the linear part whose columns are these vectors.
void SetColumns(AcGeMatrix3d& matrix, const AcGeVector3d& first, const AcGeVector3d& second,
                const AcGeVector3d& third) noexcept
{
    const AcGeVector3d* const columns[] = {&first, &second, &third};
    for (int column = 0; column < 3; ++column) {
        matrix.entry[0][column] = columns[column]->x;
        matrix.entry[1][column] = columns[column]->y;
        matrix.entry[2][column] = columns[column]->z;
    }
}

void SetTranslation(AcGeMatrix3d& matrix, const AcGeVector3d& offset) noexcept
{
    matrix.entry[0][3] = offset.x;
    matrix.entry[1][3] = offset.y;
    matrix.entry[2][3] = offset.z;
}

/// Sets the translation so that the matrix, whose linear part is set already, maps `from` to `to`.
void SetFixedPoint(AcGeMatrix3d& matrix, const AcGePoint3d& from, const AcGePoint3d& to) noexcept
{
    AcGeVector3d moved = from.asVector();
    SetTranslation(matrix, to.asVector() - moved.transformBy(matrix));
}

double RowTimes(const double (&row)[4], double x, double y, double z) noexcept
{
    return (row[0] * x + row[1] * y) + row[2] * z;
}

} // namespace

AcGeTol AcGeContext::gTol;

double AcGeVector3d::angleTo(const AcGeVector3d& other) const noexcept
{
    const double sine = crossProduct(other).length();
    const double cosine = dotProduct(other);
    // atan2(0, -0.0) is pi: a negative zero would become half a turn.
    return sine == 0.0 && cosine == 0.0 ? 0.0 : std::atan2(sine, cosine);
}

AcGeVector3d AcGeVector3d::normal(const AcGeTol& tol) const noexcept
{
    return isZeroLength(tol) ? *this : *this / length();
}

bool AcGeVector3d::isParallelTo(const AcGeVector3d& other, const AcGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || other.isZeroLength(tol))
        return true;
    return isCodirectionalTo(other, tol) || isCodirectionalTo(-other, tol);
}

bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& other, const AcGeTol& tol) const noexcept
{
    if (isZeroLength(tol) || other.isZeroLength(tol))
        return false;
    return normal(tol).isEqualTo(other.normal(tol), tol);
}

AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& matrix) noexcept
{
    return set(RowTimes(matrix.entry[0], x, y, z), RowTimes(matrix.entry[1], x, y, z),
               RowTimes(matrix.entry[2], x, y, z));
}

AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& matrix) noexcept
{
    return set(RowTimes(matrix.entry[0], x, y, z) + matrix.entry[0][3],
               RowTimes(matrix.entry[1], x, y, z) + matrix.entry[1][3],
               RowTimes(matrix.entry[2], x, y, z) + matrix.entry[2][3]);
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double angle, const AcGeVector3d& axis,
                                          const AcGePoint3d& center) noexcept
{
    setToIdentity();
    if (axis.isZeroLength())
        return *this;
    const AcGeVector3d unit = axis.normal();
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    // Each column is a rotated world axis: its part along the unit axis stays, the rest rotates.
    const auto turned = [&](const AcGeVector3d& world_axis) {
        const AcGeVector3d along = unit * (unit.dotProduct(world_axis) * (1.0 - cosine));
        return (along + world_axis * cosine) + unit.crossProduct(world_axis) * sine;
    };
    SetColumns(*this, turned(AcGeVector3d::kXAxis), turned(AcGeVector3d::kYAxis),
               turned(AcGeVector3d::kZAxis));
    SetFixedPoint(*this, center, center);
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToTranslation(const AcGeVector3d& offset) noexcept
{
    setToIdentity();
    SetTranslation(*this, offset);
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToAlignCoordSys(const AcGePoint3d& from_origin, const AcGeVector3d& from_x,
                                               const AcGeVector3d& from_y, const AcGeVector3d& from_z,
                                               const AcGePoint3d& to_origin, const AcGeVector3d& to_x,
                                               const AcGeVector3d& to_y, const AcGeVector3d& to_z) noexcept
{
    // The cross products divided by the volume are the rows of the first frame's inverse. They give the
    // coordinates of a world axis in that frame; the same coordinates in the second frame are its image.
    const AcGeVector3d inverse_x = from_y.crossProduct(from_z);
    const AcGeVector3d inverse_y = from_z.crossProduct(from_x);
    const AcGeVector3d inverse_z = from_x.crossProduct(from_y);
    const double volume = from_x.dotProduct(inverse_x);
    const auto image_of = [&](double along_x, double along_y, double along_z) {
        return ((to_x * along_x + to_y * along_y) + to_z * along_z) / volume;
    };
    setToIdentity();
    SetColumns(*this, image_of(inverse_x.x, inverse_y.x, inverse_z.x),
               image_of(inverse_x.y, inverse_y.y, inverse_z.y),
               image_of(inverse_x.z, inverse_y.z, inverse_z.z));
    SetFixedPoint(*this, from_origin, to_origin);
    return *this;
}

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& other) const noexcept
{
    AcGeMatrix3d product;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = entry[row][0] * other.entry[0][column];
            for (int inner = 1; inner < 4; ++inner)
                sum += entry[row][inner] * other.entry[inner][column];
            product.entry[row][column] = sum;
        }
    }
    return product;
}
