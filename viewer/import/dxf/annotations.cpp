#include "viewer/import/dxf/annotations.h"

#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace viewer
{

namespace
{

bool IsDimension(std::string_view kind)
{
    return kind == "DIMENSION" || kind == "ARC_DIMENSION" || kind == "LARGE_RADIAL_DIMENSION";
}

/// The groups that a dimension or a table is placed and drawn by.
DxfGroups PlacingGroups(const DxfGroups& groups)
{
    constexpr int kMaxTypeCode = 3;
    DxfGroups placing;
    for (const DxfGroup& group : groups.All()) {
        const int code = group.code;
        const bool is_point = code >= 10 && code < 40 && code % 10 <= 6;
        const bool is_other = code == 42 || code == 50 || code == 62 || code == 70 || code == 210 ||
                              code == 220 || code == 230 || code == 420 || code == 440;
        const bool is_text = code >= 1 && code <= kMaxTypeCode && placing.Find(code) == nullptr;
        if (is_point || is_other || is_text)
            placing.Add(group);
    }
    return placing;
}

} // namespace

bool IsAnnotation(std::string_view kind)
{
    static constexpr std::array<std::string_view, 12> kKinds = {
        "TEXT",   "MTEXT",       "ATTRIB",  "ATTDEF",    "DIMENSION", "ARC_DIMENSION",
        "LEADER", "MULTILEADER", "MLEADER", "TOLERANCE", "MLINE",     "ACAD_TABLE"};
    return std::ranges::find(kKinds, kind) != kKinds.end() || kind == "LARGE_RADIAL_DIMENSION";
}

bool IsAnnotationTable(std::string_view kind)
{
    return kind == "STYLE" || kind == "DIMSTYLE" || kind == "BLOCK_RECORD";
}

void DxfAnnotations::Take(const DxfRawEntity& entity)
{
    const bool is_entity = entity.kind != "HEADER" && !IsAnnotationTable(entity.kind);
    try {
        if (entity.kind == "HEADER")
            context_.TakeHeader(entity.groups);
        else if (entity.kind == "STYLE")
            context_.TakeTextStyle(entity.groups);
        else if (entity.kind == "DIMSTYLE")
            context_.TakeDimensionStyle(entity.groups);
        else if (entity.kind == "BLOCK_RECORD")
            context_.TakeBlockRecord(entity.groups);
        else
            TakeEntity(entity);
    } catch (const DxfValueError&) {
        if (is_entity)
            CountLeftOut(entity);
    }
}

void DxfAnnotations::TakeEntity(const DxfRawEntity& entity)
{
    const std::string& kind = entity.kind;
    const DxfGroup* handle = entity.groups.Find(5);
    if (kind == "ATTDEF" && entity.block && handle != nullptr)
        definitions_.insert_or_assign(handle->value, entity.groups);
    if (kind == "TEXT" || kind == "ATTRIB" || kind == "ATTDEF")
        AddText(entity, ShapesOfText(entity, context_));
    else if (kind == "MTEXT")
        AddText(entity, ShapesOfMText(entity.groups, context_));
    else if (kind == "LEADER")
        Add(entity, ShapesOfLeader(entity, context_));
    else if (kind == "TOLERANCE")
        Add(entity, ShapesOfTolerance(entity, context_));
    else if (kind == "MLINE")
        Add(entity, ShapesOfMultiline(entity));
    else if (kind == "MULTILEADER" || kind == "MLEADER")
        TakeMultileader(entity);
    else if (kind == "ACAD_TABLE" || IsDimension(kind))
        TakeReference(entity);
    else
        CountLeftOut(entity);
}

/// Without any font of the system, the texts are missing.
void DxfAnnotations::AddText(const DxfRawEntity& entity, DxfShapes shapes)
{
    if (shapes.empty() && !context_.outlines.HasFont())
        CountLeftOut(entity);
    Add(entity, std::move(shapes));
}

void DxfAnnotations::TakeMultileader(const DxfRawEntity& entity)
{
    std::optional<DxfBlockContent> content;
    Add(entity, ShapesOfMultileader(entity, context_, content));
    if (!content)
        return;
    DxfRawEntity reference = entity;
    reference.groups = {};
    if (content->name.empty())
        CountLeftOut(reference);
    else
        AddInsert(reference, drawing_.BlockNumber(content->name), content->placement);
    for (const DxfAttributeValue& value : content->values) {
        const auto definition = definitions_.find(value.definition);
        if (definition == definitions_.end())
            continue;
        DxfShapes shapes = ShapesOfValue(definition->second, value.text, context_);
        for (DxfColoredShape& shape : shapes)
            if (auto* text = std::get_if<DxfText>(&shape.shape))
                text->frame = content->placement * text->frame;
        Add(entity, std::move(shapes));
    }
}

void DxfAnnotations::TakeReference(const DxfRawEntity& entity)
{
    references_.push_back(
        {entity.kind, entity.line, entity.block, entity.layer, PlacingGroups(entity.groups), {}});
}

DxfAnnotations::Block DxfAnnotations::BlockOf(const DxfRawEntity& entity)
{
    return entity.block ? Block(drawing_.BlockNumber(*entity.block)) : std::nullopt;
}

void DxfAnnotations::Add(const DxfRawEntity& entity, DxfShapes shapes)
{
    const Block block = BlockOf(entity);
    const std::size_t layer = drawing_.LayerNumber(entity.layer);
    const int color = entity.Color();
    const DxfOpacity opacity = OpacityOf(entity.groups.Real(440));
    for (DxfColoredShape& shape : shapes)
        pending_.push_back(
            {block, {std::move(shape.shape), layer, shape.color.value_or(color), entity.line, opacity}});
}

void DxfAnnotations::AddInsert(const DxfRawEntity& entity, std::size_t block, const Affine& placement)
{
    DxfInsert insert;
    insert.block = block;
    insert.placement = placement;
    insert.is_anonymous = true;
    DxfShapes shapes;
    shapes.push_back({insert, std::nullopt});
    Add(entity, std::move(shapes));
}

void DxfAnnotations::CountLeftOut(const DxfRawEntity& entity)
{
    // A damaged file can have any number of kinds, of any length.
    constexpr std::size_t kMaxKinds = 200;
    constexpr std::size_t kMaxKindLength = 40;
    auto kind = kinds_.find(entity.kind);
    if (kind == kinds_.end() && kinds_.size() < kMaxKinds)
        kind = kinds_.emplace(entity.kind, OneLine(entity.kind, kMaxKindLength)).first;
    ++left_out_[{BlockOf(entity), drawing_.LayerNumber(entity.layer),
                 kind != kinds_.end() ? kind->second : "other kinds"}];
}

bool DxfAnnotations::ShowsAnything(std::size_t block) const
{
    return drawing_.blocks[block].is_defined &&
           std::ranges::any_of(drawing_.blocks[block].entities, [](const DxfEntity& entity) {
               return !std::holds_alternative<DxfLeftOut>(entity.shape);
           });
}

/// Adds a dimension or a table by its block; a dimension without a block is drawn from its points.
void DxfAnnotations::Resolve(const DxfRawEntity& entity)
{
    const std::string name = entity.groups.Text(2);
    const bool is_table = entity.kind == "ACAD_TABLE";
    const Block block = name.empty() ? Block() : Block(drawing_.BlockNumber(name));
    if (block && ShowsAnything(*block)) {
        Affine placement;
        if (is_table)
            placement = FrameAlong(entity.groups.PointAt(10).value_or(Point{}),
                                   entity.groups.PointAt(11).value_or(Point{}), entity.groups.Frame().z);
        AddInsert(entity, *block, placement);
        return;
    }
    DxfShapes shapes;
    if (!is_table)
        shapes = ShapesOfDimension(entity, context_);
    if (shapes.empty())
        CountLeftOut(entity);
    else
        Add(entity, std::move(shapes));
}

void DxfAnnotations::Finish()
{
    const auto move_pending = [&] {
        for (Pending& pending : pending_)
            (pending.block ? drawing_.blocks[*pending.block].entities : drawing_.entities)
                .push_back(std::move(pending.entity));
        pending_.clear();
    };
    move_pending();
    for (const DxfRawEntity& entity : references_) {
        try {
            Resolve(entity);
        } catch (const DxfValueError&) {
            CountLeftOut(entity);
        }
    }
    move_pending();
    for (const auto& [key, count] : left_out_) {
        const auto& [block, layer, kind] = key;
        (block ? drawing_.blocks[*block].entities : drawing_.entities)
            .push_back({DxfLeftOut{kind, count}, layer, kColorByLayer, 0});
    }
    left_out_.clear();
    references_.clear();
}

} // namespace viewer
