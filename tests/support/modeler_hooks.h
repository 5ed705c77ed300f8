// Hooks at the modeler's operations that the module calls: the test program's own definitions pre-empt the
// library's and pass the calls on. They stage results that a sound body never gives: faults, and null edges.
//
// For one thread. The program must be linked with its symbols exported.
#pragma once

#include "platform/modeler/body.h"

#include <functional>
#include <vector>

namespace karv_test
{

/// Runs `action` at every evaluation of a plane, before it is passed on, with the number of the evaluation,
/// counted from 1 since the hook was made. If it throws, the exception leaves the operation. Only one may
/// exist at a time.
class PlaneHook
{
  public:
    explicit PlaneHook(std::function<void(int)> action);
    PlaneHook(const PlaneHook&) = delete;
    PlaneHook& operator=(const PlaneHook&) = delete;
    ~PlaneHook();

    /// The number of evaluations so far.
    [[nodiscard]] int Calls() const { return calls_; }
    /// For the pre-empting definition.
    void Run() { action_(++calls_); }

  private:
    std::function<void(int)> action_;
    int calls_ = 0;
};

/// Runs `action` after every listing of physical edges, with the two flags and the list, which it may change.
/// If it throws, the exception leaves the operation. Only one may exist at a time.
class EdgesHook
{
  public:
    using Edges = std::vector<AModeler::Edge*>;

    explicit EdgesHook(std::function<void(bool with_edges, bool with_vertices, Edges& edges)> action);
    EdgesHook(const EdgesHook&) = delete;
    EdgesHook& operator=(const EdgesHook&) = delete;
    ~EdgesHook();

    /// For the pre-empting definition.
    void Run(bool with_edges, bool with_vertices, Edges& edges) { action_(with_edges, with_vertices, edges); }

  private:
    std::function<void(bool, bool, Edges&)> action_;
};

} // namespace karv_test
