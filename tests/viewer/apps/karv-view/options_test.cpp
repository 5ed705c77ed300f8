#include "viewer/apps/karv-view/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct Parse {
    ParsedOptions parsed;
    std::string out;
    std::string err;

    explicit Parse(std::vector<const char*> arguments)
    {
        std::ostringstream out_stream;
        std::ostringstream err_stream;
        arguments.insert(arguments.begin(), "karv-view");
        parsed = ParseOptions(static_cast<int>(arguments.size()), arguments.data(), out_stream, err_stream);
        out = out_stream.str();
        err = err_stream.str();
    }
};

void ExpectRefused(std::vector<const char*> arguments)
{
    const Parse parse(std::move(arguments));
    EXPECT_FALSE(parse.parsed.options);
    EXPECT_NE(parse.parsed.exit_status, 0);
    EXPECT_THAT(parse.err, StartsWith("karv-view: "));
    EXPECT_EQ(std::count(parse.err.begin(), parse.err.end(), '\n'), 1) << parse.err;
    EXPECT_EQ(parse.out, "");
}

TEST(Options, WithoutArgumentsTheDefaultsHold)
{
    const Parse parse({});
    ASSERT_TRUE(parse.parsed.options);
    const Options& options = *parse.parsed.options;
    EXPECT_TRUE(options.models.empty());
    EXPECT_FALSE(options.drawing.view || options.drawing.projection) << "the model decides";
    EXPECT_FALSE(options.drawing.lines || options.drawing.transparent || options.headless || options.stats);
    EXPECT_FALSE(options.picture || options.sheet || options.trace || options.size ||
                 options.drawing.background || options.color || options.alpha);
    EXPECT_EQ(options.size.value_or(PictureSize{}), (PictureSize{1024, 768}));
}

TEST(Options, EdgesAreOnAndTheLightIsOverTheShoulderUnlessChosen)
{
    const Parse defaults({});
    ASSERT_TRUE(defaults.parsed.options);
    EXPECT_TRUE(defaults.parsed.options->drawing.edges);
    EXPECT_EQ(defaults.parsed.options->drawing.light, Light::Shoulder);
    struct Case {
        const char* edges;
        const char* light;
        bool has_edges;
        Light chosen;
    };
    for (const Case& c : {Case{"on", "shoulder", true, Light::Shoulder},
                          Case{"off", "eye", false, Light::Eye}, Case{"off", "none", false, Light::None}}) {
        const Parse parse({"--edges", c.edges, "--light", c.light});
        ASSERT_TRUE(parse.parsed.options) << parse.err;
        EXPECT_EQ(parse.parsed.options->drawing.edges, c.has_edges);
        EXPECT_EQ(parse.parsed.options->drawing.light, c.chosen);
    }
}

TEST(Options, EveryOptionIsTaken)
{
    const Parse parse({"--picture",     "p.png",    "--sheet", "s.png",      "--view",  "nw",
                       "--projection",  "parallel", "--mode",  "lines",      "--size",  "640x480",
                       "--background",  "1,2,255",  "--color", "40",         "--alpha", "0.25",
                       "--transparent", "--hide",   "0,12",    "--headless", "--trace", "t.json",
                       "--stats",       "a.obj",    "b.stl"});
    ASSERT_TRUE(parse.parsed.options) << parse.err;
    const Options& options = *parse.parsed.options;
    EXPECT_EQ(options.picture, "p.png");
    EXPECT_EQ(options.sheet, "s.png");
    EXPECT_EQ(options.trace, "t.json");
    EXPECT_EQ(options.drawing.view, StandardView::NW);
    EXPECT_EQ(options.drawing.projection, Projection::Parallel);
    EXPECT_TRUE(options.drawing.lines && options.drawing.transparent && options.headless && options.stats);
    EXPECT_EQ(options.size, (PictureSize{640, 480}));
    EXPECT_EQ(options.drawing.background, (std::array{1, 2, 255}));
    EXPECT_EQ(options.color, 40);
    EXPECT_EQ(options.alpha, 0.25F);
    EXPECT_THAT(options.drawing.hidden, ElementsAre(0, 12));
    EXPECT_THAT(options.models, ElementsAre("a.obj", "b.stl"));
}

TEST(Options, ListsDoNotSwallowTheModelsBehindThem)
{
    const Parse parse({"--hide", "1", "a.obj", "--background", "0,0,0", "b.obj"});
    ASSERT_TRUE(parse.parsed.options) << parse.err;
    EXPECT_THAT(parse.parsed.options->drawing.hidden, ElementsAre(1));
    EXPECT_THAT(parse.parsed.options->models, ElementsAre("a.obj", "b.obj"));
}

