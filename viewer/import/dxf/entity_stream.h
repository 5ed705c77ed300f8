// The text of a DXF file on its way to the library that parses it. The library trusts what it reads: its
// lines have a fixed length, counts are believed, and anything passes for a number. So it gets the file
// through this stream: whole entities of the kinds that are drawn, their numbers checked, their counts
// counted, all else left out. What an entity means is not known here.
#pragma once

#include "viewer/import/dxf/group_reader.h"
#include "viewer/import/progress.h"

#include <array>
#include <cstddef>
#include <exception>
#include <functional>
#include <map>
#include <streambuf>
#include <string>
#include <string_view>

namespace viewer
{

/// What of an entity the library tells nobody.
///
/// NOTE: it has a call for every group, but makes it only for files that it opens itself.
struct DxfEntityHead {
    std::string kind;
    std::size_t line = 0;          ///< where it begins
    std::array<int, 5> integers{}; ///< of the group codes 70 to 74
    bool has_fourth_corner = false;
};

/// Serves one entity at a time: each is out of the buffer before the next is read.
///
/// Does not throw while it is read from, since the library would leak: after a fault it ends, and
/// `RethrowFault` tells.
class DxfEntityStream final : public std::streambuf
{
  public:
    /// Throws FileError where the file cannot be opened. `progress` gets the part of the bytes that have been
    /// read, `on_entity` the head of each entity before it is served: the library has not yet added the
    /// one before it. Both must outlive the object.
    DxfEntityStream(const std::string& path, const ProgressFunction& progress,
                    const std::function<void(const DxfEntityHead&)>& on_entity);

    /// How many entities were left out, by kind.
    [[nodiscard]] const std::map<std::string, std::size_t>& SkippedEntities() const { return skipped_; }
    /// The number of the drawing's unit, as the variable $INSUNITS has it; 0 for none.
    [[nodiscard]] long long UnitNumber() const { return unit_number_; }
    /// Throws the FileError that ended the stream, if any.
    void RethrowFault() const;

  protected:
    int_type underflow() override;

  private:
    [[noreturn]] void Fail(std::size_t line, const std::string& reason) const;
    void ServeNext();
    void EnterSection();
    void ReadEntity(const std::string& name, std::size_t line);
    void Append(const DxfGroup& group);
    void CloseOpenSequences(std::string_view next);
    [[nodiscard]] bool IsWanted(std::string_view name) const;
    void Keep(const std::string& name);
    void CountSkipped(const std::string& name);

    /// What an entity's groups said so far.
    struct Entity {
        DxfEntityHead head;
        std::string body;
        std::map<int, std::size_t> counts; ///< of groups by code
        bool is_hidden = false;
        bool has_ended = false; ///< what follows belongs to something embedded in it
    };
    enum class Section { kNone, kTables, kDrawn, kOther };

    std::string path_;
    const std::function<void(const DxfEntityHead&)>& on_entity_;
    DxfGroupReader groups_;

    Section section_ = Section::kNone;
    DxfGroup next_; ///< the group 0 that begins the next entity
    bool has_ended_ = false;
    bool in_polyline_ = false;
    bool in_block_ = false;
    Entity entity_;
    std::string served_;
    std::map<std::string, std::size_t> skipped_;
    long long unit_number_ = 0;
    std::exception_ptr fault_;
};

} // namespace viewer
