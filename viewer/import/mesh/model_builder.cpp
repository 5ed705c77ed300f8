#include "viewer/import/mesh/model_builder.h"

#include "platform/host/cm/color.h"
#include "viewer/import/damaged_file.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace viewer
{

namespace
{

unsigned char ToChannel(float value)
{
    return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255.0F));
}

/// The number of steps between transparent and opaque.
constexpr float kOpacitySteps = 16.0F;

unsigned int OpacityStep(float alpha)
{
    return static_cast<unsigned int>(std::lround(std::clamp(alpha, 0.0F, 1.0F) * kOpacitySteps));
}

/// Whether all corners lie on one line, up to rounding.
bool LiesOnOneLine(const std::vector<Point>& corners)
{
    Point farthest;
    for (const Point& corner : corners)
        if (Length(corner - corners.front()) > Length(farthest))
            farthest = corner - corners.front();
    const double reach = Length(farthest);
    if (reach == 0.0)
        return true;
    const Point direction = farthest * (1.0 / reach);
    constexpr double kSameLine = 1e-9;
    return std::ranges::all_of(corners, [&](const Point& corner) {
        return Length(Cross((corner - corners.front()) * (1.0 / reach), direction)) <= kSameLine;
    });
}

void NumberCategories(Model& model, std::span<const std::string> names)
{
    std::map<int, int> numbers;
    for (const Piece& piece : model.pieces)
        numbers[piece.category] = 0;
    int next = 0;
    for (auto& [category, number] : numbers) {
        number = next++;
        const auto index = static_cast<std::size_t>(category);
        model.category_names.push_back(index < names.size() ? names[index] : "");
    }
    for (Piece& piece : model.pieces)
        piece.category = numbers.at(piece.category);
}

} // namespace

bool FileColor::IsFinite() const
{
    return std::isfinite(red) && std::isfinite(green) && std::isfinite(blue) && std::isfinite(alpha);
}

FileColor operator*(const FileColor& a, const FileColor& b)
{
    return {a.red * b.red, a.green * b.green, a.blue * b.blue, a.alpha * b.alpha};
}

void ColorMean::Add(const FileColor& color)
{
    sum_ = {sum_.red + color.red, sum_.green + color.green, sum_.blue + color.blue, sum_.alpha + color.alpha};
    count_ += 1.0F;
}

FileColor ColorMean::Mean() const
{
    if (count_ == 0.0F)
        return {};
    const float share = 1.0F / count_;
    return sum_ * FileColor{share, share, share, share};
}

void ModelBuilder::BeginMesh(Piece pattern, std::size_t face_count)
{
    pattern_ = std::move(pattern);
    face_count_ = face_count;
    pieces_.clear();
    last_color_.reset();
}

void ModelBuilder::AddFace(std::vector<Point> corners, const FileColor& color)
{
    if (!std::ranges::all_of(corners, IsFinite)) {
        ++not_finite_;
        return;
    }
    // Three corners without area always lie on one line.
    const std::vector<Point> polygon = corners.size() > 3 ? corners : std::vector<Point>{};
    if (auto face = MakeFace(std::move(corners)))
        PieceOf(color).faces.push_back(std::move(*face));
    else if (!polygon.empty() && !LiesOnOneLine(polygon))
        ++without_area_;
}

void ModelBuilder::AddLine(const Point& from, const Point& to, const FileColor& color)
{
    if (!IsFinite(from) || !IsFinite(to)) {
        ++not_finite_;
        return;
    }
    if (from != to)
        PieceOf(color).lines.push_back({from, to});
}

void ModelBuilder::AddPoint(const Point& point, const FileColor& color)
{
    if (!IsFinite(point))
        ++not_finite_;
    else if (points_.size() >= kMaxPoints)
        ++points_left_out_;
    else
        points_.push_back({IndexOf(color), point});
}

void ModelBuilder::AddPart(std::vector<Point> corners, const FileColor& color)
{
    if (corners.size() == 1)
        AddPoint(corners[0], color);
    else if (corners.size() == 2)
        AddLine(corners[0], corners[1], color);
    else if (!corners.empty())
        AddFace(std::move(corners), color);
}

Piece& ModelBuilder::PieceOf(const FileColor& color)
{
    return model_.pieces[IndexOf(color)];
}

std::size_t ModelBuilder::IndexOf(const FileColor& color)
{
    // Most meshes have one colour.
    if (last_color_ == color)
        return last_piece_;
    const unsigned char index = PaletteIndexOf(color);
    const unsigned int step = OpacityStep(color.alpha);
    const auto [found, is_new] = pieces_.try_emplace(step << 8U | index, model_.pieces.size());
    if (is_new) {
        Piece& piece = model_.pieces.emplace_back(pattern_);
        piece.color = index;
        piece.alpha = pattern_.alpha * static_cast<float>(step) / kOpacitySteps;
        if (pieces_.size() == 1)
            piece.faces.reserve(face_count_);
    }
    last_color_ = color;
    last_piece_ = found->second;
    return last_piece_;
}

unsigned char ModelBuilder::PaletteIndexOf(const FileColor& color)
{
    const FileColor shown = color.IsFinite() ? color : FileColor{};
    const unsigned char red = ToChannel(shown.red);
    const unsigned char green = ToChannel(shown.green);
    const unsigned char blue = ToChannel(shown.blue);
    constexpr std::uint32_t kUsed = 1U << 24U;
    const std::uint32_t key = kUsed | static_cast<std::uint32_t>(red) << 16U |
                              static_cast<std::uint32_t>(green) << 8U | static_cast<std::uint32_t>(blue);
    constexpr std::uint32_t kSpread = 2'654'435'761U;
    CachedIndex& cached = cache_.at((key * kSpread) >> 20U);
    if (cached.color != key)
        cached = {key, NearestColorIndex(red, green, blue)};
    return cached.index;
}

void ModelBuilder::DrawPoints()
{
    Box box = model_.Extents();
    for (const PointMark& mark : points_)
        box.Add(mark.point);
    for (const auto& [index, point] : points_) {
        const double diagonal = box.Diagonal();
        // A single point has no size to compare with. Its mark must not be lost to rounding, far from the
        // origin.
        const double single = std::max(1.0, Length(point) * kPointMark);
        AppendPointMark(point, diagonal > 0.0 ? diagonal * kPointMark : single, model_.pieces[index].lines);
    }
    points_.clear();
}

Model ModelBuilder::Finish(const std::string& path, std::span<const std::string> category_names)
{
    DrawPoints();
    if (model_.pieces.empty() && not_finite_ > 0)
        throw FileError(path, "holds coordinates that are not finite");
    if (model_.pieces.empty() && damaged_ > 0)
        ThrowDamaged(path, "its faces refer to vertices that are not there");
    if (model_.pieces.empty())
        throw FileError(path, "holds no faces, lines or points");
    model_.LeaveOut("part that refers to a missing vertex", damaged_);
    model_.LeaveOut("part with coordinates that are not finite", not_finite_);
    model_.LeaveOut("face without area", without_area_);
    model_.LeaveOut("point", points_left_out_);
    NumberCategories(model_, category_names);
    return std::move(model_);
}

} // namespace viewer
