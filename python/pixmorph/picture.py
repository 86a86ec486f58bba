"""Pictures: arrays, or any memory, with a format."""
from __future__ import annotations

import ctypes
from typing import Any, Sequence, Union

import numpy as np

from .errors import PictureError
from .formats import LAYOUTS, Format, FormatLike, Layout, format_of

_FourPointers = ctypes.c_void_p * 4
_FourStrides = ctypes.c_int32 * 4
_BY_CHANNELS = {3: Format.BGR, 4: Format.BGRA}
_BGR, _BGRA = Format.BGR, Format.BGRA
_BYTE = np.dtype(np.uint8)
_MAX = 0x7FFFFFFF


def _round_up(value: int, step: int) -> int:
    return -(-value // step) * step


def _row_bytes(layout: Layout, plane: int, width: int) -> int:
    whole = _round_up(width, layout.x_align) * layout.bits_per_pixel // 8
    if plane:
        return whole // layout.chroma_width_div
    return whole if layout.planes == 1 else width * layout.bits_per_pixel // 8


def _lines(layout: Layout, plane: int, height: int) -> int:
    return -(-height // layout.chroma_height_div) if plane else height


def tight_stride(format: FormatLike, width: int) -> int:
    """Bytes from a line to the next of the first plane of a picture without gaps."""
    layout = LAYOUTS[format_of(format)]
    return _round_up(width, layout.x_align) * layout.bits_per_pixel // 8


def _places(layout: Layout, height: int, stride: int) -> list[tuple[int, int]]:
    """Offset and stride of each plane where planes follow each other."""
    places = [(0, stride)]
    if layout.planes > 1:
        lines = _round_up(height, layout.chroma_height_div)
        chroma = stride // layout.chroma_stride_div
        places.append((lines * stride, chroma))
        if layout.planes > 2:
            step = chroma // 2 if layout.side_by_side else lines * chroma // layout.chroma_height_div
            places.append((lines * stride + step, chroma))
    return places


def memory_bytes(format: FormatLike, width: int, height: int, stride: int = 0) -> int:
    """Bytes of memory that a picture takes whose planes follow each other.

    Args:
        stride: of the first plane in bytes; 0 for tight_stride. That of chroma follows from it.
    Raises:
        PictureError: the size is empty, or the stride too short for the width.
    """
    layout = LAYOUTS[format_of(format)]
    stride = stride or tight_stride(format, width)
    if not (0 < width <= _MAX and 0 < height < _MAX and stride <= _MAX):
        raise PictureError("Picture", f"a picture cannot be {width} by {height} with a stride of {stride}")
    end = 0
    for plane, (offset, step) in enumerate(_places(layout, height, stride)):
        row = _row_bytes(layout, plane, width)
        if row > (step // 2 if plane and layout.side_by_side else step):
            raise PictureError("Picture", f"a stride of {stride} is too short for {width} pixels")
        end = max(end, offset + (_lines(layout, plane, height) - 1) * step + row)
    return end


class Picture:
    """A picture: a format, a size, and the memory of its planes, which is never copied.

    Args:
        data: one of
            - an array. BGR and BGRA: shape (height, width, 3) or (height, width, 4), uint8; the format may be left out.
              UYVY, YUY2, YVYU: (height, width, 2) or (height, 2 * width), uint8. Block formats: (height, bytes of a
              line), uint8. Planar formats with `size` left out: (lines of all planes, width), as one piece of memory:
              3/2 of the height for 4:2:0 and twice the height for 4:2:2; uint8, or uint16 for the formats of words.
            - a sequence of arrays, one for each plane: (lines, samples), or (lines, samples / 2, 2) for pairs of U and
              V. The size is that of the first.
            - any buffer (bytes, bytearray, memoryview, mmap), with `format` and `size`: planes follow each other.
        format: a Format, its name or its number.
        size: (width, height) in pixels and lines, where the data does not tell.
        stride: bytes from a line to the next of the first plane of a buffer; 0: no gaps. Negative: the memory starts
            with the bottom line (formats of one plane).
    Arrays may be views with any stride between lines, negative ones too (``frame[::-1]``); within a line samples follow
    each other. Line 0 is the top.

    Raises:
        PictureError: the data is not what the format asks for.
    """

    __slots__ = ("format", "width", "height", "planes", "_pointers", "_strides", "_places", "writable", "__weakref__")

    format: Format
    width: int
    height: int
    #: One array for each plane: (lines, width, channels) where pixels are whole bytes, else (lines, samples of a line).
    planes: tuple[np.ndarray, ...]
    writable: bool

    def __init__(
        self,
        data: Any,
        format: FormatLike | None = None,
        size: tuple[int, int] | None = None,
        stride: int = 0,
    ) -> None:
        if type(data) is np.ndarray:
            if stride:
                raise PictureError("Picture", "an array has its own strides")
            self._from_array(data, format, size)
        elif isinstance(data, (tuple, list)):
            self._from_planes(data, format, size)
        else:
            self._from_buffer(data, format, size, stride)

    @classmethod
    def new(cls, format: FormatLike, width: int, height: int) -> Picture:
        """A picture in new memory, not filled; its planes follow each other without gaps."""
        return cls(np.empty(memory_bytes(format, width, height), np.uint8).data, format, (width, height))

    @property
    def size(self) -> tuple[int, int]:
        """(width, height) in pixels and lines."""
        return self.width, self.height

    @property
    def array(self) -> np.ndarray:
        """The array of a picture of one plane. Raises PictureError for one of more."""
        if len(self.planes) != 1:
            raise PictureError("Picture.array", f"{self.format.name} has {len(self.planes)} planes: see planes")
        return self.planes[0]

    def __array__(self, dtype: Any = None, copy: bool | None = None) -> np.ndarray:
        array = self.array if dtype is None else self.array.astype(dtype, copy=False)
        return array.copy() if copy else array

    def tobytes(self) -> bytes:
        """The samples, plane after plane and line after line without gaps."""
        return b"".join(plane.tobytes() for plane in self.planes)

    def flipped(self) -> Picture:
        """The same memory with the lines in the other order."""
        return Picture([plane[::-1] for plane in self.planes], self.format, self.size)

    def crop(self, x: int, y: int, width: int, height: int) -> Picture:
        """A part of the picture, in the same memory.

        Raises:
            PictureError: the rectangle leaves the picture or parts pixels or lines that share a chroma sample.
        """
        layout = LAYOUTS[self.format]
        inside = min(x, y) >= 0 and min(width, height) > 0
        inside = inside and x + width <= self.width and y + height <= self.height
        if not inside or (x | width) % layout.x_align or (y | height) % layout.y_align:
            raise PictureError("Picture.crop", f"{width} by {height} at {x}, {y} cannot be cut out of {self!r}")
        parts = []
        for index, plane in enumerate(self.planes):
            top, lines = (y, height) if not index else (y // layout.chroma_height_div, _lines(layout, index, height))
            unit = self.width // plane.shape[1] if plane.ndim == 3 else 0
            if unit:
                parts.append(plane[top : top + lines, x // unit : (x + width) // unit])
            else:
                first = _row_bytes(layout, index, x) // plane.itemsize
                count = _row_bytes(layout, index, width) // plane.itemsize
                parts.append(plane[top : top + lines, first : first + count])
        return Picture(parts, self.format, (width, height))

    def __repr__(self) -> str:
        return f"<Picture {self.format.name} {self.width}x{self.height}>"

    # ---------------------------------------------------------------------------------------------- construction

    def _from_array(self, array: np.ndarray, format: FormatLike | None, size: tuple[int, int] | None) -> None:
        shape = array.shape
        if format is None:
            found = _BY_CHANNELS.get(shape[2]) if len(shape) == 3 else None
            if found is None:
                raise PictureError("Picture", f"an array of shape {shape} needs a format")
        else:
            found = format_of(format)
        layout = LAYOUTS[found]
        if size is None and layout.channels and len(shape) == 3 and array.dtype is _BYTE:
            # What most calls give, decided with few questions.
            height, width, channels = shape
            line, pixel, byte = array.strides
            if byte == 1 and pixel == channels == layout.channels and 0 < width <= _MAX and 0 < height <= _MAX:
                if abs(line) <= _MAX and not width % layout.x_align:
                    address, read_only = array.__array_interface__["data"]
                    self._finish(found, width, height, (array,), not read_only, ((address, line),))
                    return
        if layout.planes == 1:
            if size is None:
                if not array.ndim:
                    raise PictureError("Picture", "an array needs lines")
                line = array.nbytes // shape[0] if shape[0] else 0
                size = (line * 8 // layout.bits_per_pixel, shape[0])
            self._settle(found, layout, size, (array,))
            return
        # One array over all planes: its lines are those of the first plane's stride.
        if array.ndim != 2:
            raise PictureError("Picture", f"{found.name} is an array of lines, or one array for each plane")
        if size is None:
            rows = shape[0] * 2
            per_line = 3 if layout.chroma_height_div == 2 else 4
            if rows % per_line:
                raise PictureError("Picture", f"{shape[0]} lines do not hold the planes of {found.name}")
            size = (shape[1] * array.itemsize // layout.bytes_per_sample, rows // per_line)
        if not array.flags.c_contiguous:
            raise PictureError("Picture", f"{found.name} in one array is one piece of memory: pass its planes")
        self._from_memory(array, found, size, array.strides[0], array.nbytes)

    def _from_buffer(
        self, data: Any, format: FormatLike | None, size: tuple[int, int] | None, stride: int
    ) -> None:
        if format is None or size is None:
            raise PictureError("Picture", "a buffer needs a format and a size")
        try:
            memory = np.frombuffer(data, np.uint8)
        except (TypeError, ValueError, BufferError) as error:
            raise PictureError("Picture", f"not a buffer: {error}") from None
        found = format_of(format)
        if stride < 0:
            layout = LAYOUTS[found]
            if layout.planes != 1:
                raise PictureError("Picture", "a negative stride is for formats of one plane: pass the planes")
            self._from_memory(memory, found, size, -stride, memory.nbytes)
            self._settle(found, layout, size, (self.planes[0][::-1],))
        else:
            self._from_memory(memory, found, size, stride, memory.nbytes)

    def _from_memory(self, memory: np.ndarray, format: Format, size: tuple[int, int], stride: int, room: int) -> None:
        width, height = size
        layout = LAYOUTS[format]
        stride = stride or tight_stride(format, width)
        needed = memory_bytes(format, width, height, stride)
        if needed > room:
            reason = f"{format.name} of {width} by {height} takes {needed} bytes, there are {room}"
            raise PictureError("Picture", reason)
        dtype = np.uint16 if layout.bytes_per_sample == 2 else np.uint8
        planes = []
        for plane, (offset, step) in enumerate(_places(layout, height, stride)):
            lines, row = _lines(layout, plane, height), _row_bytes(layout, plane, width)
            if layout.channels and width * layout.channels == row:
                shape: tuple[int, ...] = (lines, width, layout.channels)
                strides: tuple[int, ...] = (step, layout.channels, 1)
            elif plane and layout.planes == 2:
                shape = (lines, row // (2 * layout.bytes_per_sample), 2)
                strides = (step, 2 * layout.bytes_per_sample, layout.bytes_per_sample)
            else:
                shape = (lines, row // layout.bytes_per_sample)
                strides = (step, layout.bytes_per_sample)
            # ndarray over the memory itself, so that it is kept alive and its permission to write carries over.
            planes.append(np.ndarray(shape, dtype, memory, offset, strides))
        self._settle(format, layout, size, tuple(planes))

    def _from_planes(
        self, arrays: Sequence[np.ndarray], format: FormatLike | None, size: tuple[int, int] | None
    ) -> None:
        if format is None:
            raise PictureError("Picture", "planes need a format")
        found = format_of(format)
        layout = LAYOUTS[found]
        planes = tuple(np.asarray(array) for array in arrays)
        if len(planes) != layout.planes or any(plane.ndim < 2 for plane in planes):
            raise PictureError("Picture", f"{found.name} has {layout.planes} planes of lines")
        if size is None:
            first = planes[0]
            line = first.itemsize * (first.size // first.shape[0] if first.shape[0] else 0)
            size = (line * 8 // layout.bits_per_pixel, first.shape[0])
        self._settle(found, layout, size, planes)

    def _settle(self, format: Format, layout: Layout, size: tuple[int, int], planes: tuple[np.ndarray, ...]) -> None:
        """Checks each plane and notes where it lies."""
        width, height = size
        if not (0 < width <= _MAX and 0 < height <= _MAX):
            raise PictureError("Picture", f"a picture cannot be {width} by {height}")
        places = []
        writable = True
        for index, plane in enumerate(planes):
            facts = plane.__array_interface__
            shape, item = facts["shape"], plane.itemsize
            strides = facts["strides"]
            samples = 1
            for extent in shape[1:]:
                samples *= extent
            if strides is None:
                strides = plane.strides
            wanted = item
            gapless = True
            for extent, step in zip(shape[:0:-1], strides[:0:-1]):
                gapless = gapless and (step == wanted or extent == 1)
                wanted *= extent
            if item != layout.bytes_per_sample or plane.dtype.kind != "u":
                wanted_type = f"uint{8 * layout.bytes_per_sample}"
                raise PictureError("Picture", f"{format.name} has samples of {wanted_type}, not {plane.dtype}")
            if len(shape) < 2 or not gapless:
                raise PictureError("Picture", f"within a line the samples of {format.name} follow each other")
            is_row = samples * item == _row_bytes(layout, index, width)
            is_pixel = len(shape) < 3 or not layout.channels or shape[2] == layout.channels
            if shape[0] != _lines(layout, index, height) or not is_row or not is_pixel:
                raise PictureError(
                    "Picture", f"plane {index} of {format.name} of {width} by {height} cannot have the shape {shape}"
                )
            if not -_MAX <= strides[0] <= _MAX:
                raise PictureError("Picture", "a stride has 32 bits")
            address, read_only = facts["data"]
            writable = writable and not read_only
            places.append((address, strides[0]))
        self._finish(format, width, height, planes, writable, tuple(places))

    def _finish(
        self,
        format: Format,
        width: int,
        height: int,
        planes: tuple[np.ndarray, ...],
        writable: bool,
        places: tuple[tuple[int, int], ...],
    ) -> None:
        """Notes what was checked, and the arrays that the component methods take."""
        self.format = format
        self.width = width
        self.height = height
        self.planes = planes
        self.writable = writable
        self._places = places
        address, step = places[0]
        if format is _BGR or format is _BGRA:
            # Components name an RGB picture by its bottom line.
            self._pointers = _FourPointers(address + step * (height - 1))
            self._strides = _FourStrides(-step)
        else:
            self._pointers = _FourPointers(*[place[0] for place in places])
            self._strides = _FourStrides(*[place[1] for place in places])

    def _is_in_sequence(self) -> bool:
        """Whether the planes lie as they follow from the first."""
        if len(self._places) == 1:
            return True
        base, stride = self._places[0]
        derived = _places(LAYOUTS[self.format], self.height, stride)
        return stride > 0 and all(
            place == (base + offset, step) for place, (offset, step) in zip(self._places, derived)
        )


PictureLike = Union[Picture, np.ndarray]


def picture_of(value: Any, format: FormatLike | None = None) -> Picture:
    """The value as a Picture."""
    if type(value) is Picture:
        return value
    return Picture(value, format)
