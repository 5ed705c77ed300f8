#include "viewer/import/file_checks.h"

#include "viewer/import/damaged_file.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <vector>

namespace viewer
{

namespace
{

namespace fs = std::filesystem;

/// A 32-bit little-endian number; 0 past the end of the file.
std::uint32_t ReadUint32(std::istream& stream, std::streamoff offset)
{
    std::array<char, 4> bytes{};
    stream.seekg(offset);
    stream.read(bytes.data(), bytes.size());
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes.at(i))) << (8U * i);
    return value;
}

/// The last line that is not blank in the last 4 KiB of the file.
std::string LastLine(std::istream& stream, std::uintmax_t size)
{
    constexpr std::uintmax_t kTail = 4096;
    stream.clear();
    stream.seekg(static_cast<std::streamoff>(size - std::min(size, kTail)));
    std::string last;
    for (std::string line; std::getline(stream, line);)
        if (!Trimmed(line).empty())
            last = Trimmed(line);
    return last;
}

bool LooksLikeText(std::istream& stream)
{
    std::array<char, 512> head{};
    stream.seekg(0);
    stream.read(head.data(), head.size());
    const auto end = head.begin() + stream.gcount();
    stream.clear();
    return std::find(head.begin(), end, '\0') == end;
}

void CheckStl(const std::string& path, std::istream& stream, std::uintmax_t size)
{
    constexpr std::uintmax_t kHeader = 84;
    constexpr std::uintmax_t kFacet = 50;
    const std::uintmax_t expected = kHeader + kFacet * ReadUint32(stream, 80);
    stream.clear();
    if (size >= kHeader && size == expected)
        return;
    stream.seekg(0);
    std::string first;
    stream >> first;
    if (LowerCase(first) == "solid" && LooksLikeText(stream)) {
        if (!LowerCase(LastLine(stream, size)).starts_with("endsolid"))
            ThrowTruncated(path, "no 'endsolid' at the end");
        return;
    }
    if (size < kHeader)
        ThrowTruncated(path, "shorter than the header of a binary STL file");
    if (size < expected)
        ThrowTruncated(path, "holds " + std::to_string((size - kHeader) / kFacet) + " of " +
                                 std::to_string((expected - kHeader) / kFacet) + " facets");
}

void CheckBinaryGltf(const std::string& path, std::istream& stream, std::uintmax_t size)
{
    constexpr std::uintmax_t kHeader = 12;
    const std::uint32_t length = ReadUint32(stream, 8);
    if (size < kHeader || size < length)
        ThrowTruncated(path, "holds " + std::to_string(size) + " of " + std::to_string(length) + " bytes");
}

/// One element of a PLY header.
struct PlyElement {
    std::uintmax_t count = 0;
    std::uintmax_t min_bytes = 0; ///< the minimum size of one element in a binary file, with empty lists
};

std::uintmax_t PlyTypeSize(const std::string& type)
{
    if (type == "char" || type == "uchar" || type == "int8" || type == "uint8")
        return 1;
    if (type == "short" || type == "ushort" || type == "int16" || type == "uint16")
        return 2;
    if (type == "double" || type == "float64")
        return 8;
    return 4;
}

struct PlyHeader {
    bool ascii = true;
    std::vector<PlyElement> elements;
};

void ReadPlyHeaderLine(PlyHeader& header, const std::string& line)
{
    std::istringstream words(line);
    std::string keyword;
    std::string type;
    words >> keyword >> type;
    if (keyword == "format")
        header.ascii = type == "ascii";
    if (keyword == "element")
        words >> header.elements.emplace_back().count;
    if (keyword != "property" || header.elements.empty())
        return;
    if (type == "list") {
        std::string count_type;
        words >> count_type;
        type = count_type;
    }
    header.elements.back().min_bytes += PlyTypeSize(type);
}

