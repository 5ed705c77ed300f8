#include "viewer/import/process/model_stream.h"

#include "tests/viewer/import/process/stream_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The reason why the bytes are refused; empty if they are not.
std::string ReasonFor(const std::string& bytes)
{
    try {
        static_cast<void>(ReadModelStream(SourceOf(bytes)));
    } catch (const StreamError& error) {
        return error.what();
    }
    return {};
}

/// Replaces the bytes of a value, which must occur once, by those of another.
std::string Replaced(std::string bytes, const std::string& from, const std::string& to)
{
    const std::size_t place = bytes.find(from);
    EXPECT_NE(place, std::string::npos);
    EXPECT_EQ(bytes.find(from, place + 1), std::string::npos);
    return bytes.replace(place, from.size(), to);
}

/// A model with one piece, of these faces.
Model ModelOf(std::vector<ModelFace> faces)
{
    Model model;
    model.pieces.push_back(MakePiece("", std::move(faces)));
    return model;
}

/// A triangle of three different corners.
ModelFace Triangle()
{
    return MakeFace({{1, 0, 0}, {2, 0, 0}, {2, 1, 0}}).value();
}

/// The stream of a model with one value that occurs once.
std::string WithLine(double x)
{
    Model model;
    model.pieces.emplace_back().lines = {{{x, 0, 0}, {0, 0, 0}}};
    return StreamOf(model);
}

TEST(ModelStream, EveryPartOfAModelArrives)
{
    const Model sent = SampleModel();
    for (const std::size_t block : {std::size_t{1}, std::size_t{7}, std::size_t{65536}}) {
        const Model model = ReadModelStream(SourceOf(StreamOf(sent), block));
        EXPECT_EQ(model.title, "sample.step");
        EXPECT_EQ(model.meters_per_unit, 0.001);
        EXPECT_THAT(model.category_names, ElementsAre("steel", "", "brass"));
        ASSERT_THAT(model.pieces, SizeIs(2));
        const Piece& plate = model.pieces[0];
        EXPECT_EQ(plate.name, "plate");
        EXPECT_THAT(plate.parents, ElementsAre("machine", "frame"));
        EXPECT_TRUE(plate.two_sided);
        EXPECT_FALSE(plate.closes_with_others);
        ASSERT_THAT(plate.faces, SizeIs(2));
        EXPECT_FALSE(plate.faces[0].continues);
        EXPECT_TRUE(plate.faces[1].continues);
        EXPECT_THAT(plate.faces[1].corners,
                    ElementsAre(Point{0, 0.25, 0}, Point{0, 0.125, 0}, Point{1e9, 0, 0}));
        EXPECT_THAT(plate.faces[0].corners,
                    ElementsAre(Point{0, 0.125, 0}, Point{1e9, 0, 0}, Point{0, 0, 0}));
        EXPECT_EQ(plate.faces[0].normal, (Point{0, 0, 1})) << "in single precision";
        ASSERT_THAT(plate.edges.value(), SizeIs(1));
        EXPECT_EQ(plate.edges->front().to, (Point{1e9, 0, 0}));
        EXPECT_THAT(plate.lines, IsEmpty());
        EXPECT_EQ(plate.category, 2);
        EXPECT_EQ(plate.color, 255);
        EXPECT_EQ(plate.alpha, 0.5F);
        const Piece& wires = model.pieces[1];
        EXPECT_FALSE(wires.two_sided);
        EXPECT_TRUE(wires.closes_with_others);
        EXPECT_FALSE(wires.edges) << "none is not the same as an empty list";
        ASSERT_THAT(wires.lines, SizeIs(2));
        EXPECT_EQ(wires.lines[0].from, (Point{-1, -2, -3}));
        EXPECT_EQ(wires.lines[1].to, (Point{1e-300, 0, 0}));
        ASSERT_THAT(model.left_out, SizeIs(2));
        EXPECT_EQ(model.left_out[0].kind, "TEXT");
        EXPECT_EQ(model.left_out[0].count, 3U);
        EXPECT_EQ(model.left_out[1].kind, "3DSOLID");
        EXPECT_EQ(model.left_out[1].count, 1U);
    }
}