TEST(Options, HideMayBeGivenTwice)
{
    const Parse parse({"--hide", "1,2", "--hide", "5"});
    ASSERT_TRUE(parse.parsed.options) << parse.err;
    EXPECT_THAT(parse.parsed.options->drawing.hidden, ElementsAre(1, 2, 5));
}

TEST(Options, EveryViewNameIsTaken)
{
    for (const StandardView view : kStandardViews) {
        const std::string name(NameOf(view));
        const Parse parse({"--view", name.c_str()});
        ASSERT_TRUE(parse.parsed.options) << name;
        EXPECT_EQ(parse.parsed.options->drawing.view, view);
    }
}

TEST(Options, HelpNamesEveryOptionAndSucceeds)
{
    const Parse parse({"--help"});
    EXPECT_FALSE(parse.parsed.options);
    EXPECT_EQ(parse.parsed.exit_status, 0);
    EXPECT_EQ(parse.err, "");
    for (const char* option : {"--picture", "--sheet", "--view", "--projection", "--mode", "--edges",
                               "--light", "--size", "--background", "--color", "--alpha", "--transparent",
                               "--hide", "--headless", "--trace", "--stats", "MODEL"})
        EXPECT_THAT(parse.out, HasSubstr(option));
}

TEST(Options, UnknownOptionIsRefused)
{
    ExpectRefused({"--sheets", "a.png"});
}

TEST(Options, MissingValueIsRefused)
{
    ExpectRefused({"--picture"});
}

TEST(Options, PicturesHaveTheEndingOfPngInEitherCaseOrNone)
{
    for (const char* option : {"--picture", "--sheet"}) {
        for (const char* name : {"p.png", "P.PNG", "a.jpg/p.png", "/dev/null", "p"})
            EXPECT_TRUE(Parse({option, name}).parsed.options) << name;
        for (const char* name : {"p.jpg", "p.PDF", "p.png.bak", "p.pngx"})
            ExpectRefused({option, name});
    }
}

TEST(Options, UnknownNamesAreRefused)
{
    ExpectRefused({"--view", "above"});
    ExpectRefused({"--view", "SE"});
    ExpectRefused({"--projection", "flat"});
    ExpectRefused({"--mode", "points"});
    ExpectRefused({"--edges", "yes"});
    ExpectRefused({"--light", "sun"});
}

TEST(Options, SizesOutOfBoundsOrShapeAreRefused)
{
    for (const char* size :
         {"0x10", "10x0", "10", "10x", "x10", "10x10x10", "-1x5", "8193x10", "10X10", "1e2x10", ""})
        ExpectRefused({"--size", size});
}

TEST(Options, BackgroundsOutOfBoundsOrShapeAreRefused)
{
    for (const char* background : {"1,2", "1,2,3,4", "256,0,0", "-1,0,0", "a,b,c", "1,,2"})
        ExpectRefused({"--background", background});
}

TEST(Options, ColorsAndOpacitiesOutOfBoundsAreRefused)
{
    ExpectRefused({"--color", "256"});
    ExpectRefused({"--color", "-1"});
    ExpectRefused({"--alpha", "1.5"});
    ExpectRefused({"--alpha", "nan"});
    ExpectRefused({"--hide", "-1"});
    ExpectRefused({"--hide", "1,"});
}

TEST(Options, DeflectionIsANumberAboveZero)
{
    EXPECT_EQ(Parse({"--deflection", "0.25"}).parsed.options.value().deflection, 0.25);
    EXPECT_EQ(Parse({"--deflection", "1e-9"}).parsed.options.value().deflection, 1e-9);
    EXPECT_FALSE(Parse({}).parsed.options.value().deflection);
    for (const char* text : {"0", "-1", "-0", "inf", "nan", "1e400", "1mm", "", " 1", "0x1p3", "one"})
        ExpectRefused({"--deflection", text});
    const Parse parse({"--deflection", "0"});
    EXPECT_THAT(parse.err, HasSubstr("'0' is not a number above 0"));
}

TEST(Options, ListIsAFlagOfItsOwn)
{
    EXPECT_TRUE(Parse({"--list", "a.step"}).parsed.options.value().list);
    EXPECT_FALSE(Parse({"a.step"}).parsed.options.value().list);
    ExpectRefused({"--list", "--picture", "p.png"});
    ExpectRefused({"--list", "--sheet", "s.png"});
    ExpectRefused({"--list", "--hide", "1"});
}

} // namespace
} // namespace viewer
