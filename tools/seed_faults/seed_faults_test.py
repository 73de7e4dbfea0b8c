"""The seeder on a room of toys, where every kind of fault is seen to be caught and seen to survive."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import operators

HERE = pathlib.Path(__file__).resolve().parent
TOY = HERE / "testing"
CXX = sys.argv.pop()


def faults(text, *names):
    return [operators.apply(text, fault) for fault in operators.faults(text, names)]


class Operators(unittest.TestCase):
    def test_each_makes_its_fault(self):
        cases = {
            "cmp": ("x = a < b;", "x = a <= b;"),
            "const": ("f(0x1F);", "f((0x1F+1));"),
            "arith": ("x = a + b;", "x = a - b;"),
            "incdec": ("++x;", "--x;"),
            "andor": ("x = a && b;", "x = a || b;"),
            "bool": ("f(true);", "f(false);"),
            "retbool": ("return false;", "return true;"),
            "not": ("f(!a);", "f(a);"),
            "minmax": ("x = std::max(a, b);", "x = std::min(a, b);"),
            "negif": ("if (const int x = f(); x) {\n}", "if (const int x = f(); !(x)) {\n}"),
            "dropif": ("if (a) {\n}", "if (false && (a)) {\n}"),
            "dropguard": ("if (a) return b;\n", "(void)0;\n"),
            "dropcall": ("a.b->Close(\n    c);", "(void)0;"),
            "dropassign": ("a.b = c;", "(void)0;"),
            "droplock": ("const std::lock_guard lock(mutex_);", "(void)0;"),
            "swap": ("f(1);\n  x = 2;\n", "x = 2;\n  f(1);\n"),
            "ret": ("return a;", "return {};"),
            "flag": ("f(O_RDWR | more);", "f(more);"),
        }
        self.assertEqual(set(cases), set(operators.OPERATORS))
        for name, (was, made) in cases.items():
            with self.subTest(name=name):
                self.assertEqual(faults(was, name), [made])

    def test_a_lock_that_others_wait_with_stays_but_is_not_taken(self):
        self.assertEqual(faults("std::unique_lock lock(m);", "droplock"), ["std::unique_lock lock(m, std::defer_lock);"])

    def test_comments_texts_includes_and_assertions_of_the_compiler_have_no_faults(self):
        for text in ("// a < b;\n", '"a < b";', "#if A == 1\n#endif\n", "static_assert(a == 1);", "/* x = 1;\n*/", "R\"(a < b)\";"):
            with self.subTest(text=text):
                self.assertEqual([fault for fault in operators.faults(text)], [])

    def test_a_number_with_separators_is_one_number(self):
        self.assertEqual(faults("f(1'000'000);", "const"), ["f((1'000'000+1));"])

    def test_another_name_for_nothing_is_no_fault_of_a_returned_value(self):
        for value in ('""', "{}", "0", "nullptr"):
            self.assertEqual(faults(f"return {value};", "ret"), [], value)
        self.assertEqual(faults('return "a";', "ret"), ["return {};"])

    def test_lines_that_guard_data_are_known_by_their_words(self):
        for line in ("file.reset();", "if (::fsync(x) != 0) {", "folder.Sync();", "IOObjectRelease(x);", "const std::lock_guard l(m);"):
            self.assertTrue(operators.guards_data(line), line)
        for line in ("clock.Now();", "block = 3;", 'Say("unlink");', "text.remove_prefix(1);"):
            self.assertFalse(operators.guards_data(line), line)


class Rounds(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.build = pathlib.Path(cls.folder.name) / "build"
        quiet = {"check": True, "stdout": subprocess.DEVNULL}
        subprocess.run(["cmake", "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={CXX}", "-S", TOY, "-B", cls.build], **quiet)
        subprocess.run(["cmake", "--build", cls.build], **quiet)

    def run_rounds(self, *words, equivalents=""):
        listed = pathlib.Path(self.folder.name) / "equivalents.toml"
        listed.write_text(equivalents, encoding="utf-8")
        command = [sys.executable, "-B", HERE / "seed_faults.py", "--build", self.build, "--root", TOY, "--seed", "1",
                   "--table", TOY / "rooms.toml", "--equivalents", listed, *words]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout

    def kinds(self, output):
        """Each operator with the outcomes of its faults."""
        found = {}
        for operator, outcome in re.findall(r"^\S+ \[(\w+)\] (caught by wider tests|\w+)", output, re.MULTILINE):
            found.setdefault(operator, set()).add(outcome)
        return found

    def test_every_kind_of_fault_is_caught_by_a_test_that_looks(self):
        code, output = self.run_rounds("--faults", "0", "--operators", ",".join(operators.OPERATORS), "strict")
        kinds = self.kinds(output)
        self.assertEqual(set(kinds), set(operators.OPERATORS))
        for operator, outcomes in kinds.items():
            self.assertIn("caught", outcomes, operator)
            self.assertNotIn("survived", outcomes, f"{operator}\n{output}")
        self.assertEqual(code, 0)

    def test_faults_survive_a_test_that_does_not_look(self):
        code, output = self.run_rounds("--faults", "3", "lax")
        self.assertEqual({outcome for outcomes in self.kinds(output).values() for outcome in outcomes} - {"stillborn"}, {"survived"})
        self.assertEqual(code, 1)

    def test_wider_tests_are_asked_when_the_rooms_own_are_content(self):
        code, output = self.run_rounds("--faults", "0", "--operators", "flag", "both")
        self.assertEqual(self.kinds(output), {"flag": {"caught by wider tests"}})
        self.assertEqual(code, 0)

    def test_an_equivalent_counts_neither_way_and_gives_its_reason(self):
        entry = ('[[equivalent]]\nfile = "room/Locks.cpp"\noperator = "minmax"\nwas = "return std::min(first, second);"\n'
                 'is = "return std::max(first, second);"\nreason = "nobody asks"\n')
        code, output = self.run_rounds("--faults", "0", "--operators", "minmax", "lax", equivalents=entry)
        self.assertIn("room/Locks.cpp:10 [minmax] equivalent: nobody asks", output)
        self.assertEqual(code, 0)

    def test_an_entry_whose_fault_is_gone_is_one_complaint_and_the_round_goes_on(self):
        entry = ('[[equivalent]]\nfile = "room/Locks.cpp"\noperator = "minmax"\nwas = "return std::min(before, second);"\n'
                 'is = "return std::max(before, second);"\nreason = "nobody asks"\n')
        gone = entry.replace("Locks", "Gone").replace("before", "first")
        code, output = self.run_rounds("--faults", "0", "--operators", "minmax", "strict", equivalents=entry + gone)
        self.assertEqual(output.splitlines()[:2], [
            "equivalents.toml: room/Locks.cpp no longer offers [minmax] of: return std::min(before, second);",
            "equivalents.toml: room/Gone.cpp no longer offers [minmax] of: return std::min(first, second);"])
        self.assertIn("room/Locks.cpp:10 [minmax] caught", output)
        self.assertEqual(code, 0)
        self.assertEqual(self.run_rounds("--check", equivalents=entry)[0], 1)

    def test_a_seed_gives_the_same_faults_again_and_another_gives_others(self):
        lists = [self.run_rounds("--list", "--faults", "6", "--seed", seed, "lax")[1].partition("\n")[2] for seed in ("7", "7", "8")]
        self.assertEqual(lists[0], lists[1])
        self.assertNotEqual(lists[0], lists[2])

    def test_a_run_that_is_repeated_goes_on_where_it_ended(self):
        scratch = pathlib.Path(self.folder.name) / "scratch"
        words = ("--faults", "2", "--scratch", scratch, "lax")
        first = self.run_rounds(*words)[1]
        remembered = (scratch / "outcomes.jsonl").read_text()
        self.assertEqual(self.run_rounds(*words)[1], first)
        self.assertEqual((scratch / "outcomes.jsonl").read_text(), remembered)


if __name__ == "__main__":
    unittest.main()
