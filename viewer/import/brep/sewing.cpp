#include "viewer/import/brep/sewing.h"

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Sewing.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Message_ProgressIndicator.hxx>
#include <Precision.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>
#include <utility>

namespace viewer
{

namespace
{

/// Interrupts the library after some time.
class Deadline final : public Message_ProgressIndicator
{
  public:
    [[nodiscard]] bool HasPassed() const { return std::chrono::steady_clock::now() > end_; }

  protected:
    void Show(const Message_ProgressScope& /*scope*/, Standard_Boolean /*is_forced*/) override {}
    Standard_Boolean UserBreak() override { return HasPassed() ? Standard_True : Standard_False; }

  private:
    std::chrono::steady_clock::time_point end_ =
        std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                               std::chrono::duration<double>(kMaxSewingSeconds));
};

bool AreLooseFaces(const BrepBody& body)
{
    return !TopExp_Explorer(body.shape, TopAbs_SHELL).More() &&
           TopExp_Explorer(body.shape, TopAbs_FACE).More();
}

bool MeetInAssembly(const BrepBody& a, const BrepBody& b)
{
    if (a.overrides_colors || b.overrides_colors || a.parents != b.parents)
        return false;
    return a.labels == b.labels ||
           (a.parents.empty() && a.placement.Form() == gp_Identity && b.placement.Form() == gp_Identity);
}

/// Sews the faces of some bodies.
class Sewer
{
  public:
    explicit Sewer(std::vector<BrepBody> bodies) : bodies_(std::move(bodies)) {}

    /// The bodies after sewing; the same as before if the faces could not be sewn.
    std::vector<BrepBody> Sew(double tolerance)
    {
        BRepBuilderAPI_Sewing sewing(LimitedTolerance(tolerance));
        int count = 0;
        for (const BrepBody& body : bodies_)
            for (TopExp_Explorer it(body.shape, TopAbs_FACE); it.More() && count <= kMaxSewnFaces;
                 it.Next()) {
                sewing.Add(it.Current());
                ++count;
            }
        if (count < 2 || count > kMaxSewnFaces)
            return bodies_;
        const opencascade::handle<Deadline> deadline = new Deadline;
        try {
            sewing.Perform(deadline->Start());
        } catch (const Standard_Failure&) {
            return bodies_;
        }
        if (deadline->HasPassed() || sewing.SewedShape().IsNull() || !KeepsAllFaces(sewing, count))
            return bodies_;
        return Divide(sewing);
    }

  private:
    /// The numbers of the bodies that sewn faces come from.
    using Sources = NCollection_DataMap<TopoDS_Shape, std::size_t, TopTools_ShapeMapHasher>;

    [[nodiscard]] double LimitedTolerance(double tolerance) const
    {
        constexpr double kMinShare = 1e-5;
        constexpr double kMaxShare = 1e-4;
        Bnd_Box box;
        for (const BrepBody& body : bodies_)
            BRepBndLib::Add(body.shape, box);
        const double diagonal = box.IsVoid() ? 0.0 : std::sqrt(box.SquareExtent());
        const double smallest = std::max(kMinShare * diagonal, Precision::Confusion());
        const double largest = std::max(kMaxShare * diagonal, Precision::Confusion());
        return std::isfinite(tolerance) ? std::clamp(tolerance, smallest, largest) : smallest;
    }

    /// The library drops faces that it finds too small, and can cut others.
    static bool KeepsAllFaces(const BRepBuilderAPI_Sewing& sewing, int count)
    {
        int kept = 0;
        for (TopExp_Explorer it(sewing.SewedShape(), TopAbs_FACE); it.More(); it.Next())
            ++kept;
        return kept == count;
    }

