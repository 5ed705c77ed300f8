#include "viewer/scene/shared_corners.h"

#include <algorithm>
#include <bit>

namespace viewer
{

std::size_t PointHash::operator()(const Point& point) const
{
    std::uint64_t hash = 0;
    for (const double coordinate : {point.x, point.y, point.z}) {
        const auto bits = std::bit_cast<std::uint64_t>(coordinate == 0.0 ? 0.0 : coordinate);
        constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15U;
        hash = (std::rotl(hash, 23) ^ bits) * kGoldenRatio;
    }
    return static_cast<std::size_t>(hash ^ (hash >> 32U));
}

int PointNumbers::NumberOf(const Point& point)
{
    const auto [entry, is_new] = numbers_.emplace(point, static_cast<int>(points_.size()));
    if (is_new)
        points_.push_back(point);
    return entry->second;
}

int PointNumbers::Find(const Point& point) const
{
    const auto known = numbers_.find(point);
    return known != numbers_.end() ? known->second : -1;
}

SharedCorners::SharedCorners(const Piece& piece)
{
    ends_.reserve(piece.faces.size() + 1);
    ends_.push_back(0);
    corners_.reserve(3 * piece.faces.size());
    for (const ModelFace& face : piece.faces) {
        for (const Point& corner : face.corners)
            corners_.push_back(numbers_.NumberOf(corner));
        ends_.push_back(corners_.size());
    }
}

std::uint64_t EdgeKey(int a, int b)
{
    const auto [low, high] = std::minmax(a, b);
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(low)) << 32U |
           static_cast<std::uint32_t>(high);
}

} // namespace viewer
