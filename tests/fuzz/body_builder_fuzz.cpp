// Builds a body from any bytes: it closes, or there is a reason why it does not.
//
// Each call begins with a byte that chooses it: add a point, whose coordinates are the next bytes, begin a
// face or a loop, end one, or add a corner.
#include "platform/modeler/body_builder.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

namespace
{

using AModeler::BodyBuilder;

/// Splitting a face is quadratic in its corners; longer inputs would only be slow.
constexpr std::size_t kMaxBytes = 4096;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

class Bytes
{
  public:
    explicit Bytes(std::span<const std::uint8_t> bytes) : left_(bytes) {}

    [[nodiscard]] bool IsAtEnd() const { return left_.empty(); }
    /// The next byte; 0 past the end.
    std::uint8_t Next()
    {
        if (left_.empty())
            return 0;
        const std::uint8_t byte = left_.front();
        left_ = left_.subspan(1);
        return byte;
    }
    /// Mostly small numbers, so that points coincide and faces are flat; sometimes any number.
    double NextCoordinate()
    {
        constexpr std::uint8_t kAnyNumber = 255;
        const std::uint8_t byte = Next();
        if (byte != kAnyNumber)
            return static_cast<double>(static_cast<std::int8_t>(byte)) / 8.0;
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < sizeof bits; ++i)
            bits = bits << 8U | Next();
        return std::bit_cast<double>(bits);
    }

  private:
    std::span<const std::uint8_t> left_;
};

void Fill(BodyBuilder& builder, Bytes& bytes)
{
    while (!bytes.IsAtEnd()) {
        const std::uint8_t what = bytes.Next();
        switch (what % 8) {
        case 0: {
            const double x = bytes.NextCoordinate();
            const double y = bytes.NextCoordinate();
            const double z = bytes.NextCoordinate();
            builder.AddPoint({x, y, z});
            break;
        }
        case 1:
            builder.BeginFace();
            builder.BeginLoop();
            break;
        case 2:
            builder.BeginLoop();
            break;
        case 3:
            builder.EndLoop();
            break;
        case 4: {
            std::vector<int> outline;
            for (int i = 3 + what / 32; i > 0; --i)
                outline.push_back(bytes.Next());
            builder.AddFace(outline);
            break;
        }
        case 5:
            builder.BeginFace();
            break;
        default:
            // Indices of points that do not exist are included.
            builder.AddCorner(static_cast<std::int8_t>(bytes.Next()));
        }
    }
}

/// Checks what every user of a body relies on: loops close, and each edge has its partner.
void CheckBody(AModeler::Body& body)
{
    int faces = 0;
    for (AModeler::Face* face = body.faceList(); face != nullptr; face = face->next()) {
        ++faces;
        Require(face->edgeCount() >= 3);
        const AModeler::Edge* edge = face->edgeLoop();
        for (int i = 0; i < face->edgeCount(); ++i, edge = edge->next()) {
            Require(edge->face() == face);
            Require(edge->partner() != nullptr && edge->partner()->partner() == edge);
            Require(edge->partner() != edge);
            Require(edge->vertex() == edge->partner()->next()->vertex());
            Require(edge->isPhysical() == edge->partner()->isPhysical());
        }
        Require(edge == face->edgeLoop());
        face->evaluatePlane();
    }
    Require(faces == body.faceCount());
    constexpr double kAngle = 20.0;
    body.markSmoothEdges(kAngle);
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    Require(edges.empty() == vertices.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0 || size > kMaxBytes)
        return 0;
    Bytes bytes(std::span(data, size));
    try {
        BodyBuilder builder;
        Fill(builder, bytes);
        AModeler::Body body = builder.Build();
        CheckBody(body);
    } catch (const AModeler::BodyError&) {
    }
    return 0;
}
