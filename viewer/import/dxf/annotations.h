// Adds annotations to a drawing, and counts the entities that are not drawn. Annotations
// are read from their groups, because the parsing library loses part of them.
#pragma once

#include "viewer/import/dxf/annotation_context.h"
#include "viewer/import/dxf/drawing.h"
#include "viewer/import/dxf/raw_entity.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace viewer
{

/// The kinds that `DxfAnnotations` needs all groups of: annotations, and entries of tables.
[[nodiscard]] bool IsAnnotation(std::string_view kind);
[[nodiscard]] bool IsAnnotationTable(std::string_view kind);

class DxfAnnotations
{
  public:
    /// `drawing` must outlive the object.
    explicit DxfAnnotations(DxfDrawing& drawing) : drawing_(drawing) {}

    /// Takes a header, an entry of a table, or an entity that the library does not read, in the order of the
    /// file. Kinds that are not drawn are counted, and so are annotations with values that are not numbers.
    void Take(const DxfRawEntity& entity);
    /// Adds all to the drawing, whose blocks must be complete.
    void Finish();

  private:
    using Block = std::optional<std::size_t>;

    void TakeEntity(const DxfRawEntity& entity);
    void TakeMultileader(const DxfRawEntity& entity);
    void TakeReference(const DxfRawEntity& entity);
    void Add(const DxfRawEntity& entity, DxfShapes shapes);
    void AddText(const DxfRawEntity& entity, DxfShapes shapes);
    void CountLeftOut(const DxfRawEntity& entity);
    void Resolve(const DxfRawEntity& entity);
    void AddInsert(const DxfRawEntity& entity, std::size_t block, const Affine& placement);
    [[nodiscard]] Block BlockOf(const DxfRawEntity& entity);
    [[nodiscard]] bool ShowsAnything(std::size_t block) const;

    /// An entity of the drawing, or of a block.
    struct Pending {
        Block block;
        DxfEntity entity;
    };

    DxfDrawing& drawing_;
    DxfAnnotationContext context_;
    std::vector<Pending> pending_;
    std::map<std::string, DxfGroups> definitions_; ///< of the attributes of blocks, by handle
    std::vector<DxfRawEntity> references_;         ///< dimensions and tables, which refer to blocks
    /// Names of left-out kinds, cleaned for messages, by the name in the file.
    std::map<std::string, std::string> kinds_;
    std::map<std::tuple<Block, std::size_t, std::string>, std::size_t>
        left_out_; ///< by block, layer and kind
};

} // namespace viewer
