#include "viewer/import/brep/brep_import.h"

#include "platform/host/cm/color.h"
#include "viewer/import/brep/bodies.h"
#include "viewer/import/brep/faceted_body.h"
#include "viewer/import/brep/file_kind.h"
#include "viewer/import/library_message.h"
#include "viewer/scene/affine.h"
#include "viewer/text/file_error.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepBndLib.hxx>
#include <BRepMesh_Context.hxx>
#include <BRepMesh_DelabellaMeshAlgoFactory.hxx>
#include <BRepMesh_FaceDiscret.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <IMeshData_Face.hxx>
#include <IMeshTools_MeshAlgo.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_ProgressIndicator.hxx>
#include <Message_ProgressScope.hxx>
#include <OSD_Parallel.hxx>
#include <OSD_ThreadPool.hxx>
#include <Poly_PolygonOnTriangulation.hxx>
#include <Poly_Triangulation.hxx>
#include <Poly_TriangulationParameters.hxx>
#include <Precision.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <latch>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

/// While it exists, the library writes nothing to the terminal and generates no names.
class QuietLibrary
{
  public:
    QuietLibrary()
        : messenger_(Message::DefaultMessenger()), printers_(messenger_->Printers()),
          makes_names_(XCAFDoc_ShapeTool::AutoNaming())
    {
        messenger_->ChangePrinters().Clear();
        XCAFDoc_ShapeTool::SetAutoNaming(Standard_False);
    }
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;
    ~QuietLibrary()
    {
        messenger_->ChangePrinters() = printers_;
        XCAFDoc_ShapeTool::SetAutoNaming(makes_names_);
    }

  private:
    Handle(Message_Messenger) messenger_;
    Message_SequenceOfPrinters printers_;
    Standard_Boolean makes_names_;
};

/// Forwards the library's progress.
class LibraryProgress final : public Message_ProgressIndicator
{
  public:
    explicit LibraryProgress(const ProgressFunction& report) : report_(report) {}

  protected:
    void Show(const Message_ProgressScope& /*scope*/, Standard_Boolean /*is_forced*/) override
    {
        if (report_)
            report_(GetPosition());
    }

  private:
    const ProgressFunction& report_;
};

/// Meshes one face with another deflection and another algorithm.
class OwnDeflectionAlgo final : public IMeshTools_MeshAlgo
{
  public:
    OwnDeflectionAlgo(Handle(IMeshTools_MeshAlgo) algo, double deflection)
        : algo_(std::move(algo)), deflection_(deflection)
    {
    }
    void Perform(const IMeshData::IFaceHandle& face, const IMeshTools_Parameters& parameters,
                 const Message_ProgressRange& progress) override
    {
        face->SetDeflection(deflection_);
        algo_->Perform(face, parameters, progress);
    }

  private:
    Handle(IMeshTools_MeshAlgo) algo_;
    double deflection_;
};

bool IsFreeform(GeomAbs_SurfaceType surface)
{
    return surface >= GeomAbs_BezierSurface;
}

bool HasFreeformFaces(const TopoDS_Shape& shape)
{
    for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next())
        if (IsFreeform(BRepAdaptor_Surface(TopoDS::Face(it.Current()), Standard_False).GetType()))
            return true;
    return false;
}

/// Sets a deflection of faces that differs from that of their edges. The library uses the edges' one for
/// both.
class FaceAlgoFactory final : public BRepMesh_DelabellaMeshAlgoFactory
{
  public:
    explicit FaceAlgoFactory(double deflection) : deflection_(deflection) {}
    [[nodiscard]] Handle(IMeshTools_MeshAlgo)
        GetAlgo(GeomAbs_SurfaceType surface, const IMeshTools_Parameters& parameters) const override
    {
        Handle(IMeshTools_MeshAlgo) algo = BRepMesh_DelabellaMeshAlgoFactory::GetAlgo(surface, parameters);
        if (algo.IsNull())
            return algo;
        return new OwnDeflectionAlgo(algo, IsFreeform(surface) ? deflection_ : parameters.DeflectionInterior);
    }

  private:
    double deflection_;
};

