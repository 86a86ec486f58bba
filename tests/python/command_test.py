"""`python -m pixmorph` as a user calls it, and PIXMORPH_LEVEL, which each process reads once."""
import contextlib
import io
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import numpy as np

import pixmorph
from pixmorph.__main__ import main

try:
    from PIL import Image
except ImportError:
    Image = None

RANDOM = np.random.default_rng(21)


def run(*arguments, **environment):
    """Exit code and both outputs of a command."""
    variables = {key: value for key, value in os.environ.items() if key != "PIXMORPH_LEVEL"}
    variables |= {"OPENBLAS_NUM_THREADS": "1"} | environment
    done = subprocess.run([sys.executable, "-m", "pixmorph", *map(str, arguments)], env=variables, capture_output=True,
                          text=True, check=False)
    return done.returncode, done.stdout, done.stderr


def here(*arguments):
    """The same in this process."""
    output, error = io.StringIO(), io.StringIO()
    with contextlib.redirect_stdout(output), contextlib.redirect_stderr(error):
        code = main([str(argument) for argument in arguments])
    return code, output.getvalue(), error.getvalue()


class Info(unittest.TestCase):
    def test_prints_what_is_there(self):
        code, output, _ = run("info")
        self.assertEqual(code, 0)
        self.assertEqual(len(pixmorph.classes()), 11)
        for expected in (", ".join(pixmorph.classes()), "UYVY_BT709", "bt601, full range", "KVMJ  Korvane Motion-JPEG"):
            self.assertIn(expected, output)

    def test_prints_the_level_that_the_library_works_at(self):
        # The other source is a program of the library's own, run with the same variable.
        program = os.environ["PIXMORPH_LEVEL_IN_USE"]
        for level in ("plain", "sse41", "avx2", "avx512", "fastest", ""):
            environment = os.environ | {"PIXMORPH_LEVEL": level}
            inside = subprocess.run([program], env=environment, capture_output=True, text=True, check=True)
            code, output, _ = run("info", PIXMORPH_LEVEL=level)
            self.assertEqual(code, 0)
            line = next(line for line in output.splitlines() if line.startswith("level"))
            self.assertEqual(line.split()[1], inside.stdout.split()[0], level)

    def test_gives_the_same_bytes_at_every_level(self):
        frame = RANDOM.integers(0, 256, (4, 64, 2), np.uint8)
        with tempfile.TemporaryDirectory() as folder:
            raw, results = pathlib.Path(folder, "frame.raw"), set()
            raw.write_bytes(frame.tobytes())
            for level in ("plain", "sse41", "avx2", "avx512"):
                out = pathlib.Path(folder, level)
                code, _, error = run("convert", raw, out, "--size", "64x4", "--from", "uyvy", "--to", "bgra",
                                     PIXMORPH_LEVEL=level)
                self.assertEqual(code, 0, error)
                results.add(out.read_bytes())
        self.assertEqual(results, {pixmorph.convert(frame, "BGRA", format="UYVY").tobytes()})


class Library(unittest.TestCase):
    def test_that_is_not_there(self):
        code, _, error = run("info", PIXMORPH_LIBRARY="/nowhere/libpixmorph.so")
        self.assertEqual(code, 1)
        self.assertIn("/nowhere/libpixmorph.so", error)


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_encode_and_decode(self):
        frame = RANDOM.integers(0, 256, (32, 64, 2), np.uint8)
        raw, coded, back = (self.folder / name for name in ("frame.raw", "frame.jpg", "back.raw"))
        raw.write_bytes(frame.tobytes())
        self.assertEqual(here("encode", raw, coded, "--size", "64x32", "--from", "uyvy", "--codec", "motion_jpeg",
                             "--quality", 9000)[0], 0)
        expected = pixmorph.Encoder("motion_jpeg", 64, 32, 9000).encode(pixmorph.Picture(frame, "UYVY"))
        self.assertEqual(coded.read_bytes(), expected)
        self.assertEqual(here("decode", coded, back, "--size", "64x32", "--codec", "motion_jpeg", "--to", "yuy2")[0], 0)
        self.assertEqual(back.read_bytes(), pixmorph.Decoder("motion_jpeg", 64, 32).decode(expected, "YUY2").tobytes())

    def test_resize(self):
        frame = RANDOM.integers(0, 256, (32, 64, 2), np.uint8)
        raw, small = self.folder / "frame.raw", self.folder / "small.raw"
        raw.write_bytes(frame.tobytes())
        code, output, _ = here("convert", raw, small, "--size", "64x32", "--from", "uyvy", "--resize", "32x16")
        self.assertEqual(code, 0)
        self.assertIn("UYVY 32x16", output)
        self.assertEqual(small.read_bytes(), pixmorph.resize(frame, (32, 16), format="UYVY").tobytes())

    def test_what_is_refused(self):
        raw = self.folder / "frame.raw"
        raw.write_bytes(b"1234")
        for arguments, reason in (((raw, raw), "--from and --size"),
                                  ((raw, raw, "--size", "8x8", "--from", "uyvy"), "takes 128 bytes"),
                                  ((self.folder / "none", raw, "--size", "8x8", "--from", "uyvy"), "No such file")):
            code, _, error = here("convert", *arguments)
            self.assertEqual(code, 1)
            self.assertIn(reason, error)

    def test_png(self):
        path, out = self.folder / "in.png", self.folder / "out.png"
        if Image is None:
            path.write_bytes(b"")
            code, _, error = here("convert", path, out)
            self.assertEqual(code, 1)
            self.assertIn("Pillow is not installed", error)
            return
        rgba = RANDOM.integers(0, 256, (8, 16, 4), np.uint8)
        Image.fromarray(rgba).save(path)
        self.assertEqual(here("convert", path, self.folder / "out.raw", "--to", "bgra")[0], 0)
        self.assertEqual((self.folder / "out.raw").read_bytes(), rgba[:, :, [2, 1, 0, 3]].tobytes())
        self.assertEqual(here("convert", path, out)[0], 0)
        np.testing.assert_array_equal(np.array(Image.open(out)), rgba)


if __name__ == "__main__":
    unittest.main()
