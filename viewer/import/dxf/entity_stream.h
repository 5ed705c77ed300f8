// Filters a DXF file for the library that parses it. The library does not validate its input: its line
// buffers have a fixed length, it trusts counts, and it accepts any text as a number. This stream passes only
// complete entities of the kinds that are drawn, with checked numbers and recomputed counts. It does not
// interpret them.
#pragma once

#include "viewer/import/dxf/entity_numbers.h"
#include "viewer/import/dxf/group_reader.h"
#include "viewer/import/dxf/point_mark.h"
#include "viewer/import/dxf/raw_entity.h"
#include "viewer/import/progress.h"

#include <array>
#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <optional>
#include <streambuf>
#include <string>
#include <string_view>

namespace viewer
{

/// Data of an entity that the library does not report.
///
/// NOTE: The library has a callback for every group, but calls it only for files that it opens itself.
struct DxfEntityHead {
    std::string kind;
    std::size_t line = 0;          ///< the line where it begins
    std::array<int, 5> integers{}; ///< values of the group codes 70 to 74
    bool has_fourth_corner = false;
    DxfEntityNumbers numbers; ///< of all groups that are used
};

/// The filtered text as a stream buffer. It holds one entity at a time: an entity is consumed before the next
/// one is read from the file.
///
/// Reading does not throw, because the library would leak memory. After an error the stream ends;
/// `RethrowFault` then throws the error.
class DxfEntityStream final : public std::streambuf
{
  public:
    /// Throws FileError if the file cannot be opened. `progress` gets the fraction of the bytes that are
    /// read. `on_entity` gets the head of each entity before the library reads it; the library has not yet
    /// added the previous entity then. `on_other` gets the header, entries of tables, and the visible
    /// entities of the model that are not passed on, with all groups of annotations. All must outlive the
    /// object.
    DxfEntityStream(const std::string& path, const ProgressFunction& progress,
                    const std::function<void(const DxfEntityHead&)>& on_entity,
                    const std::function<void(const DxfRawEntity&)>& on_other);

    /// The number of entities that were not passed on, by kind.
    [[nodiscard]] const std::map<std::string, std::size_t>& SkippedEntities() const { return skipped_; }
    /// The number of the drawing's unit, from the variable $INSUNITS; 0 for none.
    [[nodiscard]] long long UnitNumber() const { return unit_number_; }
    /// How the drawing's points are drawn, from the variables $PDMODE and $PDSIZE.
    [[nodiscard]] const DxfPointStyle& PointStyle() const { return point_style_; }
    /// Throws the FileError that ended the stream, if any.
    void RethrowFault() const;

  protected:
    int_type underflow() override;

  private:
    [[noreturn]] void Fail(std::size_t line, const std::string& reason) const;
    void ServeNext();
    void EnterSection();
    void LeaveSection();
    void ReadNext();
    void TakeVariable(const std::string& variable, const DxfGroup& group);
    void ReadEntity(const std::string& name, std::size_t line);
    void Append(const DxfGroup& group);
    void TakeLayerOpacity(const DxfGroup& group);
    void AppendRaw(const DxfGroup& group, bool has_all_groups);
    void ServeOther(const std::string& name);
    void CloseOpenSequences(std::string_view next);
    [[nodiscard]] bool IsWanted(std::string_view name) const;
    void Keep(const std::string& name);
    void CountSkipped(const std::string& name);

    /// The groups of an entity that were read so far.
    struct Entity {
        DxfEntityHead head;
        std::string body;
        std::map<int, std::size_t> counts; ///< number of groups, by code
        DxfRawEntity raw;                  ///< of an entity that is not passed on
        bool is_hidden = false;
        bool has_ended = false;  ///< the groups that follow belong to an embedded object
        bool in_opacity = false; ///< the next extended data are the opacity of a layer
    };
    enum class Section { None, Tables, Drawn, Other };

    std::string path_;
    const std::function<void(const DxfEntityHead&)>& on_entity_;
    const std::function<void(const DxfRawEntity&)>& on_other_;
    DxfGroupReader groups_;

    Section section_ = Section::None;
    DxfGroup next_; ///< the group 0 that begins the next entity
    bool has_ended_ = false;
    bool in_polyline_ = false;
    bool in_block_ = false;
    bool in_entities_ = false;
    bool has_entities_ = false;        ///< the section of entities is complete
    std::optional<std::string> block_; ///< the name of the block that the entities are in
    bool is_owner_hidden_ = false;     ///< the entity that the next attributes belong to is hidden
    Entity entity_;
    std::string served_;
    std::map<std::string, std::size_t> skipped_;
    long long unit_number_ = 0;
    DxfPointStyle point_style_;
    std::exception_ptr fault_;
};

} // namespace viewer