/// Starts the threads that the library's mesher uses, unless they run. Returns whether there are several.
bool StartMesherThreads()
{
    // More threads gain little, and each takes address space, which is limited.
    static constexpr int kMaxThreads = 8;
    static const bool are_several = [] {
        const int count = std::min(OSD_Parallel::NbLogicalProcessors(), kMaxThreads);
        // NOTE: The library does not notice that a thread cannot be started, and waits for it forever.
        try {
            std::vector<std::jthread> trial;
            trial.reserve(static_cast<std::size_t>(count));
            std::latch all(count);
            for (int i = 0; i < count; ++i)
                trial.emplace_back([&] { all.arrive_and_wait(); });
        } catch (const std::system_error&) {
            return false;
        }
        OSD_ThreadPool::DefaultPool(count);
        OSD_Parallel::For(0, count, [](int) {});
        return count > 1;
    }();
    return are_several;
}

TopoDS_Compound CompoundOf(const TopTools_IndexedMapOfShape& shapes)
{
    TopoDS_Compound compound;
    BRep_Builder().MakeCompound(compound);
    for (int i = 1; i <= shapes.Extent(); ++i)
        BRep_Builder().Add(compound, shapes(i));
    return compound;
}

bool HasFaces(const TopoDS_Shape& shape)
{
    return TopExp_Explorer(shape, TopAbs_FACE).More();
}

Point Placed(const Point& point, const gp_Trsf& placement)
{
    const gp_Pnt placed = gp_Pnt(point.x, point.y, point.z).Transformed(placement);
    return {placed.X(), placed.Y(), placed.Z()};
}

/// In the coordinates of the model.
std::vector<ModelFace> PlacedFaces(const BrepBody& body)
{
    std::vector<ModelFace> faces;
    faces.reserve(body.tessellation->faces.size());
    for (const ModelFace& face : body.tessellation->faces) {
        std::vector<Point> corners;
        corners.reserve(face.corners.size());
        for (const Point& corner : face.corners)
            corners.push_back(Placed(corner, body.placement));
        // MakeFace takes corners in the opposite order. A mirror reverses them.
        if (!body.placement.IsNegative())
            std::reverse(corners.begin(), corners.end());
        if (auto placed = MakeFace(std::move(corners)))
            faces.push_back(std::move(*placed));
    }
    return faces;
}

Box BoxOf(const BrepBody& body)
{
    if (body.tessellation) {
        Box box;
        for (const ModelFace& face : body.tessellation->faces)
            for (const Point& corner : face.corners)
                box.Add(Placed(corner, body.placement));
        for (const Segment& line : body.tessellation->lines) {
            box.Add(Placed(line.from, body.placement));
            box.Add(Placed(line.to, body.placement));
        }
        return box;
    }
    Bnd_Box bounds;
    BRepBndLib::Add(body.shape, bounds);
    bounds = bounds.Transformed(body.placement);
    Box box;
    if (bounds.IsVoid())
        return box;
    const gp_Pnt min = bounds.CornerMin();
    const gp_Pnt max = bounds.CornerMax();
    box.Add({min.X(), min.Y(), min.Z()});
    box.Add({max.X(), max.Y(), max.Z()});
    return box;
}

/// Converts the bodies of a file to a model.
class BrepConverter
{
  public:
    BrepConverter(const std::string& path, BrepContent content) : path_(path), content_(std::move(content)) {}

    Model Convert(const ImportOptions& options, const Message_ProgressRange& progress)
    {
        CheckVertices();
        ChooseTolerance(options);
        constexpr double kMeshing = 0.9;
        Message_ProgressScope scope(progress, nullptr, 1.0);
        MeshAll(scope.Next(kMeshing));
        Message_ProgressScope adding(scope.Next(1.0 - kMeshing), nullptr,
                                     static_cast<double>(content_.bodies.size()));
        for (const BrepBody& body : content_.bodies)
            AddBody(body, adding.Next());
        for (const auto& [kind, count] : content_.left_out)
            model_.LeaveOut(kind, count);
        if (model_.pieces.empty())
            throw FileError(
                path_, "holds no faces and no curves" +
                           (model_.left_out.empty() ? std::string() : ", only " + ListOf(model_.left_out)));
        NumberCategories();
        return std::move(model_);
    }

