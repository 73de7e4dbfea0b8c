"""What the tests of embedding programs share: a bus with a camera, and programs that are built and run."""

import os
import pathlib
import subprocess
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent


def run(*command, **more):
    """The output of a command that succeeds."""
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class Embedding(unittest.TestCase):
    """Tests with a scratch folder and a bus whose only camera is KV-0001."""

    programs = pathlib.Path()

    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory(prefix="kelva-embed-")
        cls.addClassCleanup(scratch.cleanup)
        cls.scratch = pathlib.Path(scratch.name)
        cls.bus = cls.scratch / "bus"
        vcam = cls.programs / "kelva-vcam"
        serve = subprocess.Popen([vcam, "serve", "--virtual", cls.bus], stdout=subprocess.PIPE, text=True)
        cls.addClassCleanup(serve.stdout.close)
        cls.addClassCleanup(serve.wait)
        cls.addClassCleanup(serve.terminate)
        serve.stdout.readline()  # it says that the bus is ready
        (cls.scratch / "card").mkdir()
        run(vcam, "plug", "--virtual", cls.bus, "--serial", "KV-0001", "--storage", cls.scratch / "card")

    def expect_consumer(self, program, **more):
        self.assertEqual(run(program, self.bus, **more), "found Camera, which opens\nsource: \n")
        self.assertIn("source: ", run(program, **more))


def pkg_config(prefix, *options):
    folder = next(prefix.rglob("kelva.pc")).parent
    return run("pkg-config", *options, "kelva", env={**os.environ, "PKG_CONFIG_PATH": str(folder)}).split()
