# What every target of the project shares.
set(OpenGL_GL_PREFERENCE GLVND)
find_package(OpenGL REQUIRED)

add_library(karv_options INTERFACE)
target_include_directories(karv_options INTERFACE ${PROJECT_SOURCE_DIR})
# Contraction would fuse a product and a sum into one rounding, and the order of roundings is part of the behaviour.
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

# For the module, and for the programs that compile its headers once more.
add_library(karv_coverage INTERFACE)
if(KARV_COVERAGE)
  target_compile_options(karv_coverage INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(karv_coverage INTERFACE --coverage)
endif()

add_library(karv_warnings INTERFACE)
target_compile_options(karv_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# OpenGL 1.1 and GLU, and nothing of a window system.
add_library(karv_opengl INTERFACE)
if(WIN32)
  target_link_libraries(karv_opengl INTERFACE opengl32 glu32)
else()
  target_include_directories(karv_opengl INTERFACE ${OPENGL_INCLUDE_DIR})
  target_link_libraries(karv_opengl INTERFACE ${OPENGL_glu_LIBRARY} OpenGL::OpenGL)
endif()
