// The place that fault reports of the camera name, whichever of the class's sources the operation stands in.
#pragma once

namespace karv
{

inline constexpr const wchar_t* kCameraSource = L".\\KARVGLCamera.cpp";

} // namespace karv
