"""Holds the tree against its layering; prints each breach and exits with 1 where there is one.

    layering.py ROOT

- A file includes only headers that its folder may know.
- No two parts include each other, directly or by way of others. A part is a header with its sources:
  a.h, a.cpp, a_linux.cpp, a_windows.cpp.
- Outside platform/, no file asks which operating system it is compiled for.
- A CMake list names only sources of its own folder, or of folders below it that have no list.
"""

import pathlib
import re
import sys

FOLDERS = ("bench", "camera", "control", "examples", "geometry", "module", "platform", "tests", "viewer")

# What clients may include of the module, and of the platform.
BOUNDARY = r"control/KARVOpenGLControl\.h|camera/KARVGLCamera\.h|geometry/KARVG[A-Za-z]+\.h"
PLATFORM = r"platform/export\.h|platform/(tools|host|modeler|framework)/|platform/winsys/[a-z0-9_]+\.h"

# What a file may include, as patterns of paths. The first rule whose pattern matches the file counts.
RULES = [
    (r"platform/tools/", r"platform/tools/|platform/export\.h"),
    (r"platform/host/", r"platform/host/|platform/tools/utf8\.h|platform/export\.h"),
    (r"platform/modeler/", r"platform/modeler/|platform/host/|platform/winsys/opengl\.h|platform/export\.h"),
    (r"platform/framework/", r"platform/framework/|platform/winsys/winsys\.h|platform/export\.h"),
    (r"platform/winsys/", r"platform/winsys/|platform/tools/|platform/export\.h"),
    (r"platform/", r"platform/"),
    (r"module/export\.h", r"platform/export\.h"),
    (r"module/guard\.h", r"platform/tools/trace\.h"),
    (r"camera/", rf"camera/|module/(guard|export)\.h|{PLATFORM}"),
    (r"geometry/", rf"geometry/|module/(guard|export)\.h|{PLATFORM}"),
    (r"control/", rf"control/|camera/|geometry/|module/(guard|export)\.h|{PLATFORM}"),
    (r"module/", rf"module/|control/|camera/|geometry/|{PLATFORM}"),
    # The scene stands on the module, importers and output on the scene, windows on output, programs on all.
    (r"viewer/text/", r"viewer/text/|platform/tools/"),
    (r"viewer/scene/", rf"viewer/(scene|text)/|{BOUNDARY}|{PLATFORM}"),
    (r"viewer/import/process/reader_program\.cpp", r"viewer/(import|scene|text)/|platform/tools/"),
    (r"viewer/import/process/", r"viewer/import/(process/|[a-z_]+\.h)|viewer/(scene|text)/|platform/tools/"),
    (r"viewer/import/(brep|dxf|mesh)/", r"viewer/import/([a-z_]+\.h|\1/)|viewer/(scene|text)/|platform/host/cm/|platform/tools/"),
    (r"viewer/import/", r"viewer/(import|scene|text)/|platform/tools/"),
    (r"viewer/output/", rf"viewer/(output|scene|text)/|viewer/import/progress\.h|{PLATFORM}"),
    (r"viewer/window/", rf"viewer/(window|output|scene|text)/|{BOUNDARY}|{PLATFORM}"),
    (r"viewer/apps/([a-z0-9-]+)/", rf"viewer/apps/\1/|viewer/(window|output|import|scene|text)/|{BOUNDARY}|{PLATFORM}"),
    (r"examples/", rf"examples/|{BOUNDARY}|{PLATFORM}"),
    (r"bench/", rf"bench/|module/guard\.h|{BOUNDARY}|{PLATFORM}"),
    (r"tests/", r""),
]

