#!/usr/bin/env python3
"""The installed libkelva.so: what it exports, and programs that have names of its inside for themselves.

Usage: shared_library_test.py BUILD_OF_THE_LIBRARY PROGRAMS COMPILER
"""

import pathlib
import re
import sys
import unittest

import embedding
from embedding import HERE, run

BUILD, PROGRAMS, COMPILER = (sys.argv.pop(1) for _ in range(3))
embedding.Embedding.programs = pathlib.Path(PROGRAMS)
MOST_EXPORTS = 260
# What begins an exported name in <kelva/...>; a table of virtual functions or the like stands before a class.
PUBLIC = re.compile(r"((vtable|typeinfo|typeinfo name) for )?(Camera|CameraError|CameraTransferError|OsxCameraError|kelva::\w+)\b")


class SharedLibrary(embedding.Embedding):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        run("cmake", "--install", BUILD, "--prefix", cls.scratch / "first")
        # Moved, so that a path of the build or of the first place would show.
        cls.prefix = (cls.scratch / "first").rename(cls.scratch / "moved")
        cls.library = next(cls.prefix.rglob("libkelva.so.*.*.*"))

    def compile(self, name, *sources, options=("-fPIE", "-pie")):
        """A program over the installed library, which finds it without a path in the environment."""
        program = self.scratch / name
        run(COMPILER, "-std=c++20", "-Wall", "-Wextra", "-Werror", *options, *sources, "-o", program,
            *embedding.pkg_config(self.prefix, "--cflags", "--libs"), f"-Wl,-rpath,{self.library.parent}")
        return program

    def test_exports_what_its_headers_declare_and_nothing_else(self):
        names = [line.split(maxsplit=2)[2] for line in run("nm", "-DC", "--defined-only", self.library).splitlines()]
        self.assertLessEqual(len(names), MOST_EXPORTS)
        self.assertEqual([name for name in names if not PUBLIC.match(name)], [])

    def test_soname_says_that_each_0_x_is_another(self):
        self.assertRegex(run("readelf", "-d", self.library), r"SONAME.*\[libkelva\.so\.0\.\d+\]")

    def test_names_one_folder_of_headers_and_no_library_of_its_inside(self):
        flags = embedding.pkg_config(self.prefix, "--cflags", "--libs")
        self.assertEqual([re.match("-[A-Za-z]", flag)[0] for flag in flags], ["-I", "-L", "-l"], flags)
        self.assertTrue(flags[0].endswith("/include"), flags)

    def test_program_links_with_pkg_config(self):
        self.expect_consumer(self.compile("with-pkg-config", HERE / "consumer/main.cpp"))

    def test_program_links_with_cmake(self):
        run("cmake", "-S", HERE / "consumer", "-B", self.scratch / "consumer", f"-DCMAKE_PREFIX_PATH={self.prefix}",
            f"-DCMAKE_CXX_COMPILER={COMPILER}")
        run("cmake", "--build", self.scratch / "consumer")
        self.expect_consumer(self.scratch / "consumer/consumer")

    def expect_beside(self, program):
        self.assertEqual(run(program, self.bus), "Camera opens, is ready\nnobody is not found\n")

    def test_application_has_a_class_Camera_of_its_own(self):
        for kind, options in (("pie", ("-fPIE", "-pie")), ("plain", ("-fno-pie", "-no-pie"))):
            program = self.compile(f"scene-{kind}", HERE / "beside/main.cpp", HERE / "beside/Scene.cpp", options=options)
            self.expect_beside(program)

    def test_application_has_a_CoreFoundation_of_its_own(self):
        self.expect_beside(self.compile("own-cf", HERE / "beside/main.cpp", HERE / "beside/OwnCoreFoundation.cpp"))

    def test_exceptions_and_derived_classes_cross_the_border(self):
        for kind, options in (("pie", ("-fPIE", "-pie")), ("plain", ("-fno-pie", "-no-pie"))):
            run(self.compile(f"border-{kind}", HERE / "beside/Border.cpp", options=options))

    def test_header_of_the_application_is_not_shadowed(self):
        own = self.scratch / "own"
        own.mkdir()
        (own / "Camera.h").write_text("struct SceneCamera {};\n")
        (own / "main.cpp").write_text("#include <kelva/Camera.h>\n#include <Camera.h>\n"
                                      "#if __has_include(<CoreFoundation/CoreFoundation.h>)\n#error not a Mac\n#endif\n"
                                      "int main() { SceneCamera(); }\n")
        self.compile("own-header", own / "main.cpp", options=(f"-I{own}",))


if __name__ == "__main__":
    unittest.main()
