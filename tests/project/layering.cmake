# Fails when a file includes a header that its folder must not use, or tests for the operating system outside platform/.
#
#   cmake -D ROOT=<tree> -P layering.cmake
cmake_minimum_required(VERSION 3.25)

# The headers that a file may include, as regular expressions for the start of a path. The first rule whose pattern
# matches the file applies.
set(rules
    "^platform/tools/=platform/tools/|platform/winsys/export.h"
    "^platform/host/=platform/host/|platform/winsys/export.h"
    "^platform/modeler/=platform/modeler/|platform/host/|platform/winsys/[a-z_]+.h"
    "^platform/framework/=platform/framework/|platform/winsys/winsys.h|platform/winsys/export.h"
    "^platform/winsys/=platform/winsys/|platform/tools/"
    "^platform/=platform/"
    "^module/guard.h=platform/tools/trace.h"
    "^camera/=camera/|module/guard.h|PLATFORM"
    "^geometry/=geometry/|module/guard.h|PLATFORM"
    "^control/=control/|camera/|geometry/|module/guard.h|PLATFORM"
    "^module/=module/|control/|camera/|geometry/|PLATFORM"
    "^viewer/=viewer/|BOUNDARY|PLATFORM"
    "^examples/win32-dialog/=examples/win32-dialog/|viewer/|BOUNDARY|PLATFORM"
    "^examples/=examples/|BOUNDARY|PLATFORM"
    "^bench/=bench/|module/guard.h|BOUNDARY|PLATFORM"
    "^tests/=.*")
# The boundary headers of the module; clients include no others of it.
set(boundary "control/KARVOpenGLControl.h|camera/KARVGLCamera.h|geometry/KARVG[A-Za-z]+.h")
# The headers of platform/ for all clients. The subfolders of winsys are private to it.
set(platform "platform/(tools|host|modeler|framework)/|platform/winsys/[a-z_]+.h")
set(system_macros "_WIN32|_WIN64|WIN32|__linux__|__linux|__unix__|__APPLE__|_MSC_VER|__MINGW32__|__MINGW64__")

set(found 0)
macro(report message)
  message(NOTICE "${message}")
  math(EXPR found "${found} + 1")
endmacro()

set(patterns "")
foreach(folder IN ITEMS bench camera control examples geometry module platform tests viewer)
  list(APPEND patterns "${ROOT}/${folder}/*.h" "${ROOT}/${folder}/*.cpp")
endforeach()
file(GLOB_RECURSE files RELATIVE "${ROOT}" ${patterns})
if(NOT files)
  message(FATAL_ERROR "no sources under ${ROOT}")
endif()

foreach(file IN LISTS files)
  set(allowed "")
  foreach(rule IN LISTS rules)
    string(REGEX REPLACE "=.*$" "" pattern "${rule}")
    if(file MATCHES "${pattern}")
      string(REGEX REPLACE "^[^=]+=" "" allowed "${rule}")
      break()
    endif()
  endforeach()
  string(REPLACE "BOUNDARY" "${boundary}" allowed "${allowed}")
  string(REPLACE "PLATFORM" "${platform}" allowed "${allowed}")

  # Project headers are the quoted ones, and those in angle brackets whose path begins with a folder of the project.
  file(STRINGS "${ROOT}/${file}" includes REGEX
       "^[ \t]*#[ \t]*include[ \t]*(\"|<(bench|camera|control|examples|geometry|module|platform|tests|viewer)/)")
  foreach(line IN LISTS includes)
    string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*[\"<]([^\">]*)[\">].*$" "\\1" header "${line}")
    if(NOT header MATCHES "^(${allowed})")
      report("${file} must not include ${header}")
    endif()
  endforeach()

  if(NOT file MATCHES "^platform/")
    file(STRINGS "${ROOT}/${file}" conditions REGEX
         "^[ \t]*#[ \t]*(if|ifdef|ifndef|elif)[ \t(!].*(${system_macros})")
    foreach(line IN LISTS conditions)
      report("${file} asks for the operating system: ${line}")
    endforeach()
  endif()
endforeach()

if(found GREATER 0)
  message(FATAL_ERROR "${found} breaches of the layering")
endif()
