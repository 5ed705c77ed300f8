"""The check of the layering reports each kind of breach and nothing else.

    layering_test.py
"""

import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import layering  # noqa: E402


class Layering(unittest.TestCase):
    def breaches(self, files):
        """What the check reports of a tree of these files, texts by path."""
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name, text in files.items():
                path = root / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text + "\n", encoding="utf-8")
            return list(layering.breaches(root))

    def test_names_a_file_that_includes_what_its_folder_must_not_know(self):
        for file, line in [
            ("camera/a.cpp", '#include "geometry/KARVGLVertex.h"'),
            ("camera/a.cpp", '#include "control/KARVOpenGLControl.h"'),
            ("camera/a.cpp", "#include <geometry/KARVGLVertex.h>"),
            ("camera/a.cpp", '#  include "KARVGLCamera.h"'),
            ("camera/a.h", '#include "platform/winsys/core/win32.h"'),
            ("geometry/deep/a.h", '#include "camera/KARVGLCamera.h"'),
            ("geometry/a.cpp", '#include "control/KARVOpenGLControl.h"'),
            ("control/a.cpp", '#include "viewer/scene/model.h"'),
            ("control/a.cpp", '#include "module/entry_points.h"'),
            ("module/guard.h", '#include "camera/KARVGLCamera.h"'),
            ("module/guard.h", '#include "platform/winsys/winsys.h"'),
            ("module/export.h", '#include "platform/winsys/winsys.h"'),
            ("platform/framework/a.cpp", '#include "control/KARVOpenGLControl.h"'),
            ("platform/winsys/a.cpp", '#include "platform/framework/window.h"'),
            ("platform/tools/a.cpp", '#include "module/guard.h"'),
            ("viewer/scene/a.cpp", '#include "module/guard.h"'),
            ("viewer/scene/a.cpp", '#include "control/pixel_format_probe.h"'),
            ("viewer/scene/a.cpp", '#include "viewer/import/model_file.h"'),
            ("viewer/scene/a.cpp", '#include "viewer/window/model_window.h"'),
            ("viewer/scene/a.cpp", '#include "viewer/output/picture.h"'),
            ("viewer/text/a.cpp", '#include "viewer/scene/model.h"'),
            ("viewer/import/a.cpp", '#include "viewer/output/picture.h"'),
            ("viewer/import/a.cpp", '#include "control/KARVOpenGLControl.h"'),
            ("viewer/import/dxf/a.cpp", '#include "viewer/import/brep/document.h"'),
            ("viewer/import/mesh/a.cpp", '#include "viewer/import/process/model_stream.h"'),
            ("viewer/import/process/reader_client_linux.cpp", '#include "viewer/import/brep/document.h"'),
            ("viewer/output/a.cpp", '#include "viewer/window/model_window.h"'),
            ("viewer/output/a.cpp", '#include "viewer/import/model_file.h"'),
            ("viewer/window/a.cpp", '#include "viewer/import/process/reader_client.h"'),
            ("viewer/window/a.cpp", '#include "viewer/apps/karv-view/options.h"'),
            ("viewer/apps/karv-view/a.cpp", '#include "viewer/apps/win32-dialog/dialog.h"'),
            ("viewer/apps/karv-view/a.cpp", '#include "module/guard.h"'),
            ("examples/embed/a.cpp", '#include "viewer/scene/model.h"'),
            ("examples/embed/a.cpp", '#include "module/guard.h"'),
        ]:
            with self.subTest(file=file, line=line):
                found = self.breaches({file: line})
                self.assertEqual(len(found), 1, found)
                self.assertTrue(found[0].startswith(file + " must not include "), found)

    def test_names_a_file_that_asks_for_the_operating_system(self):
        for file, line in [
            ("camera/a.cpp", "#ifdef _WIN32"),
            ("control/a.h", "#if !defined(__linux__)"),
            ("viewer/scene/a.cpp", "#elif defined(_MSC_VER)"),
            ("tests/a.cpp", "#ifndef WIN32"),
        ]:
            with self.subTest(file=file, line=line):
                self.assertEqual(self.breaches({file: line}), [f"{file} asks for the operating system: {line}"])

    def test_names_parts_that_include_each_other(self):
        pair = {
            "camera/a.h": "",
            "camera/a.cpp": '#include "camera/b.h"',
            "camera/b.h": '#include "camera/a.h"',
        }
        self.assertEqual(self.breaches(pair), ["these include each other: camera/a, camera/b"])
        systems = {
            "platform/tools/a_linux.cpp": '#include "platform/tools/b.h"',
            "platform/tools/a_windows.cpp": "",
            "platform/tools/b.h": '#include "platform/tools/a.h"',
        }
        self.assertEqual(self.breaches(systems), ["these include each other: platform/tools/a, platform/tools/b"])
        three = {
            "tests/c.h": '#include "tests/a.h"',
            "tests/a.h": '#include "tests/b.h"',
            "tests/b.h": '#include "tests/c.h"',
        }
        self.assertEqual(self.breaches(three), ["these include each other: tests/a, tests/b, tests/c"])

    def test_names_a_list_that_takes_sources_of_another_folder(self):
        for source in ["../camera/a.cpp", "${PROJECT_SOURCE_DIR}/camera/a.cpp", "/src/a.cpp", "deep/../../a.rc"]:
            with self.subTest(source=source):
                found = self.breaches({"camera/a.cpp": "", "module/CMakeLists.txt": f"add_library(m b.cpp {source})"})
                self.assertEqual(found, [f"module/CMakeLists.txt names a source of another folder: {source}"])
        found = self.breaches({"tests/a/b/x.cpp": "", "tests/a/CMakeLists.txt": "", "tests/CMakeLists.txt": "f(t a/b/x.cpp)"})
        self.assertEqual(found, ["tests/CMakeLists.txt names a source of a, which has a list: a/b/x.cpp"])

    def test_names_a_folder_without_a_rule_and_a_tree_without_sources(self):
        self.assertEqual(self.breaches({"viewer/a.cpp": ""}), ["viewer/a.cpp lies in a folder without a rule"])
        self.assertEqual(len(self.breaches({"README.md": ""})), 1)

    def test_lets_everything_else_pass(self):
        for file, line in [
            ("camera/a.cpp", '#include "camera/KARVGLCamera.h"'),
            ("camera/a.cpp", '#include "module/guard.h"'),
            ("camera/a.cpp", '#include "platform/winsys/opengl.h"'),
            ("camera/a.cpp", "#include <vector>"),
            ("camera/a.cpp", "// no #ifdef _WIN32 here"),
            ("control/a.cpp", '#include "geometry/KARVGraphicalEntity.h"'),
            ("module/a.cpp", '#include "control/KARVOpenGLControl.h"'),
            ("platform/winsys/a.h", "#ifdef _WIN32"),
            ("viewer/scene/a.cpp", '#include "geometry/KARVGLFace.h"'),
            ("viewer/import/dxf/a.cpp", '#include "viewer/import/dxf/drawing.h"'),
            ("viewer/import/dxf/a.cpp", '#include "viewer/import/import_options.h"'),
            ("viewer/import/process/reader_program.cpp", '#include "viewer/import/model_file.h"'),
            ("viewer/apps/karv-view/a.cpp", '#include "viewer/window/model_window.h"'),
            ("tests/a.cpp", '#include "platform/winsys/core/win32.h"'),
            ("geometry/a.h", "#ifndef GL_MULTISAMPLE"),
            ("camera/CMakeLists.txt", "add_library(m a.cpp deep/b.cpp ${CMAKE_CURRENT_BINARY_DIR}/c.rc) # ../d.cpp"),
        ]:
            with self.subTest(file=file, line=line):
                self.assertEqual(self.breaches({"tests/x.h": "", file: line}), [])


if __name__ == "__main__":
    unittest.main()