TEST(ModelStream, EmptyModelAndEmptyListOfEdgesArrive)
{
    EXPECT_THAT(ReadModelStream(SourceOf(StreamOf(Model{}))).pieces, IsEmpty());
    Model model;
    model.pieces.emplace_back().edges.emplace();
    const Model arrived = ReadModelStream(SourceOf(StreamOf(model)));
    ASSERT_TRUE(arrived.pieces.at(0).edges);
    EXPECT_THAT(*arrived.pieces[0].edges, IsEmpty());
}

TEST(ModelStream, ModelOfManyBlocksArrives)
{
    Model model;
    constexpr int kFaces = 20'000;
    for (int i = 0; i < kFaces; ++i) {
        const double x = i;
        Piece& piece = model.pieces.empty() ? model.pieces.emplace_back() : model.pieces.front();
        piece.faces.push_back(MakeFace({{x, 0, 0}, {x + 1, 0, 0}, {x, 1, 0}}).value());
    }
    const Model arrived = ReadModelStream(SourceOf(StreamOf(model)));
    ASSERT_THAT(arrived.pieces.at(0).faces, SizeIs(kFaces));
    EXPECT_EQ(arrived.pieces[0].faces.back().corners.at(1), (Point{kFaces, 0, 0}));
}

TEST(ModelStream, ProgressArrivesBeforeTheModelAndIsKeptBetweenNothingAndOne)
{
    StreamBytes stream;
    stream.Writer().WriteProgress(0.25);
    stream.Writer().WriteProgress(-1.0);
    stream.Writer().WriteProgress(7.0);
    stream.Writer().WriteProgress(std::nan(""));
    stream.Writer().WriteModel(SampleModel());
    std::vector<double> seen;
    const Model model =
        ReadModelStream(SourceOf(stream.Bytes()), [&](double fraction) { seen.push_back(fraction); });
    EXPECT_THAT(seen, ElementsAre(0.25, 0.0, 1.0, 0.0));
    EXPECT_THAT(model.pieces, SizeIs(2));
    EXPECT_THAT(ReadModelStream(SourceOf(stream.Bytes())).pieces, SizeIs(2)) << "without anybody to tell";
}

TEST(ModelStream, WhatIsWrittenIsThereAtOnce)
{
    StreamBytes stream;
    const std::size_t before = stream.Bytes().size();
    stream.Writer().WriteProgress(0.5);
    EXPECT_GE(stream.Bytes().size(), before + 1 + sizeof(double));
}

TEST(ModelStream, FailureArrivesWithItsReason)
{
    StreamBytes stream;
    stream.Writer().WriteProgress(0.5);
    stream.Writer().WriteFailure("line 7: no such layer");
    try {
        static_cast<void>(ReadModelStream(SourceOf(stream.Bytes())));
        FAIL() << "there is no model";
    } catch (const ReportedFailure& failure) {
        EXPECT_STREQ(failure.what(), "line 7: no such layer");
    }
}

TEST(ModelStream, TextsThatAreTooLongAreCutWhenTheyAreWritten)
{
    Model model;
    model.title = std::string(kMaxStreamText + 1, 'x');
    EXPECT_EQ(ReadModelStream(SourceOf(StreamOf(model))).title, std::string(kMaxStreamText, 'x'));
}

TEST(ModelStream, EveryBeginningIsRefused)
{
    const std::string whole = StreamOf(SampleModel());
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(ReasonFor(whole.substr(0, size)), "it ends early") << size;
    EXPECT_EQ(ReasonFor(whole), "");
}

TEST(ModelStream, OtherMagicOrVersionIsRefused)
{
    const std::string whole = StreamOf(Model{});
    EXPECT_EQ(ReasonFor("karvmodl" + whole.substr(8)), "it is none");
    EXPECT_EQ(ReasonFor(Replaced(whole, BytesOf(kStreamVersion), BytesOf(kStreamVersion + 1))),
              "it is of another version");
}

TEST(ModelStream, UnknownRecordIsRefused)
{
    const std::string start(StreamOf(Model{}).substr(0, kStreamMagic.size() + sizeof kStreamVersion));
    EXPECT_EQ(ReasonFor(start + "x"), "it holds an unknown record");
    EXPECT_EQ(ReasonFor(start + '\0'), "it holds an unknown record");
}

