#include "viewer/import/dxf/entity_stream.h"

#include "viewer/import/dxf/annotations.h"
#include "viewer/import/dxf/direct_entities.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

namespace viewer
{

namespace
{

/// Begins an embedded object, whose groups have the same codes as those of the entity.
constexpr int kEmbeddedObject = 101;
/// The name of a header variable; the value is in the next group.
constexpr int kVariable = 9;
constexpr int kFourthCorner = 13;
constexpr int kFirstInteger = 70;
constexpr int kInvisible = 60;
constexpr int kPaperSpace = 67;
constexpr int kThickness = 39;
constexpr int kTrueColor = 420;
constexpr int kOpacity = 440;
/// Extended data: the name of the program that they belong to, and a number.
constexpr int kExtendedName = 1001;
constexpr int kExtendedInteger = 1071;

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), text) != words.end();
}

bool IsDrawn(std::string_view kind)
{
    return IsReadDirectly(kind) ||
           IsOneOf(kind, {"LINE", "ARC", "CIRCLE", "ELLIPSE", "LWPOLYLINE", "POLYLINE", "SPLINE", "3DFACE",
                          "SOLID", "TRACE", "INSERT"});
}

bool IsPartOfOther(std::string_view kind)
{
    return IsOneOf(kind, {"VERTEX", "SEQEND", "ATTRIB", "BLOCK", "ENDBLK"});
}

bool IsName(int code)
{
    return code == 2 || code == 8;
}

bool IsReal(int code)
{
    const bool is_coordinate = code >= 10 && code <= 38 && code % 10 <= 8;
    const bool is_direction = code == 210 || code == 220 || code == 230;
    return is_coordinate || is_direction || code == kThickness || (code >= 40 && code <= 45) || code == 50 ||
           code == 51;
}

bool IsInteger(int code)
{
    return code == kInvisible || code == 62 || code == kPaperSpace || (code >= 70 && code <= 75) ||
           code == kTrueColor || code == kOpacity;
}

/// Numbers of the entities that are read directly.
bool IsDirectReal(int code)
{
    return IsReal(code) || (code >= 46 && code <= 49) || (code >= 52 && code <= 59);
}

bool IsDirectInteger(int code)
{
    return IsInteger(code) || (code >= 76 && code <= 79) || (code >= 90 && code <= 99) || code == 290 ||
           code == 421 || code == 450;
}

/// The groups that the library reads of an entity that is read directly.
bool IsAttribute(int code)
{
    return code == 8 || code == 62 || code == kTrueColor || code == 210 || code == 220 || code == 230;
}

/// Names of kinds and sections are written in upper case, but not by all programs.
std::string UpperCase(std::string text)
{
    for (char& letter : text)
        if (letter >= 'a' && letter <= 'z')
            letter = static_cast<char>(letter - 'a' + 'A');
    return text;
}

/// Whether a number begins with a plus sign, which can be omitted.
bool IsSigned(std::string_view text)
{
    return text.size() > 1 && text.front() == '+' && text[1] != '-';
}

/// The finite number that is the whole text.
std::optional<double> NumberOf(std::string_view text)
{
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

/// Whether it is a number that underflows to 0.
bool IsTiny(std::string_view text)
{
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool is_whole = end == text.data() + text.size();
    return error == std::errc::result_out_of_range && is_whole && text.find('-', 1) != std::string_view::npos;
}

bool IsIntegerFor(int code, std::string_view text)
{
    const std::optional<long long> value = ParseWholeNumber(text);
    const bool is_true_color = code == kTrueColor;
    return value && *value >= std::numeric_limits<std::int32_t>::min() &&
           *value <= (is_true_color ? std::numeric_limits<std::uint32_t>::max()
                                    : static_cast<long long>(std::numeric_limits<std::int32_t>::max()));
}

/// Groups with the actual counts, because the library allocates its arrays by them and trusts the file's.
std::string CountsFor(std::string_view kind, const std::map<int, std::size_t>& counts)
{
    const auto count = [&](int said_by, int of) {
        const auto found = counts.find(of);
        return std::to_string(said_by) + '\n' + std::to_string(found == counts.end() ? 0 : found->second) +
               '\n';
    };
    if (kind == "LWPOLYLINE")
        return count(90, 10);
    if (kind == "SPLINE")
        return count(72, 40) + count(73, 10) + count(74, 11);
    return {};
}

bool IsCount(std::string_view kind, int code)
{
    return kind == "SPLINE" && code >= 72 && code <= 74;
}

} // namespace