  private:
    void CheckVertices() const
    {
        for (const BrepBody& body : content_.bodies)
            for (TopExp_Explorer it(body.shape, TopAbs_VERTEX); it.More(); it.Next())
                CheckPoint(BRep_Tool::Pnt(TopoDS::Vertex(it.Current())).Transformed(body.placement));
    }

    void CheckPoint(const gp_Pnt& point) const
    {
        // The library represents infinity by a large finite number.
        for (const double coordinate : {point.X(), point.Y(), point.Z()})
            if (!std::isfinite(coordinate) || Precision::IsInfinite(coordinate))
                throw FileError(path_, "holds coordinates that are not finite");
    }

    void ChooseTolerance(const ImportOptions& options)
    {
        Box box;
        for (const BrepBody& body : content_.bodies)
            box.Unite(BoxOf(body));
        diagonal_ = box.IsEmpty() ? 0.0 : box.Diagonal();
        if (!std::isfinite(diagonal_))
            throw FileError(path_, "holds coordinates that are not finite");
        // The library's mesher takes no deflection below the distance at which it merges points.
        default_deflection_ = std::max(options.RelativeDeflection() * diagonal_, Precision::Confusion());
        tolerance_.deflection =
            std::max(options.deflection.value_or(default_deflection_), Precision::Confusion());
        tolerance_.angle = Radians(kFacetAngle);
    }

    /// Meshes the faces of all bodies, each shape once, wherever its instances are.
    void MeshAll(const Message_ProgressRange& progress) const
    {
        TopTools_IndexedMapOfShape freeform;
        TopTools_IndexedMapOfShape others;
        for (const BrepBody& body : content_.bodies)
            if (HasFaces(body.shape))
                (HasFreeformFaces(body.shape) ? freeform : others).Add(body.shape);
        Message_ProgressScope scope(progress, nullptr, freeform.Extent() + others.Extent());
        for (const TopTools_IndexedMapOfShape* shapes : {&freeform, &others}) {
            if (shapes->IsEmpty())
                continue;
            const TopoDS_Compound all = CompoundOf(*shapes);
            // Meshes that are stored in the file have another tolerance.
            BRepTools::Clean(all);
            Mesh(all, tolerance_, shapes == &freeform, scope.Next(shapes->Extent()));
        }
    }

    void Mesh(const TopoDS_Shape& shape, const BrepTolerance& tolerance, bool has_fine_edges,
              const Message_ProgressRange& progress) const
    {
        // NOTE: The library's default algorithm (in 7.6) leaves notches in narrow rounded faces along long
        // arcs.
        const Handle(IMeshTools_Context) context = new BRepMesh_Context(IMeshTools_MeshAlgoType_Delabella);
        context->SetFaceDiscret(new BRepMesh_FaceDiscret(new FaceAlgoFactory(tolerance.deflection)));
        BRepMesh_IncrementalMesh mesher;
        mesher.SetShape(shape);
        mesher.ChangeParameters() = MeshParameters(tolerance, has_fine_edges);
        mesher.Perform(context, progress);
    }

    [[nodiscard]] IMeshTools_Parameters MeshParameters(const BrepTolerance& tolerance,
                                                       bool has_fine_edges) const
    {
        IMeshTools_Parameters parameters;
        parameters.InParallel = has_threads_;
        // NOTE: The library divides facets of freeform faces while they lie further from the surface than the
        // deflection, but not their sides along edges. These edges have to be finer than the faces: a facet
        // along an edge with a chord at the deflection can lie a little further off, and is divided again and
        // again in vain.
        constexpr double kAlongEdges = 0.5;
        // NOTE: The library applies the deflection to each direction of a surface separately, and not
        // strictly. The deflections add up in a facet of a surface that is curved in both directions.
        constexpr double kAlongOneDirection = 0.45;
        parameters.Deflection =
            std::max((has_fine_edges ? kAlongEdges : 1.0) * tolerance.deflection, Precision::Confusion());
        parameters.DeflectionInterior = kAlongOneDirection * tolerance.deflection;
        parameters.Angle = tolerance.angle;
        parameters.AngleInterior = tolerance.angle;
        // The minimum size keeps facets of distorted surfaces from getting too small. It does not grow with a
        // coarse deflection, so that small holes stay round.
        constexpr double kMinDeflectionShare = 0.1;
        parameters.MinSize =
            std::max(kMinDeflectionShare * std::min(tolerance.deflection, default_deflection_),
                     Precision::Confusion());
        return parameters;
    }

