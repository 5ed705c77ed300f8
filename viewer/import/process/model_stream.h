// The byte stream from karv-reader to its client: progress, then a model or the reason why there is none. The
// reading side validates everything. Processes and pipes are handled elsewhere.
//
// A stream consists of the magic bytes, the version and records. A record is a tag of one byte and its
// content. Numbers have the machine's representation, because both processes run on one machine. Counts have
// eight bytes, sizes of texts four. The faces of a piece name their corners by number, in a table of the
// piece's points; their normals are in single precision. The end mark follows the model or the failure, and
// nothing follows the end mark.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/face_filling.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace viewer
{

/// The first bytes of a stream.
inline constexpr std::string_view kStreamMagic = "KARVMODL";
/// The version of the format. A reader and a client of different versions refuse each other's streams.
inline constexpr std::uint32_t kStreamVersion = 3;

/// The maximum length of a text in bytes. Longer texts are cut when they are written.
inline constexpr std::size_t kMaxStreamText = 65536;
/// The maximum number of categories.
inline constexpr std::size_t kMaxStreamCategories = 16'777'216;
/// The maximum number of corners of a face. It keeps the time that a client needs for a model proportional to
/// the length of its stream.
inline constexpr std::size_t kMaxStreamCorners = kMaxPartCorners;

/// Writes a stream, record by record. It throws only exceptions of its sink.
class ModelStreamWriter
{
  public:
    using Sink = std::function<void(std::span<const char> bytes)>;

    /// Writes magic bytes and version. The sink must outlive the object. It gets blocks of about 64 KiB, and
    /// the rest at the end of each record.
    explicit ModelStreamWriter(const Sink& sink);

    /// Writes the fraction that is done. It is clamped to 0..1; NaN becomes 0.
    void WriteProgress(double fraction);
    /// Writes a model, which ends the stream. Nothing may be written after it. The reading side refuses faces
    /// of more than `kMaxStreamCorners` corners.
    void WriteModel(const Model& model);
    /// Writes the reason why there is no model, which ends the stream. Nothing may be written after it.
    void WriteFailure(std::string_view reason);

  private:
    void Put(std::span<const char> bytes);
    template <typename Number>
    void PutNumber(Number number);
    void PutCount(std::size_t count);
    void PutText(std::string_view text);
    void PutPoint(const Point& point);
    void PutSegments(const std::vector<Segment>& segments);
    void PutFaces(const std::vector<ModelFace>& faces);
    void PutPiece(const Piece& piece);
    void Finish();

    const Sink& sink_;
    std::string block_;
};

/// A stream is damaged. The text is the reason, as a clause about "it".
class StreamError : public std::runtime_error
{
  public:
    explicit StreamError(const std::string& reason) : std::runtime_error(reason) {}
};

/// The stream contains a failure instead of a model. The text is its reason.
class ReportedFailure : public std::runtime_error
{
  public:
    explicit ReportedFailure(const std::string& reason) : std::runtime_error(reason) {}
};

/// The model of a stream needs more memory than the caller of `ReadModelStream` allows.
class ModelTooLarge : public std::runtime_error
{
  public:
    ModelTooLarge() : std::runtime_error("it holds a model that needs more memory than allowed") {}
};

/// Writes the next bytes to the front of `buffer` and returns their number; 0 only at the end.
using StreamSource = std::function<std::size_t(std::span<char> buffer)>;

/// Reads a whole stream, up to its end, and forwards its progress.
///
/// `max_memory` limits the bytes that the model occupies while it is built: its lists with their capacity,
/// both blocks of a list that grows, long texts, and what the allocator adds to each block. An empty text has
/// 4 bytes in the stream and 32 in memory, so the length of the stream limits nothing. Memory grows with the
/// bytes that have arrived, not with the counts that the stream states.
///
/// Throws ReportedFailure if the stream contains a failure, and ModelTooLarge before the limit is exceeded.
/// Throws StreamError for wrong magic bytes, another version, an unknown tag, a number that is out of range
/// or not finite, a category that has neither a name nor a piece, a face of fewer than three or more than
/// `kMaxStreamCorners` corners or with a normal that is not of unit length, a text that is too long, a stream
/// that ends early, and bytes after the end mark. Exceptions of `source` and `progress` pass through.
[[nodiscard]] Model ReadModelStream(const StreamSource& source, const ProgressFunction& progress = {},
                                    std::size_t max_memory = std::numeric_limits<std::size_t>::max());

} // namespace viewer
