// Damaged and truncated B-rep files, and files of other kinds.
#include "tests/viewer/import/brep/brep_fixture.h"
#include "viewer/import/brep/file_kind.h"

#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRep_Builder.hxx>
#include <TopoDS_Compound.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace viewer
{
namespace
{

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class BrepDamage : public BrepTest
{
  protected:
    static TopoDS_Shape Shape() { return BRepPrimAPI_MakeCylinder(10.0, 20.0).Shape(); }

    /// Cuts the file at twenty places, and before its last two characters that are not blank.
    void ExpectCutsToBeRefused(const std::string& whole)
    {
        const std::string text = Read(std::filesystem::path(whole).filename().string());
        const std::string ending = std::filesystem::path(whole).extension().string();
        std::vector<std::size_t> cuts;
        for (std::size_t i = 0; i < 20; ++i)
            cuts.push_back(text.size() * i / 20);
        cuts.push_back(text.find_last_not_of(" \r\n") - 1);
        for (const std::size_t cut : cuts) {
            const std::string path = Write("cut" + ending, text.substr(0, cut));
            EXPECT_THAT(ErrorOf(path), AllOf(HasSubstr(path + ": "), Not(HasSubstr("\n"))))
                << "cut at " << cut;
        }
        EXPECT_EQ(ErrorOf(whole), "read without an error");
    }

    /// The text with the first occurrence replaced.
    static std::string With(std::string text, const std::string& what, const std::string& by)
    {
        const auto at = text.find(what);
        EXPECT_NE(at, std::string::npos) << what;
        return text.replace(at, what.size(), by);
    }
};

TEST_F(BrepDamage, StepCutAnywhereIsRefused)
{
    ExpectCutsToBeRefused(WriteStep(Shape()));
}

TEST_F(BrepDamage, IgesCutAnywhereIsRefused)
{
    ExpectCutsToBeRefused(WriteIges(Shape(), true));
}

TEST_F(BrepDamage, BrepCutAnywhereIsRefused)
{
    ExpectCutsToBeRefused(WriteBrep(Shape()));
}

TEST_F(BrepDamage, FilesOfZerosAreRefused)
{
    for (const char* name : {"zero.step", "zero.igs", "zero.brep"})
        EXPECT_THAT(ErrorOf(Write(name, std::string(100000, '\0'))), HasSubstr("does not begin as ")) << name;
}

TEST_F(BrepDamage, TextWithAWrongEndingIsRefused)
{
    for (const char* name : {"text.stp", "text.iges", "text.brp"})
        EXPECT_THAT(ErrorOf(Write(name, "Dear all,\nthis is a letter.\n")), HasSubstr("does not begin as "))
            << name;
}

TEST_F(BrepDamage, FileOfAnotherKindIsRefused)
{
    const std::string step = WriteStep(Shape());
    std::filesystem::copy_file(step, PathOf("step.brep"));
    std::filesystem::copy_file(step, PathOf("step.igs"));
    EXPECT_THAT(ErrorOf(PathOf("step.brep")), EndsWith("does not begin as a BREP file does"));
    EXPECT_THAT(ErrorOf(PathOf("step.igs")), EndsWith("does not begin as an IGES file does"));
}

TEST_F(BrepDamage, EmptyFileMissingFileAndFolderAreRefused)
{
    EXPECT_THAT(ErrorOf(Write("empty.step", "")), EndsWith("is empty"));
    EXPECT_THAT(ErrorOf(PathOf("missing.step")), EndsWith("no such file"));
    std::filesystem::create_directory(PathOf("folder.step"));
    EXPECT_THAT(ErrorOf(PathOf("folder.step")), EndsWith("is a directory"));
}

TEST_F(BrepDamage, UnknownEndingIsRefused)
{
    EXPECT_THAT(ErrorOf(Write("model.xyz", "x")), EndsWith("unknown kind of file"));
}

TEST_F(BrepDamage, EndingsAreKnownInAnyCase)
{
    EXPECT_EQ(BrepKindOf("a.STEP"), BrepKind::Step);
    EXPECT_EQ(BrepKindOf("a.Stp"), BrepKind::Step);
    EXPECT_EQ(BrepKindOf("a.IGS"), BrepKind::Iges);
    EXPECT_EQ(BrepKindOf("a.BRep"), BrepKind::Brep);
    EXPECT_EQ(BrepKindOf("a.obj"), std::nullopt);
    EXPECT_EQ(BrepKindOf("step"), std::nullopt);
}

TEST_F(BrepDamage, StepWithoutShapesIsRefused)
{
    EXPECT_THAT(ErrorOf(Write("empty.step",
                              "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
                              "FILE_NAME('','',(''),(''),'','','');\nFILE_SCHEMA(('AUTOMOTIVE_DESIGN'));\n"
                              "ENDSEC;\nDATA;\nENDSEC;\nEND-ISO-10303-21;\n")),
                HasSubstr("holds no geometry"));
}

TEST_F(BrepDamage, StepWithGarbageInsideIsRefused)
{
    const std::string path = WriteStep(Shape());
    std::string text = Read("shape.step");
    const auto data = text.find("DATA;") + 6;
    const std::string garbage =
        Write("garbage.step", text.substr(0, data) + "))((#;;'\n" + std::string(2000, '(') +
                                  "\nENDSEC;\nEND-ISO-10303-21;\n");
    EXPECT_THAT(ErrorOf(garbage), HasSubstr(garbage + ": "));
    EXPECT_EQ(ErrorOf(path), "read without an error");
}

TEST_F(BrepDamage, LonePointIsACrossOfOneUnit)
{
    TopoDS_Compound points;
    BRep_Builder().MakeCompound(points);
    BRep_Builder().Add(points, BRepBuilderAPI_MakeVertex(gp_Pnt(1, 2, 3)).Shape());
    const Model model = ImportBrep(WriteBrep(points), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_EQ(model.pieces[0].lines.size(), 3U);
    EXPECT_EQ(model.pieces[0].lines[0].from, (Point{0.5, 2, 3}));
    EXPECT_EQ(model.pieces[0].lines[0].to, (Point{1.5, 2, 3}));
}

TEST_F(BrepDamage, CompoundOfNothingIsRefused)
{
    TopoDS_Compound nothing;
    BRep_Builder().MakeCompound(nothing);
    EXPECT_THAT(ErrorOf(WriteBrep(nothing)), HasSubstr("holds no geometry"));
}

TEST_F(BrepDamage, CoordinatesThatAreNotFiniteAreRefused)
{
    static_cast<void>(WriteBrep(BRepPrimAPI_MakeBox(gp_Pnt(7, 8, 9), 1, 2, 3).Shape()));
    const std::string text = Read("shape.brep");
    for (const char* number : {"nan", "inf", "-inf", "1e400", "1e200"}) {
        // The first vertex after the list of shapes begins: a line of three coordinates.
        const auto shapes = text.find("TShapes");
        const std::string bad =
            text.substr(0, shapes) + With(text.substr(shapes), "\n7 8 ", "\n" + std::string(number) + " 8 ");
        EXPECT_THAT(ErrorOf(Write("bad.brep", bad)), EndsWith("holds coordinates that are not finite"))
            << number;
    }
}

TEST_F(BrepDamage, StepCoordinatesBeyondAllNumbersAreRefused)
{
    static_cast<void>(WriteStep(BRepPrimAPI_MakeBox(gp_Pnt(7, 8, 9), 1, 2, 3).Shape()));
    const std::string bad =
        With(Read("shape.step"), "CARTESIAN_POINT('',(7.,8.,9.))", "CARTESIAN_POINT('',(7.,8.,9.E+400))");
    EXPECT_THAT(ErrorOf(Write("bad.step", bad)), testing::Not(testing::HasSubstr("read without an error")));
}

TEST_F(BrepDamage, NothingIsWrittenToTheTerminal)
{
    const std::string step = WriteStep(Shape());
    const std::string iges = WriteIges(Shape(), true);
    const std::string brep = WriteBrep(Shape());
    const std::string text = Read("shape.step");
    const std::string broken =
        Write("broken.step", With(text, "CYLINDRICAL_SURFACE('',#", "CYLINDRICAL_SURFACE('',##"));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const std::string& path : {step, iges, brep, broken})
        static_cast<void>(ErrorOf(path));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(BrepDamage, GoodFileIsReadAfterABadOne)
{
    const std::string good = WriteStep(Shape());
    EXPECT_THAT(ErrorOf(Write("bad.step", "ISO-10303-21;\nnonsense\nEND-ISO-10303-21;\n")),
                HasSubstr("bad.step: "));
    EXPECT_EQ(ImportBrep(good, {}).pieces.size(), 1U);
}

} // namespace
} // namespace viewer
