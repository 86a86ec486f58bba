#!/usr/bin/env python3
"""Runs real clips through the playout example and compares what comes out with the media tool's own work.

usage: chain_test.py path/to/playout path/to/ffmpeg path/to/ffprobe default-footage-directory [unittest options]
"""
import os
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = FFMPEG = FFPROBE = FOOTAGE = None
TITLE_DELAY = 6  # frames before the title begins to show
WIDTH, HEIGHT = 640, 360
DRAWN = [("geometry", ["-f", "lavfi", "-i", "testsrc2=size=960x544:rate=50"]),
         ("detail", ["-f", "lavfi", "-i", "mandelbrot=size=640x480:rate=50:start_scale=0.5:end_scale=0.05:end_pts=80"])]


def clips():
    directory = os.environ.get("PIXMORPH_FOOTAGE", FOOTAGE)
    names = sorted(os.listdir(directory)) if os.path.isdir(directory) else []
    videos = [n for n in names if n.endswith((".mp4", ".webm", ".mov", ".mkv", ".y4m", ".mxf", ".ts"))]
    return [(n, ["-ss", "1", "-i", os.path.join(directory, n)]) for n in videos] or DRAWN


def check(command, **options):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=300, check=False, **options)
    if result.returncode != 0:
        raise AssertionError(f"{command}: {result.stderr.decode(errors='replace')}")
    return result


class Chain(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name

    def path(self, name):
        return os.path.join(self.directory, name)

    def decode(self, source, filters, frames, name):
        """The clip as Y4M, cut to sizes that interlaced 4:2:0 can have, through further filters."""
        chain = "crop=trunc(iw/16)*16:trunc(ih/8)*8:0:0,format=yuv420p,setsar=1" + ("," + filters if filters else "")
        check([FFMPEG, "-v", "error", "-nostdin", "-y", *source, "-an", "-vf", chain, "-frames:v", str(frames),
               "-pix_fmt", "yuv420p", self.path(name)])

    def playout(self, source, *arguments):
        check([PROGRAM, "--quiet", "--output-dir", self.directory, "--size", f"{WIDTH}x{HEIGHT}", *arguments, self.path(source)])

    def agreement(self, name, reference):
        """PSNR of luma and the two chroma planes over all frames, in decibels, as the tool measures it."""
        result = check([FFMPEG, "-nostdin", "-i", self.path(name), "-i", self.path(reference), "-lavfi",
                        "[0:v]settb=1/25,setpts=N[a];[1:v]settb=1/25,setpts=N[b];[a][b]psnr", "-f", "null", "-"])
        found = re.search(rb"PSNR y:(\S+) u:(\S+) v:(\S+)", result.stderr)
        self.assertIsNotNone(found, result.stderr)
        return [float(value) for value in found.groups()]

    def test_output_opens(self):
        self.decode(clips()[0][1], "", 4, "in.y4m")
        self.playout("in.y4m")
        answer = check([FFPROBE, "-v", "error", "-count_frames", "-show_entries",
                        "stream=codec_name,width,height,pix_fmt,nb_read_frames", "-of", "csv=p=0",
                        self.path("playout.y4m")]).stdout.decode().strip()
        self.assertEqual(answer, f"rawvideo,{WIDTH},{HEIGHT},yuv420p,4")
        for picture in ("contact.png",):
            answer = check([FFPROBE, "-v", "error", "-show_entries", "stream=codec_name,pix_fmt", "-of", "csv=p=0",
                            self.path(picture)]).stdout.decode().strip()
            self.assertEqual(answer, "png,rgb24")
            check([FFMPEG, "-v", "error", "-xerror", "-nostdin", "-i", self.path(picture), "-f", "null", "-"])

    def test_progressive(self):
        """4:2:0 to UYVY, reduced, and back: luma as the tool's area filter has it, chroma within what two changes of its
        lines cost."""
        for name, source in clips():
            with self.subTest(name):
                self.decode(source, "", TITLE_DELAY, "in.y4m")
                self.decode(source, f"scale={WIDTH}:{HEIGHT}:flags=area+accurate_rnd+bitexact", TITLE_DELAY, "reference.y4m")
                self.playout("in.y4m")
                luma, *chroma = self.agreement("playout.y4m", "reference.y4m")
                self.assertGreater(luma, 45)
                self.assertGreater(min(chroma), 30)

    def test_interlaced(self):
        """Interlaced by the tool, deinterlaced and reduced here: near the tool's reduction of the progressive original,
        and nearer than half a decibel less than its own deinterlacer comes."""
        for name, source in clips():
            with self.subTest(name):
                interlace = "tinterlace=mode=interleave_top,setfield=tff"
                reduce = f"scale={WIDTH}:{HEIGHT}:flags=area+accurate_rnd+bitexact"
                self.decode(source, interlace, TITLE_DELAY, "in.y4m")
                self.decode(source, f"select=not(mod(n\\,2)),{reduce}", TITLE_DELAY, "original.y4m")
                self.decode(source, f"{interlace},yadif=mode=send_frame:parity=tff:deint=all,setfield=prog,{reduce}",
                            TITLE_DELAY, "tool.y4m")
                self.playout("in.y4m", "--field-order", "top")
                luma = self.agreement("playout.y4m", "original.y4m")[0]
                self.assertGreater(luma, self.agreement("tool.y4m", "original.y4m")[0] - 0.5)


if __name__ == "__main__":
    if len(sys.argv) < 5:
        sys.exit(__doc__)
    PROGRAM, FFMPEG, FFPROBE, FOOTAGE = (os.path.abspath(sys.argv.pop(1)) for _ in range(4))
    unittest.main()
