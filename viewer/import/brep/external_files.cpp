#include "viewer/import/brep/external_files.h"

#include "viewer/import/brep/step_text.h"
#include "viewer/import/companion_files.h"
#include "viewer/text/text.h"

#include <Interface_InterfaceModel.hxx>
#include <STEPConstruct_ExternRefs.hxx>
#include <STEPControl_Reader.hxx>
#include <StepBasic_Document.hxx>
#include <StepBasic_ExternalIdentificationAssignment.hxx>
#include <StepBasic_ExternalSource.hxx>
#include <StepBasic_SourceItem.hxx>
#include <StepData_SelectNamed.hxx>
#include <StepData_StepModel.hxx>
#include <TCollection_HAsciiString.hxx>
#include <XSControl_WorkSession.hxx>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <vector>

namespace viewer
{

namespace
{

namespace fs = std::filesystem;

/// The library's number for a select member that is a text.
constexpr int kTextKind = 6;

/// The texts of a model from which the library takes names of files. They belong to the model.
std::vector<Handle(TCollection_HAsciiString)> NamesIn(const Handle(Interface_InterfaceModel) & model)
{
    std::vector<Handle(TCollection_HAsciiString)> names;
    for (int i = 1; i <= model->NbEntities(); ++i) {
        const Handle(Standard_Transient) entity = model->Value(i);
        if (const auto document = Handle(StepBasic_Document)::DownCast(entity); !document.IsNull()) {
            names.push_back(document->Id());
            names.push_back(document->Name());
        }
        const auto assignment = Handle(StepBasic_ExternalIdentificationAssignment)::DownCast(entity);
        if (!assignment.IsNull())
            names.push_back(assignment->AssignedId());
    }
    std::erase_if(names, [](const auto& name) { return name.IsNull() || name->IsEmpty(); });
    return names;
}

/// Whether the library takes the name from the source, because there is no other one.
bool IsNamedBySource(const Handle(StepBasic_ExternalIdentificationAssignment) & assignment)
{
    if (assignment.IsNull() || assignment->Source().IsNull())
        return false;
    const auto id = assignment->AssignedId();
    return id.IsNull() || id->IsEmpty() || id->Value(1) == '#';
}

/// Moves names from sources, which cannot be changed in place, to where names usually are.
void MoveNamesFromSources(const Handle(Interface_InterfaceModel) & model)
{
    for (int i = 1; i <= model->NbEntities(); ++i) {
        const auto assignment = Handle(StepBasic_ExternalIdentificationAssignment)::DownCast(model->Value(i));
        if (!IsNamedBySource(assignment))
            continue;
        const auto name = Handle(StepData_SelectNamed)::DownCast(assignment->Source()->SourceId().Value());
        const char* text = name.IsNull() || name->Kind() != kTextKind ? nullptr : name->String();
        assignment->SetAssignedId(new TCollection_HAsciiString(text == nullptr ? "" : text));
        assignment->SetSource(Handle(StepBasic_ExternalSource)());
    }
}

bool HasNamesInSources(const Handle(Interface_InterfaceModel) & model)
{
    for (int i = 1; i <= model->NbEntities(); ++i)
        if (IsNamedBySource(Handle(StepBasic_ExternalIdentificationAssignment)::DownCast(model->Value(i))))
            return true;
    return false;
}

std::string TextOf(const Handle(TCollection_HAsciiString) & name)
{
    return name->ToCString();
}

void SetText(const Handle(TCollection_HAsciiString) & name, const std::string& text)
{
    name->Clear();
    name->AssignCat(text.c_str());
}

/// Whether the file's text has a word that each reference to another file needs. Such files are rare, and
/// this is faster than parsing.
bool MayReferToFiles(const fs::path& path)
{
    return FileHasOneOf(path.string(), std::array<std::string_view, 2>{"EXTERNAL_IDENTIFICATION_ASSIGNMENT",
                                                                       "WITH_ASSOCIATED_DOCUMENTS"});
}

class ExternalFileCheck
{
  public:
    ExternalFileCheck(const std::string& path, LeftOutCounts& left_out) : left_out_(left_out)
    {
        std::error_code error;
        main_ = fs::canonical(path, error);
        folder_ = main_.parent_path();
    }

