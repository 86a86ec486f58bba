"""What the library offers, and what it runs on."""
from __future__ import annotations

import ctypes
import os
from typing import NamedTuple

from . import _com
from ._com import I32, POINTER

LEVELS = ("plain", "sse41", "avx2", "avx512")
_NEEDED = {
    "sse41": {"sse4_1"},
    "avx2": {"sse4_1", "sse4_2", "avx", "avx2"},
    "avx512": {"sse4_1", "sse4_2", "avx", "avx2", "avx512f", "avx512dq", "avx512bw"},
}


class CpuInfo(NamedTuple):
    """The processor and the level that the library works at.

    Attributes:
        model: the processor's name.
        processors: how many this process may use.
        available: the highest level of the processor: "plain", "sse41", "avx2" or "avx512".
        forced: what PIXMORPH_LEVEL asks for; None where it is not set or none of the levels.
        level: the level in use, the lower of the two.
    """

    model: str
    processors: int
    available: str
    forced: str | None
    level: str


class CodecInfo(NamedTuple):
    """A row of the library's table of codecs."""

    index: int
    fourcc: str
    name: str
    encoder: bool
    decoder: bool


def _processor() -> tuple[str, set[str]]:
    model, flags = "unknown", set[str]()
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as lines:
            for line in lines:
                key, _, value = line.partition(":")
                if key.strip() == "model name" and model == "unknown":
                    model = value.strip()
                elif key.strip() == "flags" and not flags:
                    flags = set(value.split())
    except OSError:
        pass
    return model, flags


def cpu_info() -> CpuInfo:
    """The processor as the system reports it, and the level that follows from it and from PIXMORPH_LEVEL.

    The library reads the variable once, when it first works; setting it after that changes what is told here, not what
    runs.
    """
    model, flags = _processor()
    available = "plain"
    for level in LEVELS[1:]:
        if _NEEDED[level] <= flags:
            available = level
    wanted = os.environ.get("PIXMORPH_LEVEL")
    forced = wanted if wanted in LEVELS else None
    level = min(available, forced or available, key=LEVELS.index)
    return CpuInfo(model, len(os.sched_getaffinity(0)), available, forced, level)


def classes() -> list[str]:
    """The component classes that the library has."""
    return [name for name in _com.CLASSES if _com.has_class(name)]


def codecs() -> list[CodecInfo]:
    """The library's table of codecs."""
    listing = _com.create("VideoCodec", "IVideoCodecEnum")
    encoder, decoder = listing.query("IVideoEncoder"), listing.query("IVideoDecoder")
    count = ctypes.c_uint32()
    listing.method(3, POINTER)(listing.pointer, ctypes.addressof(count))
    info = listing.method(4, POINTER, POINTER, I32)
    free = ctypes.CDLL(None).free
    free.argtypes, free.restype = [POINTER], None
    rows = []
    for index in range(count.value):
        fourcc, name = ctypes.c_uint32(), ctypes.c_void_p()
        if info(listing.pointer, ctypes.addressof(fourcc), ctypes.addressof(name), index) < 0:
            continue
        text = ctypes.wstring_at(name.value) if name.value else ""
        free(name)
        # Sizes that each codec takes, so that only a missing side is refused; a side is missing where memory is.
        missing = 0x8007000E
        sides = [
            side.method(3, I32, I32, I32)(side.pointer, index, 720, 576) & 0xFFFFFFFF != missing
            for side in (encoder, decoder)
        ]
        rows.append(CodecInfo(index, fourcc.value.to_bytes(4, "little").decode("ascii", "replace"), text, *sides))
    return rows
