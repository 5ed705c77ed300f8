#include "viewer/import/process/model_stream.h"

#include "viewer/scene/shared_corners.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace viewer
{

namespace
{

enum class Tag : unsigned char { Progress = 'p', Model = 'm', Failure = 'f' };

constexpr std::string_view kEnd = "END.";
constexpr std::size_t kBlockSize = 65536;
constexpr unsigned kMinCorners = 3;
/// Flag in the byte of a face's corner count: the face continues the one before it.
constexpr unsigned kContinues = 0x80;

/// Whether points are equal in all their bits, so that each number arrives unchanged, also a negative zero.
struct HaveSameBits {
    bool operator()(const Point& a, const Point& b) const
    {
        using Bits = std::array<std::uint64_t, 3>;
        return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b);
    }
};

/// Reads bytes and numbers from the source, in blocks.
class ByteReader
{
  public:
    explicit ByteReader(const StreamSource& source) : source_(source), block_(kBlockSize) {}

    void Read(std::span<char> target)
    {
        while (!target.empty()) {
            if (!Refill())
                throw StreamError("it ends early");
            const std::size_t count = std::min(target.size(), end_ - next_);
            std::memcpy(target.data(), block_.data() + next_, count);
            next_ += count;
            target = target.subspan(count);
        }
    }

    template <typename Number>
    Number ReadNumber()
    {
        static_assert(std::is_arithmetic_v<Number>);
        std::array<char, sizeof(Number)> bytes{};
        Read(bytes);
        Number number{};
        std::memcpy(&number, bytes.data(), bytes.size());
        return number;
    }

    [[nodiscard]] bool IsAtEnd() { return !Refill(); }

  private:
    /// Ensures that the block has bytes. Returns false at the end of the stream.
    bool Refill()
    {
        if (next_ < end_)
            return true;
        next_ = 0;
        end_ = std::min(source_(block_), block_.size());
        return end_ > 0;
    }

    const StreamSource& source_;
    std::vector<char> block_;
    std::size_t next_ = 0;
    std::size_t end_ = 0;
};

/// Counts the memory that a model occupies, before it is allocated.
class MemoryCount
{
  public:
    explicit MemoryCount(std::size_t max) : max_(max) {}

    /// Counts a block. Throws ModelTooLarge.
    void Allocate(std::size_t bytes)
    {
        bytes += kAllocatorOverhead;
        if (bytes > max_ - used_)
            throw ModelTooLarge();
        used_ += bytes;
    }
    void Release(std::size_t bytes) { used_ -= bytes + kAllocatorOverhead; }

  private:
    /// Per block, at most: a header of 8 or 16 bytes, and the size rounded up to 16 bytes.
    static constexpr std::size_t kAllocatorOverhead = 32;

    std::size_t max_;
    std::size_t used_ = 0;
};

class ModelReader
{
  public:
    ModelReader(const StreamSource& source, const ProgressFunction& progress, std::size_t max_memory)
        : bytes_(source), progress_(progress), memory_(max_memory)
    {
    }

    Model Read()
    {
        ExpectText(kStreamMagic, "it is none");
        if (bytes_.ReadNumber<std::uint32_t>() != kStreamVersion)
            throw StreamError("it is of another version");
        for (;;) {
            switch (static_cast<Tag>(bytes_.ReadNumber<unsigned char>())) {
            case Tag::Progress:
                ReadProgress();
                break;
            case Tag::Failure:
                ReadFailure();
            case Tag::Model: {
                Model model = ReadModel();
                ExpectEnd();
                return model;
            }
            default:
                throw StreamError("it holds an unknown record");
            }
        }
    }

  private:
    void ExpectText(std::string_view expected, const char* otherwise)
    {
        std::array<char, kStreamMagic.size()> text{};
        const std::span<char> read = std::span(text).first(expected.size());
        bytes_.Read(read);
        if (!std::ranges::equal(read, expected))
            throw StreamError(otherwise);
    }

    void ExpectEnd()
    {
        ExpectText(kEnd, "it does not end where it should");
        if (!bytes_.IsAtEnd())
            throw StreamError("it goes on after its end");
    }

    void ReadProgress()
    {
        const double fraction = ReadFinite<double>();
        if (fraction < 0.0 || fraction > 1.0)
            throw StreamError("it holds a progress that is not between 0 and 1");
        if (progress_)
            progress_(fraction);
    }

    [[noreturn]] void ReadFailure()
    {
        const std::string reason = ReadText();
        ExpectEnd();
        throw ReportedFailure(reason);
    }

    template <typename Number>
    Number ReadFinite()
    {
        const Number number = bytes_.ReadNumber<Number>();
        if (!std::isfinite(number))
            throw StreamError("it holds a number that is not finite");
        return number;
    }

    std::string ReadText()
    {
        const std::size_t size = bytes_.ReadNumber<std::uint32_t>();
        if (size > kMaxStreamText)
            throw StreamError("it holds a text that is too long");
        // Short texts are stored in the object.
        if (size > std::string().capacity())
            memory_.Allocate(size + 1);
        std::string text(size, '\0');
        bytes_.Read(text);
        return text;
    }

    /// Reads items one by one. The count is not trusted: the list starts small and its capacity doubles as
    /// items arrive.
    template <typename Item>
    std::vector<Item> ReadItems(Item (ModelReader::*read)())
    {
        const auto count = bytes_.ReadNumber<std::uint64_t>();
        std::vector<Item> items;
        while (items.size() < count) {
            if (items.size() == items.capacity())
                Grow(items, count);
            items.push_back((this->*read)());
        }
        return items;
    }

    /// Makes room for more items of a list that will hold `count`, and counts it. While the items move, both
    /// blocks exist.
    template <typename Item>
    void Grow(std::vector<Item>& items, std::uint64_t count)
    {
        constexpr std::size_t kMinCapacity = 64;
        const std::size_t before = items.capacity();
        const std::size_t doubled = std::max(kMinCapacity, 2 * before);
        const auto capacity = static_cast<std::size_t>(std::min<std::uint64_t>(count, doubled));
        memory_.Allocate(capacity * sizeof(Item));
        items.reserve(capacity);
        if (before > 0)
            memory_.Release(before * sizeof(Item));
    }

    Point ReadPoint()
    {
        // Braces evaluate their elements from left to right.
        return Point{ReadFinite<double>(), ReadFinite<double>(), ReadFinite<double>()};
    }

    Segment ReadSegment() { return Segment{ReadPoint(), ReadPoint()}; }

    ModelFace ReadFace()
    {
        constexpr double kTolerance = 1e-6;
        const unsigned mark = bytes_.ReadNumber<unsigned char>();
        const std::size_t count = mark & ~kContinues;
        if (count < kMinCorners)
            throw StreamError("it holds a face of under three corners");
        if (count > kMaxStreamCorners)
            throw StreamError("it holds a face of too many corners");
        ModelFace face;
        face.continues = (mark & kContinues) != 0;
        memory_.Allocate(count * sizeof(Point));
        face.corners.reserve(count);
        while (face.corners.size() < count) {
            const auto number = bytes_.ReadNumber<std::uint32_t>();
            if (number >= points_.size())
                throw StreamError("it holds a corner that is none of the points");
            face.corners.push_back(points_[number]);
        }
        // Braces evaluate their elements from left to right.
        face.normal = Point{ReadFinite<float>(), ReadFinite<float>(), ReadFinite<float>()};
        if (std::abs(Length(face.normal) - 1.0) > kTolerance)
            throw StreamError("it holds a normal that is not of unit length");
        return face;
    }

    Piece ReadPiece()
    {
        Piece piece;
        piece.name = ReadText();
        piece.parents = ReadItems(&ModelReader::ReadText);
        points_ = ReadItems(&ModelReader::ReadPoint);
        piece.faces = ReadItems(&ModelReader::ReadFace);
        FreePoints();
        if (!piece.faces.empty() && piece.faces.front().continues)
            throw StreamError("it holds a face that continues none");
        piece.two_sided = ReadFlag();
        piece.closes_with_others = ReadFlag();
        if (ReadFlag())
            piece.edges = ReadItems(&ModelReader::ReadSegment);
        piece.lines = ReadItems(&ModelReader::ReadSegment);
        piece.category = bytes_.ReadNumber<std::int32_t>();
        if (piece.category < 0)
            throw StreamError("it holds a category that is out of range");
        piece.color = bytes_.ReadNumber<unsigned char>();
        piece.alpha = ReadFinite<float>();
        if (piece.alpha < 0.0F || piece.alpha > 1.0F)
            throw StreamError("it holds an opacity that is not between 0 and 1");
        return piece;
    }

    void FreePoints()
    {
        if (points_.capacity() > 0)
            memory_.Release(points_.capacity() * sizeof(Point));
        std::vector<Point>().swap(points_);
    }

    LeftOut ReadLeftOut()
    {
        LeftOut parts;
        parts.kind = ReadText();
        parts.count = bytes_.ReadNumber<std::uint64_t>();
        return parts;
    }

    /// Each category has a name or a piece, so that the time and memory of what counts categories is
    /// proportional to the length of the stream.
    static void CheckCategories(const Model& model)
    {
        if (model.category_names.size() > kMaxStreamCategories)
            throw StreamError("it holds names of more categories than there can be");
        const std::size_t count =
            std::min(kMaxStreamCategories, model.pieces.size() + model.category_names.size());
        for (const Piece& piece : model.pieces)
            if (static_cast<std::size_t>(piece.category) >= count)
                throw StreamError("it holds a category that is out of range");
    }

    bool ReadFlag()
    {
        const auto flag = bytes_.ReadNumber<unsigned char>();
        if (flag > 1)
            throw StreamError("it holds a flag that is neither 0 nor 1");
        return flag == 1;
    }

    Model ReadModel()
    {
        Model model;
        model.title = ReadText();
        model.pieces = ReadItems(&ModelReader::ReadPiece);
        model.category_names = ReadItems(&ModelReader::ReadText);
        CheckCategories(model);
        if (ReadFlag()) {
            model.meters_per_unit = ReadFinite<double>();
            if (*model.meters_per_unit <= 0.0)
                throw StreamError("it holds a unit without a length");
        }
        for (const LeftOut& parts : ReadItems(&ModelReader::ReadLeftOut))
            model.LeaveOut(parts.kind, parts.count);
        return model;
    }

    ByteReader bytes_;
    const ProgressFunction& progress_;
    MemoryCount memory_;
    std::vector<Point> points_; ///< of the piece that is read
};

} // namespace