void CheckPly(const std::string& path, std::istream& stream, std::uintmax_t size)
{
    PlyHeader header;
    bool ended = false;
    stream.seekg(0);
    for (std::string line; !ended && std::getline(stream, line);) {
        ended = Trimmed(line) == "end_header";
        ReadPlyHeaderLine(header, line);
    }
    if (!ended)
        ThrowTruncated(path, "the header does not end");
    if (header.ascii) {
        std::uintmax_t expected = 0;
        for (const PlyElement& element : header.elements)
            expected += element.count;
        std::uintmax_t lines = 0;
        for (std::string line; lines < expected && std::getline(stream, line);)
            lines += Trimmed(line).empty() ? 0 : 1;
        if (lines < expected)
            ThrowTruncated(path, "holds " + std::to_string(lines) + " of " + std::to_string(expected) +
                                     " elements");
        return;
    }
    const auto body = size - static_cast<std::uintmax_t>(stream.tellg());
    std::uintmax_t expected = 0;
    for (const PlyElement& element : header.elements) {
        if (element.min_bytes != 0 && element.count > size / element.min_bytes)
            ThrowTruncated(path, "says to hold " + std::to_string(element.count) + " elements");
        expected += element.count * element.min_bytes;
    }
    if (body < expected)
        ThrowTruncated(path,
                       "holds " + std::to_string(body) + " bytes of at least " + std::to_string(expected));
}

/// The next line of an OFF file without its comment; blank lines are skipped.
std::optional<std::string> NextOffLine(std::istream& stream)
{
    for (std::string line; std::getline(stream, line);) {
        const auto content = Trimmed(std::string_view(line).substr(0, line.find('#')));
        if (!content.empty())
            return std::string(content);
    }
    return std::nullopt;
}

std::size_t CountWords(const std::string& line)
{
    std::istringstream words(line);
    std::size_t count = 0;
    for (std::string word; words >> word;)
        ++count;
    return count;
}

void CheckOff(const std::string& path, std::istream& stream)
{
    stream.seekg(0);
    auto line = NextOffLine(stream);
    if (line && LowerCase(*line).ends_with("off") && CountWords(*line) == 1)
        line = NextOffLine(stream);
    if (!line)
        ThrowTruncated(path, "no counts");
    std::istringstream words(*line);
    if (std::isalpha(static_cast<unsigned char>(line->front())) != 0) {
        std::string keyword;
        words >> keyword;
    }
    std::uintmax_t vertices = 0;
    std::uintmax_t faces = 0;
    if (!(words >> vertices >> faces))
        return;
    std::uintmax_t lines = 0;
    std::string last;
    while (lines < vertices + faces) {
        line = NextOffLine(stream);
        if (!line)
            ThrowTruncated(path, "holds " + std::to_string(lines) + " of " +
                                     std::to_string(vertices + faces) + " vertices and faces");
        last = *line;
        ++lines;
    }
    std::size_t corners = 0;
    if (faces > 0 && std::istringstream(last) >> corners && CountWords(last) < corners + 1)
        ThrowTruncated(path, "the last face is not complete");
}

void CheckReadable(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found)
        throw FileError(path, "no such file");
    if (error)
        throw FileError(path, error.message());
    if (fs::is_directory(status))
        throw FileError(path, "is a directory");
    if (!fs::is_regular_file(status))
        throw FileError(path, "is not a regular file");
}

} // namespace

void CheckModelFile(const std::string& path)
{
    CheckReadable(path);
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw FileError(path, "cannot be opened for reading");
    const std::uintmax_t size = fs::file_size(path);
    if (size == 0)
        throw FileError(path, "is empty");
    const std::string ending = LowerCaseExtension(path);
    if (ending == ".stl")
        CheckStl(path, stream, size);
    else if (ending == ".glb")
        CheckBinaryGltf(path, stream, size);
    else if (ending == ".ply")
        CheckPly(path, stream, size);
    else if (ending == ".off")
        CheckOff(path, stream);
}

} // namespace viewer
