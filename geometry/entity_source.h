// The place that fault reports of the entity name, whichever of the class's sources the operation stands in.
#pragma once

namespace karv
{

inline constexpr const wchar_t* kEntitySource = L".\\KARVGraphicalEntity.cpp";

} // namespace karv
