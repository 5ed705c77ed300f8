#include "viewer/output/model_tree.h"

#include "tests/viewer/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace viewer
{
namespace
{

std::string TreeOf(const Model& model, int first_category = 0)
{
    std::ostringstream out;
    PrintModelTree(out, model, first_category);
    return out.str();
}

Piece BoxNamed(const std::string& name, std::vector<std::string> parents)
{
    Piece piece = BoxModel(BoxOf({0, 0, 0}, {1, 2, 3})).pieces.front();
    piece.name = name;
    piece.parents = std::move(parents);
    return piece;
}

TEST(ModelTree, AssembliesAreNamedOnceAndPiecesUnderThem)
{
    Model model;
    model.title = "machine.step";
    model.category_names = {"frame", "drive"};
    model.pieces = {BoxNamed("beam", {"frame"}), BoxNamed("foot", {"frame"}),
                    BoxNamed("shaft", {"drive", "motor"}), BoxNamed("cover", {"drive"})};
    model.pieces[2].category = 1;
    model.pieces[2].color = 1;
    model.pieces[2].alpha = 0.5F;
    model.pieces[3].category = 1;
    EXPECT_EQ(
        TreeOf(model),
        "machine.step: 4 pieces, 24 faces, 48 edges, 0 lines, 4 solids\n"
        "  category 0 frame: 2 pieces\n"
        "  category 1 drive: 2 pieces\n"
        "  frame\n"
        "    beam: category 0, colour 7 (255,255,255), 6 faces, 12 edges, 0 lines, 1 solid\n"
        "    foot: category 0, colour 7 (255,255,255), 6 faces, 12 edges, 0 lines, 1 solid\n"
        "  drive\n"
        "    motor\n"
        "      shaft: category 1, colour 1 (255,0,0), opacity 50 %, 6 faces, 12 edges, 0 lines, 1 solid\n"
        "    cover: category 1, colour 7 (255,255,255), 6 faces, 12 edges, 0 lines, 1 solid\n");
}

TEST(ModelTree, PartsThatWereLeftOutAreCountedByKind)
{
    Model model;
    model.title = "plan.dxf";
    model.LeaveOut("TEXT", 3);
    model.LeaveOut("3D\nSOLID");
    EXPECT_EQ(TreeOf(model), "plan.dxf: 0 pieces, 0 faces, 0 edges, 0 lines, 0 solids\n"
                             "  left out: 3 TEXT, 1 3D SOLID\n");
}

TEST(ModelTree, AssembliesOfOneNameUnderDifferentOnesAreNamedEach)
{
    Model model;
    model.pieces = {BoxNamed("a", {"left", "wheel"}), BoxNamed("b", {"right", "wheel"})};
    const std::string tree = TreeOf(model);
    EXPECT_NE(tree.find("  left\n    wheel\n      a:"), std::string::npos) << tree;
    EXPECT_NE(tree.find("  right\n    wheel\n      b:"), std::string::npos) << tree;
}

TEST(ModelTree, OpenSurfacesAndLinesAreNoSolids)
{
    Model model;
    model.title = "t";
    Piece piece = MakePiece("", {MakeFace({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}).value()});
    piece.lines = {{{0, 0, 0}, {0, 0, 1}}};
    model.pieces = {piece};
    EXPECT_EQ(TreeOf(model),
              "t: 1 piece, 1 face, 3 edges, 1 line, 0 solids\n"
              "  category 0: 1 piece\n"
              "  (no name): category 0, colour 7 (255,255,255), 1 face, 3 edges, 1 line, 0 solids\n");
}

TEST(ModelTree, EdgesAreThoseThatTheFileLists)
{
    Model model;
    model.pieces = {BoxNamed("ball", {})};
    model.pieces[0].edges.emplace();
    EXPECT_NE(TreeOf(model).find("6 faces, 0 edges"), std::string::npos);
}

TEST(ModelTree, CategoriesCountOnFromThoseOfOtherModels)
{
    Model model;
    model.title = "b";
    model.category_names = {"0", "unused"};
    model.pieces.emplace_back().lines = {{{0, 0, 0}, {0, 0, 1}}};
    EXPECT_EQ(TreeOf(model, 5),
              "b: 1 piece, 0 faces, 0 edges, 1 line, 0 solids\n"
              "  category 5 0: 1 piece\n"
              "  category 6 unused: 0 pieces\n"
              "  (no name): category 5, colour 7 (255,255,255), 0 faces, 0 edges, 1 line, 0 solids\n");
}

TEST(ModelTree, NamesCannotBreakTheLinesOrMoveTheCursor)
{
    Model model;
    model.title = "two\nlines";
    model.category_names = {"\x1b[2J"};
    model.pieces = {BoxNamed("a\rb", {"c\td"})};
    const std::string tree = TreeOf(model);
    EXPECT_EQ(tree.find_first_of("\r\t\x1b"), std::string::npos);
    EXPECT_EQ(tree.substr(0, 10), "two lines:");
    EXPECT_EQ(std::count(tree.begin(), tree.end(), '\n'), 4);
}

TEST(ModelTree, UnitIsNamedWhereItIsKnown)
{
    Model model;
    model.meters_per_unit = 0.001;
    EXPECT_EQ(TreeOf(model), "(no name): 0 pieces, 0 faces, 0 edges, 0 lines, 0 solids\n  unit: 0.001 m\n");
}

TEST(ModelTree, DeepAssembliesAreIndentedNoFurtherThanReadable)
{
    Model model;
    model.pieces = {BoxNamed("a", std::vector<std::string>(10'000, "x"))};
    EXPECT_LT(TreeOf(model).size(), 10'100U * 210U);
}

} // namespace
} // namespace viewer
