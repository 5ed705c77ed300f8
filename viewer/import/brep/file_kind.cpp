#include "viewer/import/brep/file_kind.h"

#include "viewer/import/file_checks.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

constexpr std::size_t kEndBytes = 4096;

struct Ends {
    std::string head;
    std::string tail; ///< overlaps the head in a short file
};

Ends ReadEnds(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const auto size = std::filesystem::file_size(path);
    const auto looked = static_cast<std::size_t>(std::min<std::uintmax_t>(size, kEndBytes));
    const auto read = [&](std::uintmax_t from) {
        std::string text(looked, '\0');
        file.seekg(static_cast<std::streamoff>(from));
        file.read(text.data(), static_cast<std::streamsize>(looked));
        return text;
    };
    Ends ends{.head = read(0), .tail = {}};
    ends.tail = looked < size ? read(size - looked) : ends.head;
    if (!file)
        throw FileError(path, "cannot be read");
    return ends;
}

/// The lines that are not blank. The first line of a tail can be incomplete.
std::vector<std::string_view> LinesOf(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        if (!Trimmed(line).empty())
            lines.push_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool IsStep(const Ends& ends)
{
    return ends.head.find("ISO-10303-21") != std::string::npos;
}

bool IsWholeStep(const Ends& ends)
{
    return Trimmed(ends.tail).ends_with("END-ISO-10303-21;");
}

/// The section letter of a line of 80 columns; 0 for a line that is too short.
char IgesSection(std::string_view line)
{
    constexpr std::size_t kSectionColumn = 72;
    return line.size() > kSectionColumn ? line[kSectionColumn] : '\0';
}

bool IsIges(const Ends& ends)
{
    const auto lines = LinesOf(ends.head);
    return !lines.empty() && IgesSection(lines.front()) == 'S';
}

bool IsWholeIges(const Ends& ends)
{
    constexpr std::size_t kColumns = 80;
    const auto lines = LinesOf(ends.tail);
    return !lines.empty() && IgesSection(lines.back()) == 'T' && Trimmed(lines.back()).size() == kColumns;
}

bool IsBrep(const Ends& ends)
{
    return ends.head.find("CASCADE Topology V") != std::string::npos;
}

/// Whether the line refers to a shape and its location, for example "+1 0".
bool IsShapeReference(std::string_view line)
{
    constexpr std::string_view kDigits = "0123456789";
    line = Trimmed(line);
    if (line.empty() || (line.front() != '+' && line.front() != '-'))
        return false;
    const auto blank = line.find(' ');
    if (blank == std::string_view::npos)
        return false;
    const std::string_view shape = line.substr(1, blank - 1);
    const std::string_view location = Trimmed(line.substr(blank));
    const auto is_number = [&](std::string_view text) {
        return !text.empty() && text.find_first_not_of(kDigits) == std::string_view::npos;
    };
    return is_number(shape) && is_number(location);
}

bool IsBinary(const Ends& ends)
{
    return ends.head.find("Open CASCADE Topology V") != std::string::npos;
}

/// The list of shapes ends with a star. The next line refers to the shape that the file stores. Old programs
/// write a line "0" after it. Binary files have no such lines.
bool IsWholeBrep(const Ends& ends)
{
    if (IsBinary(ends))
        return true;
    auto lines = LinesOf(ends.tail);
    if (!lines.empty() && Trimmed(lines.back()) == "0")
        lines.pop_back();
    return lines.size() >= 2 && IsShapeReference(lines.back()) &&
           Trimmed(lines[lines.size() - 2]).ends_with('*');
}

/// Whether the file has an end of the shapes: the only shape reference that is alone on the line after a star.
bool HasEndOfShapes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    bool is_behind_star = false;
    for (std::string line; std::getline(file, line);) {
        const std::string_view text = Trimmed(line);
        if (text.empty())
            continue;
        if (is_behind_star && IsShapeReference(text))
            return true;
        is_behind_star = text.ends_with('*');
    }
    return false;
}

} // namespace

std::optional<BrepKind> BrepKindOf(const std::string& path)
{
    const std::string ending = LowerCaseExtension(path);
    constexpr std::array<std::pair<std::string_view, BrepKind>, 7> kEndings{{{".step", BrepKind::Step},
                                                                             {".stp", BrepKind::Step},
                                                                             {".iges", BrepKind::Iges},
                                                                             {".igs", BrepKind::Iges},
                                                                             {".brep", BrepKind::Brep},
                                                                             {".brp", BrepKind::Brep},
                                                                             {".bbrep", BrepKind::Brep}}};
    for (const auto& [known, kind] : kEndings)
        if (ending == known)
            return kind;
    return std::nullopt;
}

bool IsBinaryBrep(const std::string& path)
{
    std::string head(kEndBytes, '\0');
    std::ifstream(path, std::ios::binary).read(head.data(), static_cast<std::streamsize>(head.size()));
    return IsBinary({.head = head, .tail = {}});
}

void CheckBrepFile(const std::string& path, BrepKind kind)
{
    CheckModelFile(path);
    struct Check {
        std::string_view name;
        bool (*is_of_kind)(const Ends&);
        bool (*is_whole)(const Ends&);
    };
    constexpr std::array<Check, 3> kChecks{
        {{"a STEP", IsStep, IsWholeStep}, {"an IGES", IsIges, IsWholeIges}, {"a BREP", IsBrep, IsWholeBrep}}};
    const Check& check = kChecks.at(static_cast<std::size_t>(kind));
    const Ends ends = ReadEnds(path);
    if (!check.is_of_kind(ends))
        throw FileError(path, "does not begin as " + std::string(check.name) + " file does");
    const bool is_whole = check.is_whole(ends) || (kind == BrepKind::Brep && HasEndOfShapes(path));
    if (!is_whole)
        throw FileError(path, "truncated: does not end as " + std::string(check.name) + " file does");
}

} // namespace viewer