ModelStreamWriter::ModelStreamWriter(const Sink& sink) : sink_(sink)
{
    Put(kStreamMagic);
    PutNumber(kStreamVersion);
}

void ModelStreamWriter::Put(std::span<const char> bytes)
{
    block_.append(bytes.data(), bytes.size());
    if (block_.size() >= kBlockSize)
        Finish();
}

template <typename Number>
void ModelStreamWriter::PutNumber(Number number)
{
    static_assert(std::is_arithmetic_v<Number>);
    std::array<char, sizeof(Number)> bytes{};
    std::memcpy(bytes.data(), &number, bytes.size());
    Put(bytes);
}

void ModelStreamWriter::PutCount(std::size_t count)
{
    PutNumber(static_cast<std::uint64_t>(count));
}

void ModelStreamWriter::PutText(std::string_view text)
{
    text = text.substr(0, kMaxStreamText);
    PutNumber(static_cast<std::uint32_t>(text.size()));
    Put(text);
}

void ModelStreamWriter::PutPoint(const Point& point)
{
    PutNumber(point.x);
    PutNumber(point.y);
    PutNumber(point.z);
}

void ModelStreamWriter::PutSegments(const std::vector<Segment>& segments)
{
    PutCount(segments.size());
    for (const Segment& segment : segments) {
        PutPoint(segment.from);
        PutPoint(segment.to);
    }
}

