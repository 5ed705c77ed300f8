// Files that a STEP file refers to: parts of an assembly that lie beside it. The library follows references
// to any place and without end, so they are checked before it does.
#pragma once

#include "viewer/import/brep/part_counts.h"

#include <Standard_Handle.hxx>

#include <string>

class XSControl_WorkSession;

namespace viewer
{

/// Changes the references of a file that is parsed but not transferred yet, so that the library opens only
/// files in the file's folder and in folders below it: a name with another path loses that path, and letters
/// that differ in case only are corrected. A file that refers to others outside of the folder, or to itself
/// through others, is not read but counted. Links that lead out of the folder are not followed.
void CheckExternalFiles(const std::string& path, const Handle(XSControl_WorkSession) & session,
                        LeftOutCounts& left_out);

} // namespace viewer
