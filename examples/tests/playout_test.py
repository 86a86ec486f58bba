#!/usr/bin/env python3
"""Runs the playout example and looks at what it writes, with nothing but Python's standard library.

usage: playout_test.py path/to/playout [unittest options]
"""
import math
import os
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

PROGRAM = None
TITLE_DELAY = 6  # source frames before the title begins to show


def run(*arguments, stdin=b""):
    return subprocess.run([PROGRAM, *map(str, arguments)], input=stdin, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          timeout=300, check=False)


class Y4m:
    """A Y4M file of 4:2:0 or 4:2:2 in memory."""

    def __init__(self, data):
        header, rest = data.split(b"\n", 1)
        fields = header.decode().split(" ")
        assert fields[0] == "YUV4MPEG2"
        tags = {field[0]: field[1:] for field in fields[1:]}
        self.width, self.height = int(tags["W"]), int(tags["H"])
        self.rate = tuple(map(int, tags["F"].split(":")))
        self.interlacing = tags["I"]
        self.chroma_lines = self.height if tags["C"] == "422" else self.height // 2
        luma, chroma = self.width * self.height, self.width // 2 * self.chroma_lines
        self.frames = []
        while rest:
            assert rest.startswith(b"FRAME\n"), rest[:16]
            frame = rest[6:6 + luma + 2 * chroma]
            assert len(frame) == luma + 2 * chroma
            self.frames.append((frame[:luma], frame[luma:luma + chroma], frame[luma + chroma:]))
            rest = rest[6 + luma + 2 * chroma:]

    def sample(self, frame, x, y):
        planes = self.frames[frame]
        chroma = (y * self.chroma_lines // self.height) * (self.width // 2) + x // 2
        return planes[0][y * self.width + x], planes[1][chroma], planes[2][chroma]


def make_y4m(width, height, frames, interlacing="p", chroma="422"):
    """A stream of the given frames, each a triple of planes."""
    out = f"YUV4MPEG2 W{width} H{height} F25:1 I{interlacing} A1:1 C{chroma}\n".encode()
    return out + b"".join(b"FRAME\n" + b"".join(frame) for frame in frames)


def golomb(value):
    """An unsigned Exp-Golomb code, as a string of bits."""
    code = bin(value + 1)[2:]
    return "0" * (len(code) - 1) + code


def h264_unit(head, bits):
    """A unit of an Annex B stream with its stop bit. The content must not imitate a start code."""
    bits += "1"
    bits += "0" * (-len(bits) % 8)
    payload = int(bits, 2).to_bytes(len(bits) // 8, "big")
    assert b"\0\0" not in payload
    return b"\0\0\0\1" + bytes([head]) + payload


def make_h264(frames):
    """A stream of 64 by 48: each frame, a triple of planes of 4:2:0, as an IDR picture of I_PCM macroblocks."""
    ue = golomb
    # Baseline, level 3; numbers of 4 and 8 bits; one reference; frames only, no cropping, no VUI.
    sps = "01000010" + "11000000" + "00011110" + ue(0) + ue(0) + ue(0) + ue(4) + ue(1) + "0" + ue(3) + ue(2) + "1100"
    pps = ue(0) + ue(0) + "00" + ue(0) + ue(0) + ue(0) + "000" + ue(0) + ue(0) + ue(0) + "100"
    out = h264_unit(0x67, sps + "0") + h264_unit(0x68, pps)
    for number, planes in enumerate(frames):
        bits = ue(0) + ue(7) + ue(0) + "0000" + ue(number % 2) + "00000000" + "00" + ue(0) + ue(1)
        for mb in range(12):
            bits += ue(25)
            bits += "0" * (-len(bits) % 8)
            for plane, side in zip(planes, (16, 8, 8)):
                for y in range(side):
                    start = (mb // 4 * side + y) * side * 4 + mb % 4 * side
                    bits += "".join(format(sample, "08b") for sample in plane[start:start + side])
        out += h264_unit(0x65, bits)
    return out


def psnr(a, b):
    error = sum((x - y) ** 2 for x, y in zip(a, b)) / len(a)
    return 100.0 if error == 0 else 10 * math.log10(255 * 255 / error)


def bt709(red, green, blue):
    """Y, Cb, Cr of ITU-R BT.709 for R, G, B from 0 to 1, as 8-bit values."""
    luma = 0.2126 * red + 0.7152 * green + 0.0722 * blue
    return (round(16 + 219 * luma), round(128 + 224 * (blue - luma) / 1.8556), round(128 + 224 * (red - luma) / 1.5748))


def read_png(data):
    """Checks a PNG and returns its size and its lines of R, G, B."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    at, chunks = 8, {}
    while at < len(data):
        length, = struct.unpack_from(">I", data, at)
        kind, content = data[at + 4:at + 8], data[at + 8:at + 8 + length]
        crc, = struct.unpack_from(">I", data, at + 8 + length)
        assert crc == zlib.crc32(kind + content), kind
        chunks[kind] = content
        at += 12 + length
    width, height, depth, colour = struct.unpack_from(">IIBB", chunks[b"IHDR"])
    assert (depth, colour) == (8, 2)
    raw = zlib.decompress(chunks[b"IDAT"])
    assert len(raw) == height * (3 * width + 1)
    lines, above = [], bytes(3 * width)
    for y in range(height):
        line = raw[y * (3 * width + 1):(y + 1) * (3 * width + 1)]
        assert line[0] == 2
        above = bytes((a + b) & 255 for a, b in zip(line[1:], above))
        lines.append(above)
    return width, height, lines


def read_streams(data, width, height):
    """The key of each frame of a run-length stream, as lists of opacities in reading order."""
    groups = width // 16 * height
    frames, at = [], 0
    while at < len(data):
        key = []
        while len(key) < 16 * groups:
            count, = struct.unpack_from("<i", data, at)
            at += 4
            if count < 0:
                key += [0] * (16 * -count)
            for _ in range(max(count, 0)):
                key += [255 - a for a in data[at + 16:at + 32]]
                at += 48
        assert len(key) == 16 * groups
        frames.append(key)
    return frames


class CommandLine(unittest.TestCase):
    def test_help(self):
        result = run("--help")
        self.assertEqual(result.returncode, 0)
        for word in (b"usage:", b"--output-dir", b"--double-rate", b"exit codes"):
            self.assertIn(word, result.stdout)

    def test_wrong_arguments(self):
        for arguments in (["--no-such-option"], ["--frames"], ["--frames", "0"], ["--frames", "ten"], ["--size", "64"],
                          ["--size", "65x48"], ["--size", "99999x48"], ["--chroma", "444"], ["--matrix", "2020"],
                          ["--field-order", "left"], ["a.y4m", "b.y4m"]):
            result = run(*arguments)
            self.assertEqual(result.returncode, 2, arguments)
            self.assertTrue(result.stderr.startswith(b"playout: "), arguments)

    def test_bad_input(self):
        good = make_y4m(64, 48, [(bytes(64 * 48), bytes(32 * 48), bytes(32 * 48))])
        header = good[:good.index(b"\n")]
        bad = {"empty": b"", "no video": b"RIFF....", "no frames": header + b"\n", "cut short": good[:-1],
               "no frame mark": good.replace(b"FRAME", b"FRIME"), "4:4:4": good.replace(b"C422", b"C444"),
               "high depth": good.replace(b"C422", b"C422p10"), "no size": good.replace(b" W64", b""),
               "odd": good.replace(b"W64", b"W63"), "huge": good.replace(b"W64", b"W4000000000"),
               "a stream without pictures": b"\0\0\0\1\x09\xf0", "a damaged stream": make_h264([]) + b"\0\0\1\x65\xff\xff\xff",
               "damaged rate": good.replace(b"F25:1", b"F25:0"), "endless header": b"YUV4MPEG2 X" + b"x" * 5000,
               "interlaced 4:2:0 of odd fields": make_y4m(64, 50, [], "t", "420")}
        with tempfile.TemporaryDirectory() as directory:
            for name, content in bad.items():
                path = os.path.join(directory, "bad.y4m")
                with open(path, "wb") as file:
                    file.write(content)
                result = run("--output-dir", directory, path)
                self.assertEqual(result.returncode, 3, (name, result.stderr))
                self.assertTrue(result.stderr.startswith(b"playout: "), name)
            self.assertEqual(run("--output-dir", directory, os.path.join(directory, "missing.y4m")).returncode, 3)

    def test_unwritable_output(self):
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "file")
            with open(path, "wb"):
                pass
            self.assertEqual(run("--output-dir", path, "--frames", 1, "--scene", "64x48", "--size", "64x48").returncode, 4)
            self.assertEqual(run("--output-dir", directory, "--video", os.path.join(directory, "none", "v.y4m"), "--frames", 1,
                                 "--scene", "64x48", "--size", "64x48").returncode, 4)


class Pictures(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name

    def playout(self, *arguments, stdin=b""):
        result = run("--output-dir", self.directory, *arguments, stdin=stdin)
        self.assertEqual(result.returncode, 0, result.stderr.decode())
        return result

    def read(self, name):
        with open(os.path.join(self.directory, name), "rb") as file:
            return file.read()

    def test_pipe_leaves_the_picture_as_it_is(self):
        """Without a title to be seen, 4:2:2 at the same size comes out byte for byte: no line lost, none moved."""
        frames = []
        for n in range(3):
            luma = bytes((7 * x + 13 * y + 50 * n) % 220 + 16 for y in range(48) for x in range(64))
            frames.append((luma, bytes((3 * x + 5 * y) % 200 + 20 for y in range(48) for x in range(32)),
                           bytes((5 * x + 3 * y) % 200 + 20 for y in range(48) for x in range(32))))
        source = make_y4m(64, 48, frames)
        result = self.playout("--quiet", "--video", "-", "--size", "64x48", "--chroma", "422", "-", stdin=source)
        self.assertEqual(result.stderr, b"")
        self.assertEqual(Y4m(result.stdout).frames, frames)

    def test_h264_is_decoded_to_its_last_frame(self):
        """Flat pictures of known values, one for each frame; the decoder holds some back, and all must come."""
        frames = [(bytes([30 + 8 * n]) * (64 * 48), bytes([100 + n]) * (32 * 24), bytes([150 - n]) * (32 * 24))
                  for n in range(12)]
        path = os.path.join(self.directory, "clip.264")
        with open(path, "wb") as file:
            file.write(make_h264(frames))
        result = self.playout("--quiet", "--video", "-", "--size", "64x48", "--chroma", "422", path)
        video = Y4m(result.stdout)
        self.assertEqual([video.sample(n, 0, 0) for n in range(len(video.frames))],
                         [(frame[0][0], frame[1][0], frame[2][0]) for frame in frames])

    def test_interlaced_420_goes_field_by_field(self):
        """Fields of different colour, each flat, stay apart: a conversion across them would mix their chroma."""
        rows = b"".join(bytes([80 + 60 * (y % 2)]) * 64 for y in range(48))
        chroma = b"".join(bytes([90 + 80 * (y % 2)]) * 32 for y in range(24))
        source = make_y4m(64, 48, [(rows, chroma, chroma)] * 3, "t", "420")
        result = self.playout("--video", "-", "--size", "64x48", "--chroma", "422", "-", stdin=source)
        video = Y4m(result.stdout)
        self.assertEqual(len(video.frames), 3)
        self.assertEqual(video.interlacing, "p")
        # The kept field has its own colour on its lines; the other field would read 140, 170.
        for y in range(4, 44, 2):
            self.assertEqual(video.sample(1, 32, y), (80, 90, 90))

    def test_scene_bars_frame_and_sheet(self):
        result = self.playout("--scene", "960x540", "--size", "640x360", "--frames", 4, "--fade", 0, "--stills")
        summary = result.stderr.decode()
        for word in ("to house format", "deinterlace", "resize", "title", "key", "to output format", "write", "contact sheet"):
            self.assertIn(word, summary)
        video = Y4m(self.read("playout.y4m"))
        self.assertEqual((video.width, video.height, video.rate, len(video.frames)), (640, 360, (25, 1), 4))

        bars = [(1, 1, 1), (1, 1, 0), (0, 1, 1), (0, 1, 0), (1, 0, 1), (1, 0, 0), (0, 0, 1), (0, 0, 0)]
        for frame in range(4):
            for index, colour in enumerate(bars):
                x, y = 640 // 16 + 640 * 5 // 64 * index + 25, 360 // 12 + 30
                for got, expected in zip(video.sample(frame, x, y), bt709(*(0.75 * c for c in colour))):
                    self.assertLessEqual(abs(got - expected), 1, (frame, index))
            # The white frame around the scene is two pixels thick; less than half a line may have gone into a neighbour.
            for x in (0, 320, 639):
                self.assertGreater(video.sample(frame, x, 0)[0], 200)
                self.assertGreater(video.sample(frame, x, 359)[0], 200)
            for y in (0, 180, 359):
                self.assertGreater(video.sample(frame, 0, y)[0], 200)
                self.assertGreater(video.sample(frame, 639, y)[0], 200)

        width, height, lines = read_png(self.read("6-title-on-video.png"))
        self.assertEqual((width, height), (640, 360))
        for index, colour in enumerate(bars):
            x = 640 // 16 + 640 * 5 // 64 * index + 25
            for got, part in zip(lines[60][3 * x:3 * x + 3], colour):
                self.assertLessEqual(abs(got - 191 * part), 3, index)
        width, height, lines = read_png(self.read("contact.png"))
        self.assertGreater(width, 1900)
        self.assertGreater(len(set(lines[height // 4])), 50)

    def test_smallest_and_uneven_sizes(self):
        """Nothing of the title fits any more, and nothing breaks."""
        for scene, size in (("32x16", "32x16"), ("34x18", "46x22"), ("64x48", "50x34"), ("48x400", "34x302"), ("400x32", "402x18")):
            self.playout("--scene", scene, "--size", size, "--frames", 2, "--fade", 0, "--stills", "--double-rate")
            video = Y4m(self.read("playout.y4m"))
            self.assertEqual((f"{video.width}x{video.height}", len(video.frames)), (size, 4))
            read_streams(self.read("playout.rle"), video.width // 16 * 16, video.height)

    def test_key_stream(self):
        self.playout("--scene", "640x368", "--size", "320x184", "--frames", 2, "--fade", 0)
        keys = read_streams(self.read("playout.rle"), 320, 184)
        self.assertEqual(len(keys), 2)
        # Upright: the logo is at the top on the right, the caption at the bottom on the left; letters are opaque.
        opaque = [(i % 320, i // 320) for i, opacity in enumerate(keys[0]) if opacity >= 254]
        self.assertTrue(any(x > 260 and y < 50 for x, y in opaque))
        self.assertFalse(any(x < 200 and y < 100 for x, y in opaque))
        self.assertTrue(any(x < 200 and 128 < y < 160 for x, y in opaque))
        self.assertNotEqual(keys[0], keys[1], "the crawl stands still")

    def test_fade_is_even(self):
        fade = 10
        self.playout("--scene", "320x184", "--size", "320x184", "--frames", 2 * TITLE_DELAY + 2 * fade + 4, "--fade", fade,
                     "--hold", 4)
        keys = read_streams(self.read("playout.rle"), 320, 184)
        opacity = [max(key) for key in keys]
        for n, value in enumerate(opacity):
            rise, fall = (n - TITLE_DELAY) / fade, (TITLE_DELAY + 2 * fade + 4 - n) / fade
            expected = 255 * max(0.0, min(rise, fall, 1.0))
            self.assertLessEqual(abs(value - expected), 2.5, (n, opacity))
        steps = [b - a for a, b in zip(opacity, opacity[1:])][TITLE_DELAY:TITLE_DELAY + fade]
        self.assertLessEqual(max(steps) - min(steps), 3, steps)

    def test_deinterlaced_is_near_the_progressive_scene(self):
        arguments = ("--scene", "320x184", "--size", "320x184", "--frames", 5, "--chroma", "422", "--quiet", "--video", "-")
        truth = Y4m(self.playout(*arguments, "--field-order", "progressive").stdout)
        for order in ("top", "bottom"):
            made = Y4m(self.playout(*arguments, "--field-order", order).stdout)
            double = Y4m(self.playout(*arguments, "--field-order", order, "--double-rate").stdout)
            self.assertEqual((len(made.frames), len(double.frames)), (5, 10))
            self.assertEqual((made.rate, double.rate), ((25, 1), (50, 1)))
            for n in range(1, 4):
                self.assertGreater(psnr(made.frames[n][0], truth.frames[n][0]), 30, (order, n))
                self.assertEqual(double.frames[2 * n], made.frames[n], (order, n))
                # The second frame of each pair is another moment, half a frame on.
                self.assertLess(psnr(double.frames[2 * n + 1][0], truth.frames[n][0]), 30, (order, n))


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
