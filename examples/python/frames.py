#!/usr/bin/env python3
"""Converts, resizes and compresses a frame with the numpy package.

usage: PYTHONPATH=python frames.py (the library as PIXMORPH_LIBRARY says)
"""
import sys

import numpy as np, pixmorph

frame = np.full((1080, 1920, 2), 128, np.uint8)                 # UYVY, top line first
bgra = pixmorph.convert(frame, to="BGRA", format="UYVY_BT709").array
small = pixmorph.resize(bgra, (960, 540)).array
jpeg = pixmorph.Encoder("motion_jpeg", 960, 540).encode(small)

print(f"{bgra.shape} to {small.shape}, first pixel {small[0, 0]}, {len(jpeg)} bytes of Motion-JPEG")
# Grey stays grey, and the frame starts as every JPEG does.
sys.exit(0 if small.shape == (540, 960, 4) and len(set(small[0, 0, :3])) == 1 and jpeg[:2] == b"\xff\xd8" else 1)