    struct Faceted {
        std::unique_ptr<FacetedBody> surface;
        std::vector<std::optional<BrepColor>> colors; ///< of the pieces
        std::vector<TopoDS_Face> faces;               ///< those that are not hidden
        bool hides_faces = false;
    };

    /// Collects the facets. There is a piece for each colour.
    Faceted Facet(const BrepBody& body) const
    {
        Faceted faceted;
        faceted.surface = std::make_unique<FacetedBody>(body.placement, tolerance_);
        for (TopExp_Explorer it(body.shape, TopAbs_FACE); it.More(); it.Next()) {
            if (body.labels->hidden.Contains(it.Current())) {
                faceted.hides_faces = true;
                continue;
            }
            const BrepColor* own = body.overrides_colors ? nullptr : body.labels->colors.Seek(it.Current());
            const std::optional<BrepColor> color = own != nullptr ? std::optional(*own) : body.color;
            auto piece = std::find(faceted.colors.begin(), faceted.colors.end(), color);
            if (piece == faceted.colors.end())
                piece = faceted.colors.insert(piece, color);
            faceted.surface->AddFace(TopoDS::Face(it.Current()),
                                     static_cast<std::size_t>(piece - faceted.colors.begin()));
            faceted.faces.push_back(TopoDS::Face(it.Current()));
        }
        return faceted;
    }

    /// Tessellated parts have no edges.
    void AddTessellation(const BrepBody& body)
    {
        std::vector<Piece> pieces(1);
        pieces.front().faces = PlacedFaces(body);
        for (const Segment& line : body.tessellation->lines)
            pieces.front().lines.push_back(
                {Placed(line.from, body.placement), Placed(line.to, body.placement)});
        AddPieces(body, std::move(pieces), {body.color});
    }

    void AddBody(const BrepBody& body, const Message_ProgressRange& progress)
    {
        if (body.tessellation)
            return AddTessellation(body);
        if (!HasFaces(body.shape)) {
            std::vector<Piece> pieces(1);
            AddLooseEdges(body, pieces.front());
            AddLoosePoints(body, pieces.front());
            return AddPieces(body, std::move(pieces), {body.color});
        }
        const Faceted faceted = FacetClosed(body, progress);
        model_.LeaveOut("face that could not be meshed", faceted.surface->FacesWithoutMesh());
        std::vector<Piece> pieces(faceted.colors.size());
        const bool closes = faceted.surface->Closes();
        faceted.surface->MoveTo(pieces);
        for (Piece& piece : pieces)
            piece.closes_with_others = closes && pieces.size() > 1;
        if (!pieces.empty())
            AddLooseEdges(body, pieces.front());
        AddPieces(body, std::move(pieces), faceted.colors);
    }