void ModelStreamWriter::PutFaces(const std::vector<ModelFace>& faces)
{
    std::unordered_map<Point, std::uint32_t, PointHash, HaveSameBits> numbers;
    std::vector<Point> points;
    for (const ModelFace& face : faces)
        for (const Point& corner : face.corners)
            if (numbers.emplace(corner, static_cast<std::uint32_t>(points.size())).second)
                points.push_back(corner);
    PutCount(points.size());
    for (const Point& point : points)
        PutPoint(point);
    PutCount(faces.size());
    for (const ModelFace& face : faces) {
        const auto count = static_cast<unsigned>(std::min<std::size_t>(face.corners.size(), kContinues - 1));
        PutNumber(static_cast<unsigned char>(face.continues ? count | kContinues : count));
        for (const Point& corner : face.corners)
            PutNumber(numbers.at(corner));
        for (const double coordinate : {face.normal.x, face.normal.y, face.normal.z})
            // A component above 1 is refused by the reading side, but may exceed the range of float.
            PutNumber(static_cast<float>(std::clamp(coordinate, -2.0, 2.0)));
    }
}

void ModelStreamWriter::PutPiece(const Piece& piece)
{
    PutText(piece.name);
    PutCount(piece.parents.size());
    for (const std::string& parent : piece.parents)
        PutText(parent);
    PutFaces(piece.faces);
    PutNumber(static_cast<unsigned char>(piece.two_sided ? 1 : 0));
    PutNumber(static_cast<unsigned char>(piece.closes_with_others ? 1 : 0));
    PutNumber(static_cast<unsigned char>(piece.edges ? 1 : 0));
    if (piece.edges)
        PutSegments(*piece.edges);
    PutSegments(piece.lines);
    PutNumber(static_cast<std::int32_t>(piece.category));
    PutNumber(piece.color);
    PutNumber(piece.alpha);
}

