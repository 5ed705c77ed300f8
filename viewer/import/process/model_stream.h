// What crosses from the process that parses a file to the one that shows it: progress, and then a model or
// the reason why there is none, as bytes. The reader believes nothing that it reads. It knows nothing of
// processes, pipes or files.
//
// A stream is the magic bytes, the version, and records: a tag of one byte and what it says. Numbers stand as
// they do in memory, because both ends are one program; counts have eight bytes, sizes of texts four. After
// the model or the failure come the bytes of the end, and nothing more.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace viewer
{

inline constexpr std::string_view kStreamMagic = "KARVMODL";
inline constexpr std::uint32_t kStreamVersion = 1;

/// No text of a stream is longer, in bytes; longer ones are cut when they are written.
inline constexpr std::size_t kMaxStreamText = 65536;
/// No category of a stream is higher.
inline constexpr int kMaxStreamCategory = 16'777'216;

/// Writes a stream, record by record. What it throws comes from its sink.
class ModelStreamWriter
{
  public:
    using Sink = std::function<void(std::span<const char> bytes)>;

    /// Writes magic and version. The sink must outlive the object; it gets blocks of some size, and all that
    /// is written when a record is complete.
    explicit ModelStreamWriter(const Sink& sink);

    /// From 0 to 1.
    void WriteProgress(double fraction);
    /// Ends the stream with a model. Nothing may be written after it.
    void WriteModel(const Model& model);
    /// Ends the stream with the reason why there is no model. Nothing may be written after it.
    void WriteFailure(std::string_view reason);

  private:
    void Put(std::span<const char> bytes);
    template <typename Number>
    void PutNumber(Number number);
    void PutCount(std::size_t count);
    void PutText(std::string_view text);
    void PutPoint(const Point& point);
    void PutSegments(const std::vector<Segment>& segments);
    void PutPiece(const Piece& piece);
    void Finish();

    const Sink& sink_;
    std::string block_;
};

/// A stream is not what it must be; the text says how, in half a sentence.
class StreamError : public std::runtime_error
{
  public:
    explicit StreamError(const std::string& reason) : std::runtime_error(reason) {}
};

/// The writer of the stream gave up; the text is its reason.
class ReportedFailure : public std::runtime_error
{
  public:
    explicit ReportedFailure(const std::string& reason) : std::runtime_error(reason) {}
};

/// Fills the front of `buffer` with the next bytes and returns their number, 0 only at the end.
using StreamSource = std::function<std::size_t(std::span<char> buffer)>;

/// Reads a whole stream, to its very end, and passes its progress on. Memory grows with the bytes that have
/// arrived, never with what they promise.
///
/// Throws ReportedFailure where the stream ends with one; StreamError for a wrong magic or version, an
/// unknown tag, numbers out of their range or not finite, faces of under three corners or whose normal is not
/// of unit length, texts that are too long, a stream that ends early and one that does not end where it
/// should. What the source and `progress` throw passes through.
[[nodiscard]] Model ReadModelStream(const StreamSource& source, const ProgressFunction& progress = {});

} // namespace viewer