SYSTEM_MACROS = r"_WIN32|_WIN64|WIN32|__linux__|__linux|__unix__|__APPLE__|_MSC_VER|__MINGW32__|__MINGW64__"
# Headers of the project are the quoted ones, and those in angle brackets that begin with a folder of the project.
INCLUDE = re.compile(rf'^[ \t]*#[ \t]*include[ \t]*(?:"([^"]*)"|<((?:{"|".join(FOLDERS)})/[^>]*)>)', re.MULTILINE)
CONDITION = re.compile(rf"^[ \t]*#[ \t]*(?:if|ifdef|ifndef|elif)[ \t(!].*(?:{SYSTEM_MACROS}).*$", re.MULTILINE)
SOURCE_IN_LIST = re.compile(r"""[^\s()"]+\.(?:cpp|cc|c|rc)(?=[\s()"]|$)""")


def allowed_includes(file):
    for pattern, allowed in RULES:
        match = re.match(pattern, file)
        if match:
            return match.expand(allowed) if match.groups() else allowed
    return None


def include_breaches(file, headers):
    allowed = allowed_includes(file)
    if allowed is None:
        yield f"{file} lies in a folder without a rule"
        return
    for header in headers:
        if not re.match(allowed, header):
            yield f"{file} must not include {header}"


def part_of(file, files):
    name = re.sub(r"\.(h|cpp)$", "", file)
    for system in ("_linux", "_windows"):
        common = name.removesuffix(system)
        if common != name and {common + "_linux.cpp", common + "_windows.cpp"} <= files:
            return common
    return name


def parts_of(includes):
    """Which parts each part includes."""
    files = set(includes)
    parts = {}
    for file, headers in includes.items():
        part = part_of(file, files)
        included = {part_of(header, files) for header in headers}
        parts.setdefault(part, set()).update(included - {part})
    return parts


def cycles(includes):
    """The circles among parts that include each other, each once."""
    done, found = set(), []

    def visit(part, path):
        if part in path:
            circle = path[path.index(part):]
            first = circle.index(min(circle))
            found.append(tuple(circle[first:] + circle[:first]))
            return
        if part in done:
            return
        for included in sorted(includes.get(part, ())):
            visit(included, path + [part])
        done.add(part)

    for part in sorted(includes):
        visit(part, [])
    return sorted(set(found))


def list_breaches(root, cmake_list):
    name = cmake_list.relative_to(root).as_posix()
    text = re.sub(r"#.*$", "", cmake_list.read_text(encoding="utf-8"), flags=re.MULTILINE)
    for source in SOURCE_IN_LIST.findall(text):
        if source.startswith(("${CMAKE_CURRENT_BINARY_DIR}/", "${PROJECT_BINARY_DIR}/")):
            continue
        path = source.removeprefix("${CMAKE_CURRENT_SOURCE_DIR}/")
        if path.startswith(("/", "${PROJECT_SOURCE_DIR}", "${CMAKE_SOURCE_DIR}")) or ".." in path.split("/"):
            yield f"{name} names a source of another folder: {source}"
            continue
        for folder in pathlib.PurePosixPath(path).parents:
            if folder.name and (cmake_list.parent / folder / "CMakeLists.txt").exists():
                yield f"{name} names a source of {folder}, which has a list: {source}"


def breaches(root):
    includes = {}
    for folder in FOLDERS:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            file = path.relative_to(root).as_posix()
            text = path.read_text(encoding="utf-8")
            headers = [quoted or bracketed for quoted, bracketed in INCLUDE.findall(text)]
            includes[file] = headers
            yield from include_breaches(file, headers)
            if not file.startswith("platform/"):
                for line in CONDITION.findall(text):
                    yield f"{file} asks for the operating system: {line.strip()}"
        for cmake_list in sorted((root / folder).rglob("CMakeLists.txt")):
            yield from list_breaches(root, cmake_list)
    if not includes:
        yield f"no sources under {root}"
    for circle in cycles(parts_of(includes)):
        yield "these include each other: " + ", ".join(circle)


def main():
    found = list(breaches(pathlib.Path(sys.argv[1])))
    for breach in found:
        print(breach)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