    void AddPieces(const BrepBody& body, std::vector<Piece> pieces,
                   const std::vector<std::optional<BrepColor>>& colors)
    {
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            Piece& piece = pieces[i];
            CheckCorners(piece);
            if (piece.faces.empty() && piece.lines.empty() && (!piece.edges || piece.edges->empty()))
                continue;
            piece.name = body.name;
            piece.parents = body.parents;
            const BrepColor shown = colors[i].value_or(BrepColor{kUncolored, 1.0F});
            piece.color = shown.index;
            piece.alpha = shown.alpha;
            groups_.push_back(body.group);
            model_.pieces.push_back(std::move(piece));
        }
    }

    /// Points are shown as small crosses along the axes.
    void AddLoosePoints(const BrepBody& body, Piece& piece) const
    {
        // The library's box of a point is not quite empty.
        constexpr double kMinDiagonal = 1e-5;
        const double length = diagonal_ > kMinDiagonal ? kPointMark * diagonal_ : 1.0;
        TopTools_MapOfShape seen;
        for (TopExp_Explorer it(body.shape, TopAbs_VERTEX, TopAbs_EDGE); it.More(); it.Next()) {
            if (!seen.Add(it.Current()))
                continue;
            const gp_Pnt at = BRep_Tool::Pnt(TopoDS::Vertex(it.Current())).Transformed(body.placement);
            AppendPointMark({at.X(), at.Y(), at.Z()}, length, piece.lines);
        }
    }

    /// The facets of a meshed body. If the body is closed but its facets are not, meshes the open faces and
    /// their neighbours again, finer: chords of edges that run close to each other can cross, for example in
    /// a thin pipe. Facets that stay open are returned as they are.
    Faceted FacetClosed(const BrepBody& body, const Message_ProgressRange& progress) const
    {
        constexpr int kMaxRepairs = 2;
        Message_ProgressScope scope(progress, nullptr, kMaxRepairs);
        Faceted faceted = Facet(body);
        if (faceted.hides_faces || !HasClosedShells(body.shape))
            return faceted;
        BrepTolerance finer = tolerance_;
        finer.deflection = std::min(finer.deflection, default_deflection_);
        for (int i = 0; i < kMaxRepairs && !faceted.surface->Closes(); ++i) {
            // The distance of a chord from its arc is proportional to the square of its angle.
            constexpr double kFinerAngle = 1.0 / 3.0;
            finer.angle *= kFinerAngle;
            finer.deflection = std::max(finer.deflection * kFinerAngle * kFinerAngle, Precision::Confusion());
            TopTools_IndexedMapOfShape open;
            for (const std::size_t number : faceted.surface->OpenFaces())
                open.Add(faceted.faces[number]);
            MeshAgain(body.shape, open, finer, scope.Next());
            faceted = Facet(body);
        }
        return faceted;
    }

    /// Meshes some faces of a body and their neighbours again. The other faces keep their meshes, and with
    /// them the chords of the edges that they share with those faces.
    void MeshAgain(const TopoDS_Shape& shape, const TopTools_IndexedMapOfShape& again,
                   const BrepTolerance& tolerance, const Message_ProgressRange& progress) const
    {
        TopTools_IndexedDataMapOfShapeListOfShape faces_of_edges;
        TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, faces_of_edges);
        const auto with_neighbours = [&](const TopTools_IndexedMapOfShape& faces) {
            TopTools_IndexedMapOfShape all = faces;
            for (int i = 1; i <= faces.Extent(); ++i)
                for (TopExp_Explorer it(faces(i), TopAbs_EDGE); it.More(); it.Next())
                    for (const TopoDS_Shape& neighbour : faces_of_edges.FindFromKey(it.Current()))
                        all.Add(neighbour);
            return all;
        };
        // The edges of these faces get finer in their neighbours too.
        const TopTools_IndexedMapOfShape finer = with_neighbours(again);
        for (int i = 1; i <= finer.Extent(); ++i)
            BRepTools::Clean(finer(i));
        const TopTools_IndexedMapOfShape concerned = with_neighbours(finer);
        for (int i = finer.Extent() + 1; i <= concerned.Extent(); ++i)
            KeepMesh(TopoDS::Face(concerned(i)));
        Mesh(CompoundOf(concerned), tolerance, true, progress);
    }

    /// Makes the mesher keep the mesh of the face: it replaces those of another tolerance.
    static void KeepMesh(const TopoDS_Face& face)
    {
        TopLoc_Location location;
        const Handle(Poly_Triangulation) mesh = BRep_Tool::Triangulation(face, location);
        if (mesh.IsNull())
            return;
        // Finer than any that the mesher is asked for.
        mesh->Deflection(Precision::Confusion());
        mesh->Parameters(Handle(Poly_TriangulationParameters)());
        for (TopExp_Explorer it(face, TopAbs_EDGE); it.More(); it.Next())
            if (const auto polygon =
                    BRep_Tool::PolygonOnTriangulation(TopoDS::Edge(it.Current()), mesh, location);
                !polygon.IsNull())
                polygon->Deflection(Precision::Confusion());
    }

    static bool HasClosedShells(const TopoDS_Shape& shape)
    {
        TopExp_Explorer it(shape, TopAbs_SHELL);
        bool closes = it.More();
        for (; it.More() && closes; it.Next())
            closes = BRep_Tool::IsClosed(it.Current());
        return closes;
    }

    void AddLooseEdges(const BrepBody& body, Piece& piece) const
    {
        TopTools_MapOfShape seen;
        for (TopExp_Explorer it(body.shape, TopAbs_EDGE, TopAbs_FACE); it.More(); it.Next())
            if (seen.Add(it.Current()))
                CutFreeEdge(TopoDS::Edge(it.Current()), body.placement, tolerance_, piece.lines);
    }

    void CheckCorners(const Piece& piece) const
    {
        const auto check = [&](const Point& point) {
            if (!IsFinite(point))
                throw FileError(path_, "holds coordinates that are not finite");
        };
        for (const ModelFace& face : piece.faces)
            std::for_each(face.corners.begin(), face.corners.end(), check);
        for (const std::vector<Segment>* segments : {piece.edges ? &*piece.edges : nullptr, &piece.lines})
            for (std::size_t i = 0; segments != nullptr && i < segments->size(); ++i) {
                check((*segments)[i].from);
                check((*segments)[i].to);
            }
    }

    void NumberCategories()
    {
        const bool by_group = content_.group_names.size() > 1;
        std::map<std::size_t, int> categories;
        for (std::size_t i = 0; i < model_.pieces.size(); ++i) {
            Piece& piece = model_.pieces[i];
            const std::size_t key = by_group ? groups_[i] : piece.color;
            const auto [entry, is_new] =
                categories.emplace(key, static_cast<int>(model_.category_names.size()));
            if (is_new)
                model_.category_names.push_back(by_group ? content_.group_names[key]
                                                         : "colour " + std::to_string(key));
            piece.category = entry->second;
        }
    }

    /// A medium grey, for bodies without a colour.
    static inline const unsigned char kUncolored = NearestColorIndex(153, 153, 153);

    const std::string& path_;
    BrepContent content_;
    const bool has_threads_ = StartMesherThreads();
    BrepTolerance tolerance_;
    double default_deflection_ = 0.0;
    double diagonal_ = 0.0;           ///< of the model
    std::vector<std::size_t> groups_; ///< for each piece of the model
    Model model_;
};