void ModelStreamWriter::WriteProgress(double fraction)
{
    PutNumber(static_cast<unsigned char>(Tag::Progress));
    PutNumber(std::isnan(fraction) ? 0.0 : std::clamp(fraction, 0.0, 1.0));
    Finish();
}

void ModelStreamWriter::WriteModel(const Model& model)
{
    PutNumber(static_cast<unsigned char>(Tag::Model));
    PutText(model.title);
    PutCount(model.pieces.size());
    for (const Piece& piece : model.pieces)
        PutPiece(piece);
    PutCount(model.category_names.size());
    for (const std::string& name : model.category_names)
        PutText(name);
    PutNumber(static_cast<unsigned char>(model.meters_per_unit ? 1 : 0));
    if (model.meters_per_unit)
        PutNumber(*model.meters_per_unit);
    PutCount(model.left_out.size());
    for (const LeftOut& parts : model.left_out) {
        PutText(parts.kind);
        PutNumber(static_cast<std::uint64_t>(parts.count));
    }
    Put(kEnd);
    Finish();
}

void ModelStreamWriter::WriteFailure(std::string_view reason)
{
    PutNumber(static_cast<unsigned char>(Tag::Failure));
    PutText(reason);
    Put(kEnd);
    Finish();
}

void ModelStreamWriter::Finish()
{
    sink_(block_);
    block_.clear();
}

Model ReadModelStream(const StreamSource& source, const ProgressFunction& progress, std::size_t max_memory)
{
    return ModelReader(source, progress, max_memory).Read();
}

} // namespace viewer
