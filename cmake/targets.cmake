# Settings that all targets of the project share.
if(NOT WIN32)
  set(OpenGL_GL_PREFERENCE GLVND)
  find_package(OpenGL REQUIRED)
endif()

add_library(karv_options INTERFACE)
target_include_directories(karv_options INTERFACE ${PROJECT_SOURCE_DIR})
# Contraction rounds a product and a sum only once, but the order of roundings is part of the behaviour.
target_compile_options(karv_options INTERFACE -ffp-contract=off)
target_compile_definitions(karv_options INTERFACE KARV_VERSION="${PROJECT_VERSION}")
if(WIN32)
  target_compile_definitions(karv_options INTERFACE UNICODE _UNICODE NOMINMAX)
endif()
if(KARV_SANITIZE)
  target_compile_options(karv_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                -fno-omit-frame-pointer)
  target_link_options(karv_options INTERFACE -fsanitize=address,undefined)
endif()

if(KARV_FUZZ)
  target_compile_options(karv_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# For the module, and for programs that compile its headers.
add_library(karv_coverage INTERFACE)
if(KARV_COVERAGE)
  target_compile_options(karv_coverage INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(karv_coverage INTERFACE --coverage)
endif()

add_library(karv_warnings INTERFACE)
target_compile_options(karv_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# JSON for the trace file. The library is header-only, so a cross-build uses the build system's headers. It reaches them
# through a folder of their own, because their neighbours belong to the build system's C library.
if(WIN32)
  find_path(KARV_JSON_HEADERS NAMES nlohmann/json.hpp PATHS /usr/include REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/headers)
  file(CREATE_LINK ${KARV_JSON_HEADERS}/nlohmann ${PROJECT_BINARY_DIR}/headers/nlohmann SYMBOLIC)
  add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
  target_include_directories(nlohmann_json::nlohmann_json INTERFACE ${PROJECT_BINARY_DIR}/headers)
else()
  find_package(nlohmann_json REQUIRED)
endif()

# OpenGL 1.1 and GLU, without a window system.
add_library(karv_opengl INTERFACE)
if(WIN32)
  target_link_libraries(karv_opengl INTERFACE opengl32 glu32)
else()
  target_include_directories(karv_opengl INTERFACE ${OPENGL_INCLUDE_DIR})
  target_link_libraries(karv_opengl INTERFACE ${OPENGL_glu_LIBRARY} OpenGL::OpenGL)
endif()

# karv_add_version(TARGET DESCRIPTION): adds a version resource to a library on Windows; no effect elsewhere.
function(karv_add_version target description)
  if(WIN32)
    set(KARV_FILE_NAME ${target})
    set(KARV_FILE_DESCRIPTION ${description})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  endif()
endfunction()
