// An independent model of entities and boxes: construction from faces, solids and host lines, growth of
// boxes, drawing. It uses the host's palette. Tessellation itself is GLU's; only the calls around it are
// modelled.
#pragma once

#include "platform/modeler/body.h"
#include "tests/control/model/model_gl.h"

#include <cstdint>
#include <deque>
#include <vector>

namespace karv_model
{

/// Three floats: a point, a direction or a colour.
struct Triple {
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
};

/// Three doubles.
struct WideTriple {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

[[nodiscard]] Triple Narrowed(const WideTriple& wide);
/// Grows the box to include the point.
void GrowBox(const Triple& point, Triple& low, Triple& high);

struct ModelFace {
    std::vector<Triple> corners;
    Triple normal;
    std::uint32_t list = 0;
};

/// The names that the driver gave to new display lists, in order. Empty where no context was current.
using ListNames = std::deque<std::uint32_t>;

struct ModelEntity {
    std::vector<ModelFace> faces;
    std::vector<Triple> line_vertices;
    std::int32_t type = 0;
    Triple color;
    float alpha = 1.0F;
    Triple low;
    Triple high;
    bool box_valid = false;

    [[nodiscard]] static ModelEntity FromFaces(GlStream& gl, ListNames& lists, std::vector<ModelFace> faces,
                                               std::int32_t type, unsigned short color_index);
    [[nodiscard]] static ModelEntity FromLine(const WideTriple& start, const WideTriple& end,
                                              std::int32_t type, unsigned short color_index);
    /// From a solid, read through the modeler.
    [[nodiscard]] static ModelEntity FromBody(AModeler::Body& body, std::int32_t type,
                                              unsigned short color_index);
    /// From a host entity that is not a line.
    [[nodiscard]] static ModelEntity FromOther(std::int32_t type, unsigned short color_index);
    void SetColor(unsigned short color_index);

    void DrawQuads(GlStream& gl) const;
    void DrawLines(GlStream& gl) const;
};

} // namespace karv_model
