#!/usr/bin/env bash
# The layering check reports every kind of violation and accepts what is allowed.
#
#   layering_test.sh CMAKE LAYERING_SCRIPT
set -euo pipefail

readonly cmake=$1 script=$2
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failures=0

# check EXPECTED FILE LINE: EXPECTED is "passes" or "fails", for a tree with this one line in this one file.
check()
{
    local expected=$1 file=$2 line=$3 outcome=passes output
    rm -rf "${tree:?}/source"
    mkdir -p "$tree/source/${file%/*}"
    printf '%s\n' "$line" >"$tree/source/$file"
    output=$("$cmake" -D "ROOT=$tree/source" -P "$script" 2>&1) || outcome=fails
    if [[ $outcome == fails && $output != *"$file"* ]]; then
        outcome='fails without naming the file'
    fi
    if [[ $outcome != "$expected" ]]; then
        printf '%s: "%s" %s, not %s\n%s\n' "$file" "$line" "$outcome" "$expected" "$output"
        failures=$((failures + 1))
    fi
}

check fails camera/a.cpp '#include "geometry/KARVGLVertex.h"'
check fails camera/a.cpp '#include "control/KARVOpenGLControl.h"'
check fails camera/a.cpp '#include <geometry/KARVGLVertex.h>'
check fails camera/a.cpp '#  include "KARVGLCamera.h"'
check fails camera/a.h '#include "platform/winsys/core/win32.h"'
check fails geometry/deep/a.h '#include "camera/KARVGLCamera.h"'
check fails geometry/a.cpp '#include "control/KARVOpenGLControl.h"'
check fails control/a.cpp '#include "viewer/scene.h"'
check fails control/a.cpp '#include "module/entry_points.h"'
check fails module/guard.h '#include "camera/KARVGLCamera.h"'
check fails module/guard.h '#include "platform/winsys/winsys.h"'
check fails module/export.h '#include "platform/winsys/winsys.h"'
check fails platform/export.h '#include "module/export.h"'
check fails viewer/a.cpp '#include "module/export.h"'
check fails platform/framework/a.cpp '#include "control/KARVOpenGLControl.h"'
check fails platform/winsys/a.cpp '#include "platform/framework/window.h"'
check fails platform/tools/a.cpp '#include "module/guard.h"'
check fails viewer/a.cpp '#include "module/guard.h"'
check fails viewer/a.cpp '#include "control/window_class.h"'
check fails camera/a.cpp '#ifdef _WIN32'
check fails control/a.h '#if !defined(__linux__)'
check fails viewer/a.cpp '#elif defined(_MSC_VER)'
check fails tests/a.cpp '#ifndef WIN32'

check passes camera/a.cpp '#include "camera/KARVGLCamera.h"'
check passes camera/a.cpp '#include "module/guard.h"'
check passes camera/a.h '#include "module/export.h"'
check passes module/export.h '#include "platform/export.h"'
check passes camera/a.cpp '#include "platform/winsys/opengl.h"'
check passes camera/a.cpp '#include <vector>'
check passes camera/a.cpp '// no #ifdef _WIN32 stands here'
check passes control/a.cpp '#include "geometry/KARVGraphicalEntity.h"'
check passes module/a.cpp '#include "control/KARVOpenGLControl.h"'
check passes platform/winsys/a.h '#ifdef _WIN32'
check passes viewer/a.cpp '#include "geometry/KARVGLFace.h"'
check passes tests/a.cpp '#include "platform/winsys/core/win32.h"'
check passes geometry/a.h '#ifndef GL_MULTISAMPLE'

exit "$((failures != 0))"
