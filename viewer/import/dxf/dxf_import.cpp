#include "viewer/import/dxf/dxf_import.h"

#include "viewer/import/dxf/annotations.h"
#include "viewer/import/dxf/drawing_builder.h"
#include "viewer/import/dxf/entity_stream.h"
#include "viewer/import/dxf/piece_builder.h"
#include "viewer/import/dxf/placed_entities.h"
#include "viewer/import/file_checks.h"
#include "viewer/text/file_error.h"

#include <dxflib/dl_dxf.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <functional>
#include <istream>
#include <map>
#include <new>
#include <optional>

namespace viewer
{

namespace
{

/// Reading's share of the progress; placing and cutting are the rest.
constexpr double kReadingShare = 0.8;

struct DrawingFile {
    DxfDrawing drawing;
    std::map<std::string, std::size_t> skipped;
    std::optional<double> meters_per_unit;
};

/// The length of a unit by its number in $INSUNITS. No value for 0, drawings without a unit, and for rare
/// units.
std::optional<double> MetersPerUnit(long long number)
{
    constexpr double kInch = 0.0254;
    switch (number) {
    case 1:
        return kInch;
    case 2:
        return 12.0 * kInch;
    case 4:
        return 1e-3;
    case 5:
        return 1e-2;
    case 6:
        return 1.0;
    case 7:
        return 1e3;
    case 8:
        return 1e-6 * kInch;
    case 9:
        return 1e-3 * kInch;
    case 10:
        return 36.0 * kInch;
    case 13:
        return 1e-6;
    case 14:
        return 1e-1;
    default:
        return std::nullopt;
    }
}

DrawingFile ReadDrawing(const std::string& path, const ProgressFunction& progress)
{
    const ProgressFunction report = [&](double part) {
        if (progress)
            progress(kReadingShare * part);
    };
    DrawingFile file;
    DxfDrawingBuilder builder(path, file.drawing);
    const std::function<void(const DxfEntityHead&)> begin = [&](const DxfEntityHead& head) {
        builder.Begin(head);
    };
    DxfAnnotations annotations(file.drawing);
    const std::function<void(const DxfRawEntity&)> take = [&](const DxfRawEntity& entity) {
        annotations.Take(entity);
    };
    DxfEntityStream text(path, report, begin, take);
    std::istream stream(&text);
    DL_Dxf().in(stream, &builder);
    text.RethrowFault();
    annotations.Finish();
    file.skipped = text.SkippedEntities();
    file.drawing.point_style = text.PointStyle();
    file.meters_per_unit = MetersPerUnit(text.UnitNumber());
    return file;
}

/// The reason why a drawing shows nothing.
std::string ReasonForNothing(const DrawingFile& file)
{
    constexpr std::size_t kMaxKinds = 5;
    constexpr std::size_t kMaxKindLength = 30;
    std::map<std::string, std::size_t> skipped = file.skipped;
    std::map<std::string, std::size_t> left_out;
    std::size_t drawn = 0;
    for (const DxfEntity& entity : file.drawing.entities)
        if (const auto* parts = std::get_if<DxfLeftOut>(&entity.shape))
            left_out[parts->kind] += parts->count;
        else
            ++drawn;
    // Kinds that are counted already stay as they are.
    skipped.merge(left_out);
    if (drawn > 0)
        return "shows nothing: its " + std::to_string(drawn) +
               " entities are on layers that are off or frozen, or have no extent";
    if (skipped.empty())
        return "holds no entities";
    std::string kinds;
    std::size_t named = 0;
    for (const auto& [kind, count] : skipped) {
        kinds += named == 0 ? "" : ", ";
        if (++named > kMaxKinds) {
            kinds += "...";
            break;
        }
        kinds += std::to_string(count) + ' ' + kind.substr(0, kMaxKindLength);
    }
    return "holds nothing that can be shown, only " + kinds;
}

/// The inserts of drawings that are in other files, by name.
std::map<std::string, std::size_t> ExternalBlocks(const DxfDrawing& drawing)
{
    std::map<std::string, std::size_t> inserts;
    const auto count = [&](const std::vector<DxfEntity>& entities) {
        for (const DxfEntity& entity : entities) {
            const auto* insert = std::get_if<DxfInsert>(&entity.shape);
            if (insert == nullptr)
                continue;
            const DxfBlock& block = drawing.blocks[insert->block];
            if (block.is_external && block.entities.empty())
                ++inserts["XREF " + block.name];
        }
    };
    count(drawing.entities);
    for (const DxfBlock& block : drawing.blocks)
        count(block.entities);
    return inserts;
}

Box ExtentsOf(const std::string& path, DxfPlacedEntities& placement)
{
    Box box;
    placement.ForEach([&](const PlacedEntity& placed) {
        const Box part = BoxOfEntity(placed);
        if (!part.IsEmpty() && !IsFinite(part.max))
            throw FileError(path, "line " + std::to_string(placed.entity.line) +
                                      ": comes to coordinates beyond 1e70");
        box.Unite(part);
    });
    return box;
}

Model Read(const std::string& path, const ImportOptions& options, const ProgressFunction& progress)
{
    const DrawingFile file = ReadDrawing(path, progress);
    DxfPlacedEntities placement(path, file.drawing);
    const Box box = ExtentsOf(path, placement);
    if (box.IsEmpty())
        throw FileError(path, ReasonForNothing(file));
    // The marks of a single point have a size, but the point has none.
    const double diagonal = box.Diagonal() > 0.0 ? box.Diagonal() : 1.0;
    DxfPieceBuilder pieces(path, file.drawing, placement,
                           options.deflection.value_or(options.RelativeDeflection() * diagonal));
    pieces.SetExtents(box);
    placement.ForEach([&](const PlacedEntity& placed) { pieces.Add(placed); });
    Model model = pieces.Finish();
    for (const auto& [kind, count] : ExternalBlocks(file.drawing))
        model.LeaveOut(kind, count);
    if (model.pieces.empty())
        throw FileError(path, ReasonForNothing(file));
    model.meters_per_unit = file.meters_per_unit;
    if (progress)
        progress(1.0);
    return model;
}

} // namespace

Model ImportDxf(const std::string& path, const ImportOptions& options, const ProgressFunction& progress)
{
    CheckModelFile(path);
    Model model;
    try {
        model = Read(path, options, progress);
    } catch (const std::bad_alloc&) {
        throw FileError(path, "needs more memory than there is");
    }
    model.title = std::filesystem::path(path).filename().string();
    return model;
}

} // namespace viewer
