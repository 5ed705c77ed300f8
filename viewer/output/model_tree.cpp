#include "viewer/output/model_tree.h"

#include "platform/host/cm/color.h"
#include "viewer/scene/feature_edges.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace viewer
{

namespace
{

/// The counts of one or more pieces.
struct Counts {
    std::size_t faces = 0;
    std::size_t edges = 0;
    std::size_t lines = 0;
    std::size_t solids = 0;

    Counts& operator+=(const Counts& other)
    {
        faces += other.faces;
        edges += other.edges;
        lines += other.lines;
        solids += other.solids;
        return *this;
    }
};

Counts CountsOf(const Piece& piece)
{
    Counts counts{FaceCountOf(piece), 0, piece.lines.size(), 0};
    const auto in_place = [](const Point& point) { return point; };
    auto solid = piece.faces.empty() || piece.two_sided ? std::nullopt : MakeSolid(piece, in_place);
    if (!solid) {
        counts.edges = FeatureEdges(piece).size();
        return counts;
    }
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    solid->getPhysicalEdgesAndVertices(true, false, edges, vertices);
    counts.edges = edges.size();
    counts.solids = 1;
    return counts;
}

std::string CountText(std::size_t count, const std::string& one)
{
    return std::to_string(count) + ' ' + one + (count == 1 ? "" : "s");
}

std::string TextOf(const Counts& counts)
{
    return CountText(counts.faces, "face") + ", " + CountText(counts.edges, "edge") + ", " +
           CountText(counts.lines, "line") + ", " + CountText(counts.solids, "solid");
}

/// The name without characters that would disturb a terminal.
std::string Printable(const std::string& name)
{
    const std::string text = OneLine(name);
    return text.empty() ? "(no name)" : text;
}

std::string ColorText(unsigned char color)
{
    constexpr unsigned kChannel = 0xFF;
    const unsigned rgb = AcCmEntityColor::lookUpRGB(color);
    return "colour " + std::to_string(color) + " (" + std::to_string(rgb >> 16U & kChannel) + ',' +
           std::to_string(rgb >> 8U & kChannel) + ',' + std::to_string(rgb & kChannel) + ')';
}

std::string AlphaText(float alpha)
{
    constexpr float kPercent = 100.0F;
    return alpha < 1.0F ? ", opacity " + std::to_string(static_cast<int>(alpha * kPercent)) + " %" : "";
}

class TreePrinter
{
  public:
    TreePrinter(std::ostream& out, const Model& model, int first_category)
        : out_(out), model_(model), first_category_(first_category)
    {
        counts_.reserve(model.pieces.size());
        for (const Piece& piece : model.pieces) {
            counts_.push_back(CountsOf(piece));
            whole_ += counts_.back();
        }
    }

    void Print()
    {
        out_ << Printable(model_.title) << ": " << CountText(model_.pieces.size(), "piece") << ", "
             << TextOf(whole_) << '\n';
        if (model_.meters_per_unit)
            out_ << "  unit: " << *model_.meters_per_unit << " m\n";
        if (!model_.left_out.empty())
            out_ << "  left out: " << ListOf(model_.left_out) << '\n';
        PrintCategories();
        std::vector<std::string> open;
        for (std::size_t i = 0; i < model_.pieces.size(); ++i) {
            OpenParents(model_.pieces[i].parents, open);
            PrintPiece(model_.pieces[i], counts_[i]);
        }
    }

  private:
    void PrintCategories()
    {
        std::vector<std::size_t> pieces(static_cast<std::size_t>(model_.CategoryCount()));
        for (const Piece& piece : model_.pieces)
            ++pieces[static_cast<std::size_t>(piece.category)];
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const bool has_name = i < model_.category_names.size() && !model_.category_names[i].empty();
            if (pieces[i] == 0 && !has_name)
                continue;
            out_ << "  category " << static_cast<std::size_t>(first_category_) + i;
            if (has_name)
                out_ << ' ' << Printable(model_.category_names[i]);
            out_ << ": " << CountText(pieces[i], "piece") << '\n';
        }
    }

    void Indent(std::size_t depth)
    {
        constexpr std::size_t kMaxDepth = 100;
        out_ << std::string(2 * (1 + std::min(depth, kMaxDepth)), ' ');
    }

    /// Prints those assemblies that do not hold the previous piece, too.
    void OpenParents(const std::vector<std::string>& parents, std::vector<std::string>& open)
    {
        const auto same =
            static_cast<std::size_t>(std::ranges::mismatch(parents, open).in1 - parents.begin());
        for (std::size_t depth = same; depth < parents.size(); ++depth) {
            Indent(depth);
            out_ << Printable(parents[depth]) << '\n';
        }
        open = parents;
    }

    void PrintPiece(const Piece& piece, const Counts& counts)
    {
        Indent(piece.parents.size());
        out_ << Printable(piece.name) << ": category " << first_category_ + piece.category << ", "
             << ColorText(piece.color) << AlphaText(piece.alpha) << ", " << TextOf(counts) << '\n';
    }

    std::ostream& out_;
    const Model& model_;
    int first_category_;
    std::vector<Counts> counts_;
    Counts whole_;
};

} // namespace

void PrintModelTree(std::ostream& out, const Model& model, int first_category)
{
    TreePrinter(out, model, first_category).Print();
}

} // namespace viewer
