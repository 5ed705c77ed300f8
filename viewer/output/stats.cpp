#include "viewer/output/stats.h"

#include <nlohmann/json.hpp>

namespace viewer
{

namespace
{

nlohmann::ordered_json ToJson(const Point& point)
{
    return {point.x, point.y, point.z};
}

} // namespace

std::string ToJson(const Stats& stats)
{
    nlohmann::ordered_json json;
    json["files"] = stats.files;
    json["entities"] = stats.entities;
    json["faces"] = stats.faces;
    json["left_out"] = nlohmann::ordered_json::object();
    for (const LeftOut& parts : stats.left_out)
        json["left_out"][parts.kind] = parts.count;
    json["extents"]["min"] = ToJson(stats.extents.min);
    json["extents"]["max"] = ToJson(stats.extents.max);
    json["load_s"] = stats.load_s;
    json["first_frame_s"] = stats.first_frame_s;
    json["fps"] = stats.fps;
    json["renderer"] = stats.renderer;
    // Names of drivers may be invalid UTF-8.
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace viewer
