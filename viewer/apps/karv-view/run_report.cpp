#include "viewer/apps/karv-view/run_report.h"

#include "viewer/text/text.h"

#include <ostream>
#include <utility>

namespace viewer
{

double SecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void RunReport::NoteFailure(const std::exception& error)
{
    has_failed_ = true;
    err_ << "karv-view: " << OneLine(error.what()) << std::endl;
}

void RunReport::NoteFile(const std::string& path, const Model& model)
{
    ++figures_.files;
    if (!model.left_out.empty())
        err_ << "karv-view: " << OneLine(path) << ": left out: " << ListOf(model.left_out) << std::endl;
}

void RunReport::Count(const Model& model)
{
    Model sum;
    sum.left_out = std::move(figures_.left_out);
    for (const LeftOut& parts : model.left_out)
        sum.LeaveOut(parts.kind, parts.count);
    figures_.left_out = std::move(sum.left_out);
    figures_.entities += model.pieces.size();
    figures_.faces += model.FaceCount();
    figures_.extents.Unite(model.Extents());
}

void RunReport::NoteFirstFrame()
{
    if (figures_.first_frame_s == 0.0)
        figures_.first_frame_s = SecondsSince(start_);
}

} // namespace viewer
