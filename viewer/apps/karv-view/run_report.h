// The reports of a run of karv-view: files that fail, parts that are left out, and figures.
#pragma once

#include "viewer/output/stats.h"
#include "viewer/scene/model.h"

#include <chrono>
#include <exception>
#include <iosfwd>
#include <string>

namespace viewer
{

/// The seconds that have passed since a time.
[[nodiscard]] double SecondsSince(std::chrono::steady_clock::time_point start);

class RunReport
{
  public:
    /// `start` is when the program started; `err`, which gets the lines, must outlive this object.
    RunReport(std::chrono::steady_clock::time_point start, std::ostream& err) : start_(start), err_(err) {}

    /// Prints the failure in one line, at once. The run counts as failed from then on.
    void NoteFailure(const std::exception& error);
    [[nodiscard]] bool HasFailed() const { return has_failed_; }
    /// Counts a file that was read, and prints the parts that its model does not contain.
    void NoteFile(const std::string& path, const Model& model);
    /// Adds the figures of a model, which may be of several files.
    void Count(const Model& model);
    /// Notes the time of the first frame with a model; later calls have no effect.
    void NoteFirstFrame();

    [[nodiscard]] Stats& Figures() { return figures_; }

  private:
    std::chrono::steady_clock::time_point start_;
    std::ostream& err_;
    bool has_failed_ = false;
    Stats figures_;
};

} // namespace viewer