DxfEntityStream::DxfEntityStream(const std::string& path, const ProgressFunction& progress,
                                 const std::function<void(const DxfEntityHead&)>& on_entity,
                                 const std::function<void(const DxfRawEntity&)>& on_other)
    : path_(path), on_entity_(on_entity), on_other_(on_other), groups_(path, progress)
{
}

void DxfEntityStream::RethrowFault() const
{
    if (fault_)
        std::rethrow_exception(fault_);
}

DxfEntityStream::int_type DxfEntityStream::underflow()
{
    served_.clear();
    try {
        while (served_.empty() && !has_ended_)
            ServeNext();
    } catch (...) {
        fault_ = std::current_exception();
        has_ended_ = true;
        served_.clear();
    }
    if (served_.empty())
        return traits_type::eof();
    setg(served_.data(), served_.data(), served_.data() + served_.size());
    return traits_type::to_int_type(served_.front());
}

void DxfEntityStream::Fail(std::size_t line, const std::string& reason) const
{
    throw FileError(path_, "line " + std::to_string(line) + ": " + reason);
}

void DxfEntityStream::ServeNext()
{
    if (next_.line == 0) {
        next_ = groups_.Read();
        if (next_.code != 0)
            throw FileError(path_, "is not a DXF file: it begins with group " + std::to_string(next_.code) +
                                       " instead of a section");
    }
    const std::size_t line = next_.line;
    std::string name = UpperCase(std::move(next_.value));
    // NOTE: The oldest drawings name lines in space so.
    if (name == "3DLINE")
        name = "LINE";
    if (name == "EOF" || name == "SECTION" || name == "ENDSEC")
        CloseOpenSequences({});
    if (name == "EOF") {
        has_ended_ = true;
        on_entity_({});
        served_ += "0\nEOF\n";
    } else if (name == "SECTION") {
        EnterSection();
    } else {
        if (name == "ENDSEC")
            LeaveSection();
        ReadEntity(name, line);
    }
}

void DxfEntityStream::EnterSection()
{
    const DxfGroup group = groups_.Read();
    if (group.code != 2)
        Fail(group.line, "a section without a name");
    const std::string name = UpperCase(group.value);
    in_entities_ = name == "ENTITIES";
    if (name == "TABLES")
        section_ = Section::Tables;
    else if (name == "BLOCKS" || in_entities_)
        section_ = Section::Drawn;
    else
        section_ = Section::Other;
    // Headers have a few hundred variables.
    constexpr std::size_t kMaxHeaderGroups = 10'000;
    const bool is_header = name == "HEADER";
    DxfRawEntity header;
    header.kind = "HEADER";
    std::string variable;
    for (ReadNext(); next_.code != 0; ReadNext()) {
        if (next_.code == kVariable)
            variable = next_.value = UpperCase(next_.value);
        else
            TakeVariable(variable, next_);
        if (is_header && header.groups.All().size() < kMaxHeaderGroups)
            header.groups.Add(next_);
    }
    if (is_header)
        on_other_(header);
}

void DxfEntityStream::LeaveSection()
{
    section_ = Section::None;
    has_entities_ = has_entities_ || in_entities_;
    in_entities_ = false;
}

/// A file that ends behind its entities is complete enough.
void DxfEntityStream::ReadNext()
{
    next_ = groups_.Read(has_entities_ && (section_ == Section::None || section_ == Section::Other));
}

