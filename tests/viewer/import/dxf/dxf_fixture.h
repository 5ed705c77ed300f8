// Shared by tests of drawings: DXF files from a line of words, and the models read from them.
#pragma once

#include "tests/viewer/test_support.h"
#include "viewer/import/dxf/dxf_import.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <string>
#include <vector>

namespace viewer
{

/// The words, one on each line, as codes and values are in a DXF file.
inline std::string Lines(std::string words)
{
    std::replace(words.begin(), words.end(), ' ', '\n');
    return words.empty() ? words : words + '\n';
}

/// A drawing with these entities. `blocks` and `layers` are the contents of their sections. Words have no
/// blanks.
inline std::string Drawing(const std::string& entities, const std::string& blocks = {},
                           const std::string& layers = {})
{
    std::string text;
    if (!layers.empty())
        text += Lines("0 SECTION 2 TABLES 0 TABLE 2 LAYER 70 9") + Lines(layers) + Lines("0 ENDTAB 0 ENDSEC");
    if (!blocks.empty())
        text += Lines("0 SECTION 2 BLOCKS") + Lines(blocks) + Lines("0 ENDSEC");
    return text + Lines("0 SECTION 2 ENTITIES") + Lines(entities) + Lines("0 ENDSEC 0 EOF");
}

class DxfTest : public ViewerTest
{
  protected:
    static constexpr double kTolerance = 0.01;

    [[nodiscard]] Model ImportText(const std::string& text) const
    {
        return ImportDxf(Write("drawing.dxf", text), {.deflection = kTolerance});
    }
    [[nodiscard]] Model Import(const std::string& entities, const std::string& blocks = {},
                               const std::string& layers = {}) const
    {
        return ImportText(Drawing(entities, blocks, layers));
    }
    /// The error's text when the drawing is read, without the file's name.
    [[nodiscard]] std::string ErrorOf(const std::string& text) const
    {
        try {
            static_cast<void>(ImportText(text));
        } catch (const FileError& error) {
            const std::string message = error.what();
            const std::string prefix = PathOf("drawing.dxf") + ": ";
            return message.starts_with(prefix) ? message.substr(prefix.size())
                                               : "not of the file: " + message;
        }
        return "read without an error";
    }
    /// The lines of the only piece.
    [[nodiscard]] std::vector<Segment> LinesOf(const std::string& entities,
                                               const std::string& blocks = {}) const
    {
        const Model model = Import(entities, blocks);
        EXPECT_EQ(model.pieces.size(), 1U);
        return model.pieces.at(0).lines;
    }
    /// The faces of the only piece.
    [[nodiscard]] std::vector<ModelFace> FacesOf(const std::string& entities,
                                                 const std::string& blocks = {}) const
    {
        const Model model = Import(entities, blocks);
        EXPECT_EQ(model.pieces.size(), 1U);
        return model.pieces.at(0).faces;
    }

    static double AreaOf(const ModelFace& face)
    {
        Point sum;
        for (std::size_t i = 1; i + 1 < face.corners.size(); ++i)
            sum =
                sum + viewer::Cross(face.corners[i] - face.corners[0], face.corners[i + 1] - face.corners[0]);
        return Length(sum) / 2;
    }
    static double AreaOf(const std::vector<ModelFace>& faces)
    {
        double area = 0.0;
        for (const ModelFace& face : faces)
            area += AreaOf(face);
        return area;
    }

    static void ExpectNear(const Point& actual, const Point& expected, double tolerance = 1e-9)
    {
        EXPECT_LE(Length(actual - expected), tolerance)
            << actual.x << ' ' << actual.y << ' ' << actual.z << " instead of " << expected.x << ' '
            << expected.y << ' ' << expected.z;
    }
    static void ExpectLine(const Segment& line, const Point& from, const Point& to)
    {
        ExpectNear(line.from, from);
        ExpectNear(line.to, to);
    }
    /// Expects one chain of segments from `from` to `to`, with corners at this distance from a point.
    static void ExpectArc(const std::vector<Segment>& lines, const Point& center, double radius,
                          const Point& from, const Point& to)
    {
        ASSERT_GT(lines.size(), 1U);
        ExpectLine({lines.front().from, lines.back().to}, from, to);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_NEAR(Length(lines[i].to - center), radius, 1e-9);
            EXPECT_GE(Length((lines[i].from + lines[i].to) * 0.5 - center), radius - kTolerance);
            ExpectNear(lines[i].from, i > 0 ? lines[i - 1].to : from);
        }
    }
};

} // namespace viewer
