#include "tests/support/modeler_hooks.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace
{

karv_test::PlaneHook* plane_hook = nullptr;
karv_test::EdgesHook* edges_hook = nullptr;

/// The library's definition, which the program's pre-empts.
template <typename Function>
Function Next(const char* mangled_name)
{
    void* const address = dlsym(RTLD_NEXT, mangled_name);
    if (address == nullptr)
        throw std::runtime_error(std::string("the modeler has no ") + mangled_name);
    return reinterpret_cast<Function>(address);
}

} // namespace

namespace AModeler
{

void Face::evaluatePlane()
{
    if (plane_hook != nullptr)
        plane_hook->Run();
    Next<void (*)(Face*)>("_ZN8AModeler4Face13evaluatePlaneEv")(this);
}

void Body::getPhysicalEdgesAndVertices(bool with_edges, bool with_vertices, std::vector<Edge*>& edges,
                                       std::vector<Vertex*>& vertices)
{
    using Function = void (*)(Body*, bool, bool, std::vector<Edge*>&, std::vector<Vertex*>&);
    Next<Function>("_ZN8AModeler4Body27getPhysicalEdgesAndVerticesEbbRSt6vectorIPNS_4EdgeESaIS3_EERS1_IPNS_"
                   "6VertexESaIS8_EE")(this, with_edges, with_vertices, edges, vertices);
    if (edges_hook != nullptr)
        edges_hook->Run(with_edges, with_vertices, edges);
}

} // namespace AModeler

namespace karv_test
{

PlaneHook::PlaneHook(std::function<void(int)> action) : action_(std::move(action))
{
    plane_hook = this;
}

PlaneHook::~PlaneHook()
{
    plane_hook = nullptr;
}

EdgesHook::EdgesHook(std::function<void(bool, bool, Edges&)> action) : action_(std::move(action))
{
    edges_hook = this;
}

EdgesHook::~EdgesHook()
{
    edges_hook = nullptr;
}

} // namespace karv_test