    std::vector<BrepBody> Divide(const BRepBuilderAPI_Sewing& sewing)
    {
        const auto labels = std::make_shared<BrepLabels>();
        Sources sources;
        for (std::size_t i = 0; i < bodies_.size(); ++i)
            for (TopExp_Explorer it(bodies_[i].shape, TopAbs_FACE); it.More(); it.Next()) {
                const TopoDS_Shape& face = it.Current();
                const TopoDS_Shape& sewn = sewing.IsModified(face) ? sewing.Modified(face) : face;
                sources.Bind(sewn, i);
                if (const BrepColor* color = bodies_[i].labels->colors.Seek(face))
                    labels->colors.Bind(sewn, *color);
                else if (const std::optional<BrepColor>& own = bodies_[i].color)
                    labels->colors.Bind(sewn, *own);
            }
        std::vector<BrepBody> divided;
        for (TopExp_Explorer it(sewing.SewedShape(), TopAbs_SHELL); it.More(); it.Next())
            divided.push_back(BodyOf(it.Current(), sources, labels));
        AddAlone(sewing.SewedShape(), sources, labels, divided);
        return divided;
    }

    /// A body of sewn faces; without a name if they come from bodies with several names.
    BrepBody BodyOf(const TopoDS_Shape& shape, const Sources& sources,
                    const std::shared_ptr<BrepLabels>& labels) const
    {
        const BrepBody* found = nullptr;
        bool is_one_name = true;
        for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next()) {
            const std::size_t* index = sources.Seek(it.Current());
            if (index == nullptr)
                continue;
            if (found == nullptr)
                found = &bodies_[*index];
            is_one_name = is_one_name && bodies_[*index].name == found->name;
        }
        BrepBody body = found != nullptr ? *found : bodies_.front();
        if (!is_one_name)
            body.name.clear();
        body.shape = shape;
        body.color.reset();
        body.labels = labels;
        return body;
    }

    /// Whether the face closes on itself, as a whole sphere does: each edge occurs twice or has no length.
    static bool Closes(const TopoDS_Shape& face)
    {
        TopTools_MapOfShape once;
        for (TopExp_Explorer it(face, TopAbs_EDGE); it.More(); it.Next())
            if (!BRep_Tool::Degenerated(TopoDS::Edge(it.Current())) && !once.Add(it.Current()))
                once.Remove(it.Current());
        return once.IsEmpty();
    }

    /// Adds the faces that meet no other one: those that close on themselves one by one, as they can be
    /// inside out, the others by the body that they come from.
    void AddAlone(const TopoDS_Shape& shape, const Sources& sources,
                  const std::shared_ptr<BrepLabels>& labels, std::vector<BrepBody>& divided) const
    {
        std::vector<TopoDS_Compound> alone(bodies_.size());
        for (TopExp_Explorer it(shape, TopAbs_FACE, TopAbs_SHELL); it.More(); it.Next()) {
            const std::size_t* index = sources.Seek(it.Current());
            if (Closes(it.Current())) {
                divided.push_back(BodyOf(it.Current(), sources, labels));
                continue;
            }
            TopoDS_Compound& faces = alone[index != nullptr ? *index : 0];
            if (faces.IsNull())
                BRep_Builder().MakeCompound(faces);
            BRep_Builder().Add(faces, it.Current());
        }
        for (std::size_t i = 0; i < alone.size(); ++i) {
            if (alone[i].IsNull())
                continue;
            BrepBody body = bodies_[i];
            body.shape = alone[i];
            body.labels = labels;
            divided.push_back(std::move(body));
        }
    }

    std::vector<BrepBody> bodies_;
};

} // namespace

void SewLooseFaces(std::vector<BrepBody>& bodies, double tolerance)
{
    std::vector<std::vector<BrepBody>> groups;
    std::vector<BrepBody> others;
    for (BrepBody& body : bodies) {
        if (!AreLooseFaces(body)) {
            others.push_back(std::move(body));
            continue;
        }
        const auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& known) {
            return MeetInAssembly(known.front(), body);
        });
        if (group != groups.end())
            group->push_back(std::move(body));
        else
            groups.emplace_back().push_back(std::move(body));
    }
    bodies.clear();
    for (std::vector<BrepBody>& group : groups) {
        std::vector<BrepBody> sewn = Sewer(std::move(group)).Sew(tolerance);
        std::move(sewn.begin(), sewn.end(), std::back_inserter(bodies));
    }
    std::move(others.begin(), others.end(), std::back_inserter(bodies));
}

} // namespace viewer
