"""Pixmorph: pixel format conversion, resizing, titles, deinterlacing and codecs of single frames, on numpy arrays.

    import numpy as np, pixmorph

    frame = np.zeros((1080, 1920, 2), np.uint8)                     # UYVY, top line first
    bgra = pixmorph.convert(frame, to="BGRA", format="UYVY_BT709").array
    small = pixmorph.resize(bgra, (960, 540)).array
    jpeg = pixmorph.Encoder("motion_jpeg", 960, 540).encode(small)

Pictures are arrays, or any buffer with a format (see Picture); memory is never copied on the way in, results go into
``out`` where it is given, a call lets go of the interpreter's lock, and what goes wrong is an Error with the method and
the reason.

The shared library is the file that PIXMORPH_LIBRARY names, else one beside this package, else the system's.
PIXMORPH_LEVEL (plain, sse41, avx2, avx512) lowers the instruction set that it uses. ``python -m pixmorph info`` tells
what is there.
"""
from .errors import Error, LibraryNotFound, PictureError
from .formats import Format, matrix, value_range
from .info import CodecInfo, CpuInfo, classes, codecs, cpu_info
from .objects import Codec, Converter, Decoder, Deinterlacer, Encoder, Resizer, TitleMixer, convert, resize
from .picture import Picture, memory_bytes, tight_stride

__version__ = "1.0.0"

__all__ = [
    "Codec",
    "CodecInfo",
    "Converter",
    "CpuInfo",
    "Decoder",
    "Deinterlacer",
    "Encoder",
    "Error",
    "Format",
    "LibraryNotFound",
    "Picture",
    "PictureError",
    "Resizer",
    "TitleMixer",
    "classes",
    "codecs",
    "convert",
    "cpu_info",
    "matrix",
    "memory_bytes",
    "resize",
    "tight_stride",
    "value_range",
]