    void Check(const Handle(XSControl_WorkSession) & session)
    {
        const Handle(Interface_InterfaceModel) model = session->Model();
        STEPConstruct_ExternRefs references(session);
        references.LoadExternRefs();
        if (references.NbExternRefs() == 0)
            return;
        MoveNamesFromSources(model);
        for (const Handle(TCollection_HAsciiString) & name : NamesIn(model))
            CheckName(name);
        for (int i = 1; i <= references.NbExternRefs(); ++i)
            if (const auto format = references.Format(i);
                !format.IsNull() && TextOf(format).starts_with("STEP"))
                // The library follows references of two formats only, but it reads the others alike.
                SetText(format, "STEP AP214");
    }

  private:
    static constexpr std::size_t kMaxDepth = 20;
    static constexpr std::size_t kMaxFiles = 10000;

    void CheckName(const Handle(TCollection_HAsciiString) & name)
    {
        std::string text = CompanionName(TextOf(name));
        if (text.empty())
            return SetText(name, kNoFile);
        text = InItsCase(text);
        SetText(name, text);
        const fs::path file = folder_ / text;
        std::error_code error;
        if (!fs::is_regular_file(file, error))
            return;
        // The library ignores a reference of a file to itself, if it has exactly this name.
        if (text == main_.filename())
            return;
        std::vector<fs::path> chain{main_};
        if (!MayBeRead(file, chain)) {
            // A reference contains the name of the file several times.
            left_out_["file \"" + OneLine(text) + "\", which refers to itself or out of its folder"] = 1;
            SetText(name, kNoFile);
        }
    }

    /// The name with the letters of the file's name in their case, if there is such a file.
    [[nodiscard]] std::string InItsCase(const fs::path& name) const
    {
        const auto found = FindInAnyCase(folder_ / name);
        return (found ? name.parent_path() / found->filename() : name).string();
    }

    /// Whether the file and all files that it refers to lie in the folder, without a circle.
    bool MayBeRead(const fs::path& file, std::vector<fs::path>& chain)
    {
        std::error_code error;
        const fs::path real = fs::canonical(file, error);
        if (error || !IsBelow(folder_, real) || std::find(chain.begin(), chain.end(), real) != chain.end() ||
            chain.size() > kMaxDepth)
            return false;
        if (good_.contains(real))
            return true;
        if (good_.size() >= kMaxFiles)
            return false;
        chain.push_back(real);
        const bool is_good = !MayReferToFiles(real) || NamesMayBeRead(file, chain);
        chain.pop_back();
        if (is_good)
            good_.insert(real);
        return is_good;
    }

    bool NamesMayBeRead(const fs::path& file, std::vector<fs::path>& chain)
    {
        STEPControl_Reader reader;
        if (reader.ReadFile(file.c_str()) != IFSelect_RetDone)
            return true;
        const Handle(Interface_InterfaceModel) model = reader.WS()->Model();
        if (HasNamesInSources(model))
            return false;
        for (const Handle(TCollection_HAsciiString) & name : NamesIn(model)) {
            const std::string text = TextOf(name);
            std::error_code error;
            const fs::path other = file.parent_path() / text;
            if (!fs::exists(other, error) || text == file.filename())
                continue;
            if (CompanionName(text) != text || !MayBeRead(other, chain))
                return false;
        }
        return true;
    }

    /// A name that no file has.
    static constexpr const char* kNoFile = "(none)";

    LeftOutCounts& left_out_;
    fs::path main_;
    fs::path folder_;
    std::set<fs::path> good_;
};

} // namespace

void CheckExternalFiles(const std::string& path, const Handle(XSControl_WorkSession) & session,
                        LeftOutCounts& left_out)
{
    ExternalFileCheck(path, left_out).Check(session);
}

} // namespace viewer