void DxfEntityStream::TakeVariable(const std::string& variable, const DxfGroup& group)
{
    constexpr int kReal = 40;
    if (group.code == kFirstInteger && variable == "$INSUNITS")
        unit_number_ = ParseWholeNumber(group.value).value_or(0);
    if (group.code == kFirstInteger && variable == "$PDMODE")
        point_style_.mode = static_cast<int>(ParseWholeNumber(group.value).value_or(0) % 128);
    if (group.code == kReal && variable == "$PDSIZE")
        point_style_.size = NumberOf(group.value).value_or(0.0);
}

void DxfEntityStream::ReadEntity(const std::string& name, std::size_t line)
{
    const bool is_wanted = IsWanted(name);
    entity_ = {};
    entity_.head.kind = name;
    entity_.head.line = line;
    const bool has_all_groups = section_ == Section::Tables
                                    ? IsAnnotationTable(name)
                                    : section_ == Section::Drawn && IsAnnotation(name);
    const bool begins_block = name == "BLOCK" && section_ == Section::Drawn;
    if (begins_block)
        block_.emplace();
    for (ReadNext(); next_.code != 0; ReadNext()) {
        entity_.has_ended = entity_.has_ended || next_.code == kEmbeddedObject;
        if (is_wanted && !entity_.has_ended && !IsCount(name, next_.code))
            Append(next_);
        if (!is_wanted)
            AppendRaw(next_, has_all_groups);
        if (begins_block && next_.code == 2)
            block_ = next_.value;
        if (section_ == Section::Tables)
            TakeLayerOpacity(next_);
    }
    if (name == "ENDBLK" || name == "ENDSEC")
        block_.reset();
    const bool is_shown = !entity_.is_hidden || IsPartOfOther(name);
    if (is_wanted && is_shown)
        Keep(name);
    else if (section_ == Section::Drawn && !IsPartOfOther(name))
        CountSkipped(name);
    if (!IsPartOfOther(name))
        is_owner_hidden_ = entity_.is_hidden;
    const bool is_drawn_part = name == "ATTRIB" && !is_owner_hidden_;
    const bool is_other = is_drawn_part || !IsPartOfOther(name);
    if (!is_wanted && !entity_.is_hidden && is_other)
        ServeOther(name);
    if (!IsPartOfOther(name) && !(is_wanted && is_shown))
        CloseOpenSequences(name);
}

bool DxfEntityStream::IsWanted(std::string_view name) const
{
    if (section_ == Section::Tables)
        return name == "LAYER";
    if (section_ != Section::Drawn)
        return false;
    if (name == "VERTEX" || name == "SEQEND")
        return in_polyline_;
    return IsDrawn(name) || name == "BLOCK" || (name == "ENDBLK" && in_block_);
}

/// Ends a polyline without SEQEND, and a block without ENDBLK, where another entity begins.
void DxfEntityStream::CloseOpenSequences(std::string_view next)
{
    if (in_polyline_ && next != "VERTEX" && next != "SEQEND") {
        served_ += "0\nSEQEND\n";
        in_polyline_ = false;
    }
    if (in_block_ && (next.empty() || next == "BLOCK")) {
        served_ += "0\nENDBLK\n";
        in_block_ = false;
    }
}

void DxfEntityStream::Keep(const std::string& name)
{
    CloseOpenSequences(name);
    if (name == "POLYLINE" || name == "SEQEND")
        in_polyline_ = name == "POLYLINE";
    if (name == "BLOCK" || name == "ENDBLK")
        in_block_ = name == "BLOCK";
    if ((name == "BLOCK" || name == "INSERT") && entity_.counts[2] == 0)
        Fail(entity_.head.line, name + " without the name of a block");
    // Without points the library would allocate arrays of length 0.
    const bool is_empty =
        (name == "LWPOLYLINE" || name == "SPLINE") && entity_.counts[10] + entity_.counts[11] == 0;
    if (is_empty)
        return;
    on_entity_(entity_.head);
    // The library reports a point for each entity that is read directly.
    served_ += "0\n" + (IsReadDirectly(name) ? "POINT" : name) + '\n' + CountsFor(name, entity_.counts) +
               entity_.body;
}

