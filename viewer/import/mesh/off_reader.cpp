#include "viewer/import/mesh/off_reader.h"

#include "viewer/import/damaged_file.h"
#include "viewer/import/mesh/model_builder.h"
#include "viewer/import/mesh/text_scanner.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

struct OffFace {
    std::vector<std::uint32_t> corners;
    std::optional<FileColor> color;
};

class OffReader
{
  public:
    OffReader(const std::string& path, const ProgressFunction& progress)
        : path_(path), progress_(progress, 0.7), text_(ReadWholeFile(path)), scanner_(text_, '#')
    {
    }

    Model Read()
    {
        ReadHeader();
        for (std::size_t i = 0; i < vertex_count_; ++i)
            ReadVertex();
        for (std::size_t i = 0; i < face_count_; ++i)
            ReadFace();
        AddParts();
        return builder_.Finish(path_);
    }

  private:
    /// Goes to the line of the next vertex or face.
    void NextLine(const char* what)
    {
        if (!scanner_.NextLine())
            ThrowTruncated(path_, std::string("not all ") + what + " are there");
        progress_.Parsed(scanner_.Fraction());
    }

    void ReadHeader()
    {
        if (!scanner_.NextLine())
            ThrowDamaged(path_, "no counts");
        std::string_view word = scanner_.Word();
        if (!ParseInteger(word)) {
            ReadKeyword(word);
            word = scanner_.WordOfText();
            if (LowerCase(word) == "binary")
                throw FileError(path_, "is a binary OFF file, which is not supported");
        }
        const auto vertices = ParseInteger(word);
        const auto faces = ParseInteger(scanner_.WordOfText());
        if (!vertices || !faces || *vertices < 0 || *faces < 0)
            ThrowDamaged(path_, "no counts");
        vertex_count_ = static_cast<std::size_t>(*vertices);
        face_count_ = static_cast<std::size_t>(*faces);
        // The minimum size of each is two bytes.
        if (vertex_count_ > text_.size() / 2 || face_count_ > text_.size() / 2)
            ThrowTruncated(path_, "fewer vertices and faces than it states");
        vertices_.reserve(vertex_count_);
        faces_.reserve(face_count_);
    }

    void ReadKeyword(std::string_view word)
    {
        if (!word.ends_with("OFF") && !word.ends_with("off"))
            ThrowDamaged(path_, "no OFF header");
        std::string_view prefix = word.substr(0, word.size() - 3);
        const auto remove = [&](std::string_view letters) {
            if (!prefix.starts_with(letters))
                return false;
            prefix.remove_prefix(letters.size());
            return true;
        };
        remove("ST");
        remove("C");
        has_normals_ = remove("N");
        has_weights_ = remove("4");
        if (!prefix.empty())
            throw FileError(path_, "is an OFF file of other than three dimensions");
    }

    void ReadVertex()
    {
        NextLine("vertices");
        constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
        const auto number = [&] { return ParseReal(scanner_.Word()).value_or(kMissing); };
        Point point;
        point.x = number();
        point.y = number();
        point.z = number();
        if (has_weights_) {
            const double weight = number();
            point = weight == 0.0 ? Point{kMissing, kMissing, kMissing} : point * (1.0 / weight);
        }
        for (int i = 0; has_normals_ && i < 3; ++i)
            scanner_.Word();
        vertices_.push_back(point);
        if (const auto color = ReadColor(false)) {
            vertex_colors_.resize(vertices_.size());
            vertex_colors_.back() = *color;
        }
    }

    void ReadFace()
    {
        NextLine("faces");
        const auto count = ParseInteger(scanner_.Word());
        if (!count || *count < 0 || static_cast<std::size_t>(*count) > text_.size())
            ThrowDamaged(path_, "a face without a count of corners");
        OffFace& face = faces_.emplace_back();
        face.corners.reserve(static_cast<std::size_t>(*count));
        for (long long i = 0; i < *count; ++i) {
            const std::string_view word = scanner_.Word();
            if (word.empty())
                ThrowTruncated(path_, "a face is not complete");
            const auto index = ParseInteger(word);
            constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
            face.corners.push_back(index && *index >= 0 && *index < kNone ? static_cast<std::uint32_t>(*index)
                                                                          : kNone);
        }
        face.color = ReadColor(true);
    }

