"""The picture formats: their numbers, and how their samples lie in memory."""
from __future__ import annotations

import enum
from typing import NamedTuple, Union

from .errors import PictureError

_BT709 = 32
_FULL = 96


class Layout(NamedTuple):
    """How the samples of a format lie in memory. Divisions are by 1 where there is no chroma plane."""

    planes: int
    bits_per_pixel: int  # Of the first plane.
    bytes_per_sample: int
    chroma_width_div: int  # Bytes of a chroma line: those of a luma line divided by this.
    chroma_height_div: int  # Lines of chroma, rounded up.
    chroma_stride_div: int  # Where planes follow each other.
    side_by_side: bool  # The two chroma planes share lines.
    x_align: int  # Pixels that cannot be parted.
    y_align: int  # Lines that cannot be parted.
    channels: int  # Bytes of a pixel as the last axis of an array; 0 where lines are rows of bytes.


_LAYOUTS = {
    "BGR": (7, Layout(1, 24, 1, 1, 1, 1, False, 1, 1, 3)),
    "BGRA": (8, Layout(1, 32, 1, 1, 1, 1, False, 1, 1, 4)),
    "UYVY": (0, Layout(1, 16, 1, 1, 1, 1, False, 2, 1, 2)),
    "YUY2": (5, Layout(1, 16, 1, 1, 1, 1, False, 2, 1, 2)),
    "YVYU": (6, Layout(1, 16, 1, 1, 1, 1, False, 2, 1, 2)),
    "Y422": (30, Layout(3, 8, 1, 2, 1, 2, False, 2, 1, 0)),
    "IYUV": (11, Layout(3, 8, 1, 2, 2, 2, False, 2, 2, 0)),
    "YV12": (10, Layout(3, 8, 1, 2, 2, 2, False, 2, 2, 0)),
    "NV12": (24, Layout(2, 8, 1, 1, 2, 1, False, 2, 2, 0)),
    "IMC2": (25, Layout(3, 8, 1, 2, 2, 1, True, 2, 2, 0)),
    "IMC4": (26, Layout(3, 8, 1, 2, 2, 1, True, 2, 2, 0)),
    "Y16": (1, Layout(1, 16, 1, 1, 1, 1, False, 16, 1, 0)),
    "Y16A": (2, Layout(1, 24, 1, 1, 1, 1, False, 16, 1, 0)),
    "Y32": (3, Layout(1, 32, 1, 1, 1, 1, False, 16, 1, 0)),
    "Y32_SECOND": (12, Layout(1, 32, 1, 1, 1, 1, False, 16, 1, 0)),
    "Y32A": (4, Layout(1, 40, 1, 1, 1, 1, False, 16, 1, 0)),
    "Y32A_SECOND": (13, Layout(1, 40, 1, 1, 1, 1, False, 16, 1, 0)),
    "P216": (27, Layout(2, 16, 2, 1, 1, 1, False, 2, 1, 0)),
    "P016": (28, Layout(2, 16, 2, 1, 2, 1, False, 2, 2, 0)),
    "P420": (29, Layout(3, 16, 2, 2, 2, 2, False, 2, 2, 0)),
    "P422": (31, Layout(3, 16, 2, 2, 1, 2, False, 2, 1, 0)),
}
_COLOURED = ("UYVY", "YUY2", "YVYU", "Y422", "IYUV", "YV12", "NV12", "IMC2", "IMC4", "P216", "P016", "P420", "P422")


def _members() -> dict[str, int]:
    members = {name: number for name, (number, _) in _LAYOUTS.items()}
    for name in _COLOURED:
        members[name + "_BT709"] = members[name] + _BT709
        members[name + "_FULL"] = members[name] + _FULL
    return members


Format = enum.IntEnum("Format", _members(), module=__name__)
Format.__doc__ = """The formats, by the numbers of the component interface.

A YUV format without a suffix has the colours of BT.601 at video levels, ``_BT709`` those of BT.709 at video levels,
``_FULL`` those of BT.601 at full range. Wherever a format is taken, its name serves as well, in any case:
``"uyvy_bt709"``. RGB pictures are top-down arrays; which way their memory lies is told by the sign of the stride.
"""

FormatLike = Union[Format, str, int]

#: The layout of each format.
LAYOUTS: dict[int, Layout] = {
    member: _LAYOUTS[name[: -len(suffix)] if suffix else name][1]
    for name, member in Format.__members__.items()
    for suffix in [next((s for s in ("_BT709", "_FULL") if name.endswith(s)), "")]
}

_BY_NAME = {name: member for name, member in Format.__members__.items()}


def format_of(value: FormatLike) -> Format:
    """The format of a name or number. Raises PictureError for one that is none."""
    if type(value) is Format:
        return value
    if isinstance(value, str):
        found = _BY_NAME.get(value.upper())
        if found is not None:
            return found
    else:
        try:
            return Format(value)
        except ValueError:
            pass
    raise PictureError("Format", f"there is no picture format {value!r}")


def matrix(value: FormatLike) -> str | None:
    """The colour matrix of a format: "bt601", "bt709"; None for RGB."""
    member = format_of(value)
    if member.name.startswith("BGR"):
        return None
    return "bt709" if member.name.endswith("_BT709") else "bt601"


def value_range(value: FormatLike) -> str:
    """The range of a format: "full" or "video" (luma 16 to 235, chroma 16 to 240)."""
    member = format_of(value)
    return "full" if member.name.endswith("_FULL") or member.name.startswith("BGR") else "video"
