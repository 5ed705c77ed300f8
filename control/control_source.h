// The place that fault reports of the control name, whichever of the class's sources the operation stands in.
#pragma once

namespace karv
{

inline constexpr const wchar_t* kControlSource = L".\\KARVOpenGLControl.cpp";

} // namespace karv