    /// The colour of three or four numbers at the end of the line. No value for fewer numbers: a single one
    /// is an index into a list of colours that is not part of the file, two are texture coordinates.
    std::optional<FileColor> ReadColor(bool of_face)
    {
        std::array<float, 4> channels{0.0F, 0.0F, 0.0F, -1.0F};
        std::size_t count = 0;
        for (std::string_view word = scanner_.Word(); !word.empty() && count < channels.size();
             word = scanner_.Word()) {
            const auto value = ParseReal(word);
            if (!value)
                return std::nullopt;
            channels.at(count++) = static_cast<float>(*value);
        }
        const FileColor color{channels[0], channels[1], channels[2], channels[3]};
        if (count < 3 || !color.IsFinite() || std::min({color.red, color.green, color.blue}) < 0.0F)
            return std::nullopt;
        float& max = of_face ? max_of_faces_ : max_of_vertices_;
        max = std::max({max, color.red, color.green, color.blue});
        return color;
    }

    /// The colour with channels from 0 to 1. They are bytes if `max`, the maximum of all colours, is above 1.
    static FileColor Scaled(FileColor color, float max)
    {
        constexpr float kByte = 1.0F / 255.0F;
        const float factor = max > 1.0F ? kByte : 1.0F;
        const bool has_alpha = color.alpha >= 0.0F;
        color = color * FileColor{factor, factor, factor, factor};
        if (!has_alpha)
            color.alpha = 1.0F;
        return color;
    }

    FileColor ColorOf(const OffFace& face) const
    {
        if (face.color)
            return Scaled(*face.color, max_of_faces_);
        if (vertex_colors_.empty())
            return {};
        ColorMean mean;
        for (const std::uint32_t corner : face.corners)
            mean.Add(Scaled(vertex_colors_[corner], max_of_vertices_));
        return mean.Mean();
    }

    void AddParts()
    {
        if (!vertex_colors_.empty())
            vertex_colors_.resize(vertices_.size());
        if (faces_.empty())
            for (std::size_t i = 0; i < vertices_.size(); ++i)
                faces_.push_back({{static_cast<std::uint32_t>(i)}, std::nullopt});
        builder_.BeginMesh({}, faces_.size());
        for (std::size_t i = 0; i < faces_.size(); ++i) {
            AddPart(faces_[i]);
            progress_.Built(i + 1, faces_.size());
        }
    }

    void AddPart(const OffFace& face)
    {
        if (std::ranges::any_of(face.corners, [&](std::uint32_t c) { return c >= vertices_.size(); })) {
            builder_.LeaveOutDamaged();
            return;
        }
        std::vector<Point> corners;
        corners.reserve(face.corners.size());
        for (const std::uint32_t corner : face.corners)
            corners.push_back(vertices_[corner]);
        builder_.AddPart(std::move(corners), ColorOf(face));
    }

    const std::string& path_;
    ImportProgress progress_;
    std::string text_;
    TextScanner scanner_;
    bool has_normals_ = false;
    bool has_weights_ = false;
    std::size_t vertex_count_ = 0;
    std::size_t face_count_ = 0;
    std::vector<Point> vertices_;
    std::vector<FileColor> vertex_colors_; ///< empty if the file has none; negative alphas are missing
    std::vector<OffFace> faces_;
    float max_of_vertices_ = 0.0F;
    float max_of_faces_ = 0.0F;
    ModelBuilder builder_;
};

} // namespace

Model ReadOff(const std::string& path, const ProgressFunction& progress)
{
    return OffReader(path, progress).Read();
}

} // namespace viewer