/// The reason of an error for a file without bodies.
std::string ReasonWithoutBodies(const std::string& path, BrepKind kind, const LeftOutCounts& left_out)
{
    constexpr std::size_t kMaxKinds = 5;
    std::vector<LeftOut> named;
    for (const auto& [left_out_kind, count] : left_out)
        if (left_out_kind != kEmptyPart && named.size() < kMaxKinds)
            named.push_back({left_out_kind, count});
    std::string found = ListOf(named);
    if (found.empty())
        found = EntityCounts(path, kind);
    return found.empty() ? "holds no geometry" : "holds no geometry that can be shown, but " + found;
}

Model Read(const std::string& path, BrepKind kind, const ImportOptions& options,
           const ProgressFunction& report)
{
    const QuietLibrary quiet;
    const Handle(Message_ProgressIndicator) indicator = new LibraryProgress(report);
    Message_ProgressScope scope(indicator->Start(), nullptr, 1.0);
    BrepContent content = ReadBrepContent(path, kind, options, scope.Next(0.5));
    if (content.bodies.empty())
        throw FileError(path, ReasonWithoutBodies(path, kind, content.left_out));
    return BrepConverter(path, std::move(content)).Convert(options, scope.Next(0.5));
}

constexpr double kMillimeter = 0.001;

} // namespace

Model ImportBrep(const std::string& path, const ImportOptions& options, const ProgressFunction& progress)
{
    const auto kind = BrepKindOf(path);
    if (!kind)
        throw FileError(path, "unknown kind of file");
    CheckBrepFile(path, *kind);
    try {
        Model model = Read(path, *kind, options, progress);
        model.title = std::filesystem::path(path).filename().string();
        if (*kind != BrepKind::Brep)
            model.meters_per_unit = kMillimeter;
        return model;
    } catch (const FileError&) {
        throw;
    } catch (const Standard_Failure& failure) {
        throw FileError(path, ReasonFromLibrary(failure.GetMessageString()));
    } catch (const std::bad_alloc&) {
        throw FileError(path, "needs more memory than there is");
    } catch (const std::exception& error) {
        throw FileError(path, ReasonFromLibrary(error.what()));
    }
}

} // namespace viewer