void DxfEntityStream::Append(const DxfGroup& group)
{
    std::string_view value = group.value;
    const bool is_direct = IsReadDirectly(entity_.head.kind);
    const bool is_real = is_direct ? IsDirectReal(group.code) : IsReal(group.code);
    const bool is_integer = is_direct ? IsDirectInteger(group.code) : IsInteger(group.code);
    if (group.code == kSubclassMarker)
        entity_.head.numbers.all.push_back({kSubclassMarker, 0.0});
    if (!IsName(group.code) && !is_real && !is_integer)
        return;
    if (value.size() > kMaxDxfLine)
        Fail(group.line + 1, "longer than " + std::to_string(kMaxDxfLine) + " characters");
    if (!IsName(group.code) && IsSigned(value))
        value.remove_prefix(1);
    if (is_real && IsTiny(value))
        value = "0";
    if (is_real && !NumberOf(value))
        Fail(group.line + 1, QuotedForMessage(value) + " is no finite number");
    if (is_integer && !IsIntegerFor(group.code, value))
        Fail(group.line + 1, QuotedForMessage(value) + " is no whole number of 32 bits");
    if (group.code >= kFirstInteger &&
        group.code < kFirstInteger + static_cast<int>(entity_.head.integers.size()))
        entity_.head.integers.at(static_cast<std::size_t>(group.code - kFirstInteger)) =
            static_cast<int>(ParseWholeNumber(value).value_or(0));
    entity_.head.has_fourth_corner = entity_.head.has_fourth_corner || group.code == kFourthCorner;
    if ((group.code == kInvisible || group.code == kPaperSpace) && ParseWholeNumber(value) != 0)
        entity_.is_hidden = true;
    if (is_real || is_integer)
        entity_.head.numbers.all.push_back({group.code, NumberOf(value).value_or(0.0)});
    if (is_direct && !IsAttribute(group.code))
        return;
    ++entity_.counts[group.code];
    entity_.body += std::to_string(group.code);
    entity_.body += '\n';
    entity_.body += value;
    entity_.body += '\n';
}

/// The opacity of a layer is in extended data, with the same number as in the group of an entity.
void DxfEntityStream::TakeLayerOpacity(const DxfGroup& group)
{
    if (group.code == kExtendedName)
        entity_.in_opacity = group.value == "AcCmTransparency";
    if (group.code == kExtendedInteger && entity_.in_opacity)
        entity_.head.numbers.all.push_back({kOpacity, NumberOf(group.value).value_or(0.0)});
}

/// Keeps the layer and the visibility of an entity that is not passed on, and its groups if wanted.
void DxfEntityStream::AppendRaw(const DxfGroup& group, bool has_all_groups)
{
    constexpr int kLayer = 8;
    constexpr int kFirstExtendedData = 1000;
    const bool is_nonzero = ParseWholeNumber(group.value).value_or(0) != 0;
    if (!entity_.has_ended && (group.code == kInvisible || group.code == kPaperSpace) && is_nonzero)
        entity_.is_hidden = true;
    if (!entity_.has_ended && group.code == kLayer)
        entity_.raw.layer = group.value;
    if (has_all_groups && group.code < kFirstExtendedData)
        (entity_.has_ended ? entity_.raw.embedded : entity_.raw.groups).Add(group);
}

void DxfEntityStream::ServeOther(const std::string& name)
{
    const bool is_known_section =
        section_ == Section::Drawn || (section_ == Section::Tables && IsAnnotationTable(name));
    if (!is_known_section)
        return;
    entity_.raw.kind = name;
    entity_.raw.line = entity_.head.line;
    entity_.raw.block = block_;
    on_other_(entity_.raw);
}

void DxfEntityStream::CountSkipped(const std::string& name)
{
    // A damaged file can have any number of kinds.
    constexpr std::size_t kMaxKinds = 200;
    const auto found = skipped_.find(name);
    if (found != skipped_.end())
        ++found->second;
    else if (skipped_.size() < kMaxKinds)
        skipped_.emplace(name, 1);
}

} // namespace viewer
