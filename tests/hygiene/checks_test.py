"""Every check complains about a repository that is wrong in its way, and about nothing else."""

import pathlib
import subprocess
import tempfile
import unittest

import documents
import layout
import references
import scripts
import tested_sources


class Checks(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.root = pathlib.Path(self.folder.name)
        subprocess.run(["git", "init", "-q", str(self.root)], check=True)

    def write(self, name, content):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content, encoding="utf-8")

    def complaints(self, check):
        return list(check.check(self.root))

    def test_reference_to_a_numbered_part_is_found(self):
        self.write("a.md", "See Pa" + "rt 4.1.\n")
        self.assertEqual(len(self.complaints(references)), 1)

    def test_reference_to_a_folder_of_one_machine_is_found(self):
        self.write("a.cpp", 'auto path = "/wo' + 'rk/main/x";\n')
        self.assertEqual(len(self.complaints(references)), 1)

    def test_parts_of_a_sentence_are_no_reference(self):
        self.write("a.md", "Two parts, 128 bytes each; part 1, then part 2; spec" + "ific.\n")
        self.assertEqual(self.complaints(references), [])

    def test_untidy_source_is_found(self):
        self.write(".clang-format", "BasedOnStyle: Google\n")
        self.write("a.cpp", "int  main( ) {}\n")
        self.assertNotEqual(self.complaints(layout), [])

    def test_tidy_source_is_accepted(self):
        self.write(".clang-format", "BasedOnStyle: Google\n")
        self.write("a.cpp", "int main() {}\n")
        self.assertEqual(self.complaints(layout), [])

    def test_source_without_a_test_is_found(self):
        self.write("src/wifi/a.cpp", "")
        self.write("src/wifi/b.cpp", "")
        self.write("src/wifi/b_test.cpp", "")
        self.write("src/wifi/main.cpp", "")
        self.assertEqual(self.complaints(tested_sources), ["src/wifi/a.cpp has no a_test.cpp beside it"])

    def test_dead_link_is_found_and_a_live_one_is_not(self):
        self.write("a.md", "[dead](b.md) [live](a.md#top) [far](https://example.com/x)\n")
        self.assertEqual(self.complaints(documents), ["a.md links to b.md, which is not there"])

    def test_command_that_does_not_exist_is_found(self):
        self.write("README.md", "```\n./walk now\n```\n")
        self.assertEqual(self.complaints(documents), ["README.md shows the command ./walk, which is not there"])

    def test_careless_script_is_found(self):
        self.write("a.sh", "#!/bin/bash\nrm $1\n")
        self.assertEqual(len(self.complaints(scripts)), 1)


if __name__ == "__main__":
    unittest.main()
