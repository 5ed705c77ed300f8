#include "viewer/import/dxf/entity_stream.h"

#include "viewer/text/file_error.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <limits>
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

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), text) != words.end();
}

bool IsDrawn(std::string_view kind)
{
    return IsOneOf(kind, {"LINE", "ARC", "CIRCLE", "ELLIPSE", "LWPOLYLINE", "POLYLINE", "SPLINE", "3DFACE",
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
    return is_coordinate || is_direction || (code >= 40 && code <= 45) || code == 50 || code == 51;
}

bool IsInteger(int code)
{
    return code == kInvisible || code == 62 || code == kPaperSpace || (code >= 70 && code <= 75) ||
           code == 420;
}

/// Whether a number begins with a plus sign, which can be omitted.
bool IsSigned(std::string_view text)
{
    return text.size() > 1 && text.front() == '+' && text[1] != '-';
}

bool IsFiniteNumber(std::string_view text)
{
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
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
    const bool is_true_color = code == 420;
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
                                 const std::function<void(const DxfEntityHead&)>& on_entity)
    : path_(path), on_entity_(on_entity), groups_(path, progress)
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
    const std::string name = std::move(next_.value);
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
            section_ = Section::None;
        ReadEntity(name, line);
    }
}

void DxfEntityStream::EnterSection()
{
    const DxfGroup group = groups_.Read();
    if (group.code != 2)
        Fail(group.line, "a section without a name");
    if (group.value == "TABLES")
        section_ = Section::Tables;
    else if (group.value == "BLOCKS" || group.value == "ENTITIES")
        section_ = Section::Drawn;
    else
        section_ = Section::Other;
    std::string variable;
    for (next_ = groups_.Read(); next_.code != 0; next_ = groups_.Read())
        if (next_.code == kVariable)
            variable = next_.value;
        else if (next_.code == kFirstInteger && variable == "$INSUNITS")
            unit_number_ = ParseWholeNumber(next_.value).value_or(0);
}

void DxfEntityStream::ReadEntity(const std::string& name, std::size_t line)
{
    const bool is_wanted = IsWanted(name);
    entity_ = {};
    entity_.head.kind = name;
    entity_.head.line = line;
    for (next_ = groups_.Read(); next_.code != 0; next_ = groups_.Read()) {
        entity_.has_ended = entity_.has_ended || next_.code == kEmbeddedObject;
        if (is_wanted && !entity_.has_ended && !IsCount(name, next_.code))
            Append(next_);
    }
    const bool is_shown = !entity_.is_hidden || IsPartOfOther(name);
    if (is_wanted && is_shown)
        Keep(name);
    else if (section_ == Section::Drawn && !IsPartOfOther(name))
        CountSkipped(name);
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
    served_ += "0\n" + name + '\n' + CountsFor(name, entity_.counts) + entity_.body;
}

void DxfEntityStream::Append(const DxfGroup& group)
{
    std::string_view value = group.value;
    if (!IsName(group.code) && !IsReal(group.code) && !IsInteger(group.code))
        return;
    if (value.size() > kMaxDxfLine)
        Fail(group.line + 1, "longer than " + std::to_string(kMaxDxfLine) + " characters");
    if (!IsName(group.code) && IsSigned(value))
        value.remove_prefix(1);
    if (IsReal(group.code) && IsTiny(value))
        value = "0";
    if (IsReal(group.code) && !IsFiniteNumber(value))
        Fail(group.line + 1, QuotedForMessage(value) + " is no finite number");
    if (IsInteger(group.code) && !IsIntegerFor(group.code, value))
        Fail(group.line + 1, QuotedForMessage(value) + " is no whole number of 32 bits");
    if (group.code >= kFirstInteger &&
        group.code < kFirstInteger + static_cast<int>(entity_.head.integers.size()))
        entity_.head.integers.at(static_cast<std::size_t>(group.code - kFirstInteger)) =
            static_cast<int>(ParseWholeNumber(value).value_or(0));
    entity_.head.has_fourth_corner = entity_.head.has_fourth_corner || group.code == kFourthCorner;
    if ((group.code == kInvisible || group.code == kPaperSpace) && ParseWholeNumber(value) != 0)
        entity_.is_hidden = true;
    ++entity_.counts[group.code];
    entity_.body += std::to_string(group.code);
    entity_.body += '\n';
    entity_.body += value;
    entity_.body += '\n';
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