TEST(ModelStream, BytesAfterTheEndAreRefused)
{
    EXPECT_EQ(ReasonFor(StreamOf(SampleModel()) + '\0'), "it goes on after its end");
    EXPECT_EQ(ReasonFor(StreamOf(Model{}) + StreamOf(Model{})), "it goes on after its end");
    EXPECT_EQ(ReasonFor(Replaced(StreamOf(Model{}), "END.", "END,")), "it does not end where it should");
}

TEST(ModelStream, CoordinatesThatAreNotFiniteAreRefused)
{
    const double sample = 123.5;
    for (const double bad :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(ReasonFor(Replaced(WithLine(sample), BytesOf(sample), BytesOf(bad))),
                  "it holds a number that is not finite");
}

TEST(ModelStream, PromisesOfMoreThanThereIsCostNothing)
{
    // The count of lines is 2^64 - 1, with bytes for a few.
    Model model;
    model.pieces.emplace_back().lines = {{{1, 2, 3}, {4, 5, 6}}};
    const std::string line = BytesOf(1.0) + BytesOf(2.0);
    const std::string whole = StreamOf(model);
    const std::string promising = Replaced(whole, BytesOf(std::uint64_t{1}) + line,
                                           BytesOf(std::numeric_limits<std::uint64_t>::max()) + line);
    EXPECT_NE(ReasonFor(promising), "");
}

constexpr std::size_t kManyItems = 10'000;

/// A model with many items of one kind, and the least memory that they occupy.
struct Bulk {
    std::string name;
    Model model;
    std::size_t min_bytes;
};

Bulk BulkOfPieces(const std::string& name, std::size_t min_bytes, const Piece& piece)
{
    Model model;
    model.pieces.assign(kManyItems, piece);
    return {name, model, kManyItems * min_bytes};
}

std::vector<Bulk> Bulks()
{
    const Segment segment{{0, 0, 0}, {1, 0, 0}};
    const ModelFace triangle = MakeFace({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).value();
    Piece edges;
    edges.edges.emplace(1, segment);
    Piece lines;
    lines.lines = {segment};
    Piece parents;
    parents.parents = {""};
    Piece long_name;
    long_name.name = std::string(100, 'x');
    Model names;
    names.category_names.resize(kManyItems);
    ModelFace polygon = triangle;
    polygon.corners.resize(kMaxStreamCorners);
    const Model corners = ModelOf(std::vector(kManyItems, polygon));
    Model points;
    points.pieces.resize(1);
    for (std::size_t i = 0; i < kManyItems; ++i) {
        const double x = static_cast<double>(i) + 1.0;
        points.pieces[0].faces.push_back(MakeFace({{x, 0, 0}, {0, x, 0}, {0, 0, x}}).value());
    }
    return {
        {"empty names", names, kManyItems * sizeof(std::string)},
        BulkOfPieces("empty pieces", sizeof(Piece), Piece{}),
        BulkOfPieces("edges", sizeof(Piece) + sizeof(Segment), edges),
        BulkOfPieces("lines", sizeof(Piece) + sizeof(Segment), lines),
        BulkOfPieces("parents", sizeof(Piece) + sizeof(std::string), parents),
        BulkOfPieces("long names", sizeof(Piece) + 101, long_name),
        BulkOfPieces("triangles", sizeof(Piece) + sizeof(ModelFace) + 3 * sizeof(Point),
                     MakePiece("", {triangle})),
        {"corners", corners, kManyItems * (sizeof(ModelFace) + kMaxStreamCorners * sizeof(Point))},
        {"points", points,
         kManyItems * (sizeof(ModelFace) + 3 * sizeof(Point)) + 3 * kManyItems * sizeof(Point)},
    };
}

TEST(ModelStreamMemory, ModelThatOccupiesMoreThanAllowedIsRefused)
{
    for (const Bulk& bulk : Bulks()) {
        const std::string bytes = StreamOf(bulk.model);
        EXPECT_THROW(static_cast<void>(ReadModelStream(SourceOf(bytes), {}, bulk.min_bytes)), ModelTooLarge)
            << bulk.name;
    }
}

TEST(ModelStreamMemory, ModelThatOccupiesLessThanAllowedArrives)
{
    // Both blocks of a list that grows, and 32 bytes for each of at most five blocks of an item.
    for (const Bulk& bulk : Bulks())
        EXPECT_NO_THROW(static_cast<void>(
            ReadModelStream(SourceOf(StreamOf(bulk.model)), {}, 2 * bulk.min_bytes + kManyItems * 5 * 32)))
            << bulk.name;
}

TEST(ModelStreamMemory, ListThatGrewOccupiesItsLastBlockOnly)
{
    constexpr std::size_t kLists = 20;
    constexpr std::size_t kLength = 8192;
    Model model;
    model.pieces.resize(kLists);
    for (Piece& piece : model.pieces)
        piece.lines.resize(kLength);
    // All lists stay, but not the blocks that they grew out of, which together are as long.
    const std::size_t last_blocks = kLists * kLength * sizeof(Segment);
    // While the last list grows, half of it is there in addition.
    const std::size_t allowed = last_blocks + kLength * sizeof(Segment) / 2 + 100'000;
    EXPECT_EQ(ReadModelStream(SourceOf(StreamOf(model)), {}, allowed).pieces.size(), kLists);
}

TEST(ModelStreamMemory, CapacityIsRefusedBeforeItIsAllocated)
{
    // The list of names doubles until the limit: both blocks of the next step would exceed it.
    constexpr std::size_t kLimit = 1U << 20U;
    Model model;
    model.category_names.resize(1'000'000);
    const std::string bytes = StreamOf(model);
    std::size_t sent = 0;
    const StreamSource source = [inner = SourceOf(bytes, 4096), &sent](std::span<char> buffer) mutable {
        const std::size_t count = inner(buffer);
        sent += count;
        return count;
    };
    EXPECT_THROW(static_cast<void>(ReadModelStream(source, {}, kLimit)), ModelTooLarge);
    // No more names arrive than the limit has room for.
    EXPECT_LE(sent / sizeof(std::uint32_t), kLimit / sizeof(std::string) + 4096);
}

TEST(ModelStream, TextLongerThanAllowedIsRefused)
{
    Model model;
    model.title = "title";
    const std::string bytes = StreamOf(model);
    EXPECT_EQ(ReasonFor(Replaced(bytes, BytesOf(std::uint32_t{5}) + "title",
                                 BytesOf(static_cast<std::uint32_t>(kMaxStreamText + 1)) + "title")),
              "it holds a text that is too long");
    EXPECT_EQ(ReasonFor(Replaced(bytes, BytesOf(std::uint32_t{5}) + "title", BytesOf(0xFFFFFFFFU) + "title")),
              "it holds a text that is too long");
}

TEST(ModelStream, FaceOfTwoCornersIsRefused)
{
    const Model model = ModelOf({ModelFace{{{1, 0, 0}, {2, 0, 0}}, {0, 0, 1}}});
    EXPECT_EQ(ReasonFor(StreamOf(model)), "it holds a face of under three corners");
}

TEST(ModelStream, FaceOfMoreCornersThanAllowedIsRefused)
{
    for (const std::size_t count :
         {kMaxStreamCorners, kMaxStreamCorners + 1, std::size_t{200}, std::size_t{259}}) {
        const Model model = ModelOf({ModelFace{std::vector<Point>(count), {0, 0, 1}}});
        EXPECT_EQ(ReasonFor(StreamOf(model)),
                  count > kMaxStreamCorners ? "it holds a face of too many corners" : "")
            << count;
    }
}

TEST(ModelStream, CornerThatIsNoneOfThePointsIsRefused)
{
    const Model model = ModelOf({Triangle()});
    const auto corners = [](std::uint32_t last) {
        return BytesOf(std::uint32_t{0}) + BytesOf(std::uint32_t{1}) + BytesOf(last);
    };
    for (const std::uint32_t number : {3U, 0xFFFFFFFFU})
        EXPECT_EQ(ReasonFor(Replaced(StreamOf(model), corners(2), corners(number))),
                  "it holds a corner that is none of the points");
}

TEST(ModelStream, FirstFaceThatContinuesAnotherIsRefused)
{
    Model model = ModelOf({Triangle()});
    model.pieces[0].faces[0].continues = true;
    EXPECT_EQ(ReasonFor(StreamOf(model)), "it holds a face that continues none");
}

TEST(ModelStream, TriangleOfAClosedSurfaceTakesUnderFortyBytes)
{
    // A grid with half as many points as triangles.
    constexpr int kSide = 50;
    const auto at = [](int x, int y) { return Point{x * 1.0, y * 1.0, x * 0.1 * y}; };
    Model model;
    Piece& piece = model.pieces.emplace_back();
    for (int x = 0; x < kSide; ++x)
        for (int y = 0; y < kSide; ++y) {
            piece.faces.push_back(MakeFace({at(x, y), at(x + 1, y), at(x + 1, y + 1)}).value());
            piece.faces.push_back(MakeFace({at(x, y), at(x + 1, y + 1), at(x, y + 1)}).value());
        }
    EXPECT_LE(StreamOf(model).size(), 40U * piece.faces.size());
}

TEST(ModelStream, NormalThatIsNotOfUnitLengthIsRefused)
{
    for (const Point& normal : {Point{0, 0, 0}, Point{0, 0, 2}, Point{1e200, 1e200, 0}}) {
        const Model model = ModelOf({ModelFace{{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}}, normal}});
        EXPECT_EQ(ReasonFor(StreamOf(model)), "it holds a normal that is not of unit length");
    }
}

TEST(ModelStream, CategoriesOutOfRangeAreRefused)
{
    // Two pieces and two names make four categories at most.
    for (const int category : {-1, 0, 3, 4, 16'777'216, std::numeric_limits<int>::max()}) {
        Model model;
        model.category_names = {"a", "b"};
        model.pieces = {MakePiece("", {}), MakePiece("", {}, category)};
        EXPECT_EQ(ReasonFor(StreamOf(model)),
                  category < 0 || category > 3 ? "it holds a category that is out of range" : "")
            << category;
    }
}

TEST(ModelStream, OpacityOutOfRangeIsRefused)
{
    for (const float alpha : {-0.1F, 1.1F}) {
        Model model;
        model.pieces.push_back(MakePiece("", {}, 0, 7, alpha));
        EXPECT_EQ(ReasonFor(StreamOf(model)), "it holds an opacity that is not between 0 and 1") << alpha;
    }
}

TEST(ModelStream, UnitWithoutALengthIsRefused)
{
    for (const double unit : {0.0, -1.0}) {
        Model model;
        model.meters_per_unit = unit;
        EXPECT_EQ(ReasonFor(StreamOf(model)), "it holds a unit without a length") << unit;
    }
}

TEST(ModelStream, FlagThatIsNeitherIsRefused)
{
    std::string bytes = StreamOf(Model{});
    // The flag of the unit is before the eight bytes of the last count and the four of the end mark.
    bytes[bytes.size() - 13] = '\2';
    EXPECT_EQ(ReasonFor(bytes), "it holds a flag that is neither 0 nor 1");
}

TEST(ModelStream, ProgressOutOfRangeIsRefused)
{
    StreamBytes stream;
    stream.Writer().WriteProgress(0.375);
    EXPECT_EQ(ReasonFor(Replaced(stream.Bytes(), BytesOf(0.375), BytesOf(1.5))),
              "it holds a progress that is not between 0 and 1");
    EXPECT_EQ(ReasonFor(Replaced(stream.Bytes(), BytesOf(0.375), BytesOf(std::nan("")))),
              "it holds a number that is not finite");
}

TEST(ModelStream, EveryChangedByteIsTakenOrRefusedAndNothingElse)
{
    const std::string whole = StreamOf(SampleModel());
    for (std::size_t i = 0; i < whole.size(); ++i)
        for (const char flip : {'\x01', '\x80', '\xFF'}) {
            std::string bytes = whole;
            bytes[i] = static_cast<char>(bytes[i] ^ flip);
            try {
                const Model model = ReadModelStream(SourceOf(bytes));
                EXPECT_LE(model.pieces.size(), 2U);
            } catch (const StreamError&) {
            } catch (const ReportedFailure&) {
            }
        }
}

TEST(ModelStream, SourceThatThrowsIsHeard)
{
    const StreamSource source = [](std::span<char>) -> std::size_t { throw std::runtime_error("gone"); };
    EXPECT_THROW(static_cast<void>(ReadModelStream(source)), std::runtime_error);
}

} // namespace
} // namespace viewer
