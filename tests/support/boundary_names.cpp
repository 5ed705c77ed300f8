#include "tests/support/boundary_names.h"

namespace karv_test
{

bool IsOfTheBoundary(const std::string& name)
{
    for (const char* type :
         {"KARVOpenGLControl", "KARVGLCamera", "KARVGraphicalEntity", "KARVGLVertex", "KARVGLFace"}) {
        if (name.starts_with(std::string(type) + "::"))
            return true;
    }
    for (const char* kind : {"vtable for ", "typeinfo for ", "typeinfo name for "})
        if (name == std::string(kind) + "KARVOpenGLControl")
            return true;
    return name == "acrxEntryPoint" || name == "acrxGetApiVersion";
}

const std::vector<std::string>& BoundarySamples()
{
    static const std::vector<std::string> samples = {"KARVOpenGLControl::KARVOpenGLControl",
                                                     "KARVOpenGLControl::~KARVOpenGLControl",
                                                     "KARVOpenGLControl::CreateCtrl",
                                                     "vtable for KARVOpenGLControl",
                                                     "typeinfo for KARVOpenGLControl",
                                                     "KARVGLCamera::KARVGLCamera",
                                                     "KARVGLCamera::UpdateCamera",
                                                     "KARVGLCamera::ZoomCamera",
                                                     "KARVGraphicalEntity::KARVGraphicalEntity",
                                                     "KARVGraphicalEntity::DoesPointContainExtent",
                                                     "KARVGLVertex::KARVGLVertex"};
    return samples;
}

} // namespace karv_test
