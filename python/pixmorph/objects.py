"""The objects that work on pictures. Each owns a component and is driven by one thread at a time; different objects run
in parallel, for a call lets go of the interpreter's lock.

Where a picture is taken, a Picture serves, or an array that Picture takes without a size. ``out`` receives the result
where it is given: a Picture or such an array, written in place.
"""
from __future__ import annotations

import enum
import threading
from typing import Any, Union

import numpy as np

from . import _com
from ._com import I32, POINTER, U32
from .errors import E_FAIL, E_INVALIDARG, E_OUTOFMEMORY, E_PENDING, Error, PictureError, describe
from .formats import LAYOUTS, Format, FormatLike, format_of
from .picture import Picture, PictureLike, picture_of

_PACKED_422 = ("UYVY", "YUY2", "YVYU")


def _failure(method: str, result: int, reason: str | None = None) -> Error:
    return Error(method, reason or describe(result), result)


def _done(method: str, result: int, picture: Picture) -> Picture:
    """The picture that a call has written."""
    if result < 0:
        raise _failure(method, result)
    return picture


def _output(method: str, out: PictureLike | None, format: FormatLike, width: int, height: int) -> Picture:
    if out is None:
        return Picture.new(format, width, height)
    picture = picture_of(out, None if type(out) is Picture else format)
    if not picture.writable:
        raise PictureError(method, "out is read-only")
    return picture


def _target(method: str, out: PictureLike) -> Picture:
    picture = picture_of(out)
    if not picture.writable:
        raise PictureError(method, "the picture to be changed is read-only")
    return picture


def _base(format: Format) -> str:
    name = format.name
    for suffix in ("_BT709", "_FULL"):
        if name.endswith(suffix):
            return name[: -len(suffix)]
    return name


class _Object:
    """Owns one interface of a component."""

    def __init__(self, class_name: str, interface: str) -> None:
        self._interface = _com.create(class_name, interface)
        self._pointer = self._interface.pointer


class Converter(_Object):
    """Converts pictures between formats."""

    def __init__(self) -> None:
        super().__init__("Pixmorph", "IColorConversion")
        self._call = self._interface.method(3, POINTER, POINTER, POINTER, POINTER, U32, U32, U32, U32)
        self._check = self._interface.method(5, U32, U32)

    def can_convert(self, source: FormatLike, to: FormatLike) -> bool:
        """Whether there is a path from one format to another."""
        return self._check(self._pointer, format_of(to), format_of(source)) == 0

    def convert(
        self,
        picture: PictureLike,
        to: FormatLike | None = None,
        out: PictureLike | None = None,
        format: FormatLike | None = None,
    ) -> Picture:
        """Converts a picture.

        The colour matrix is that of the YUV side; where both sides are YUV or both RGB, samples move without one. Alpha
        is 255 where the source has none.

        Args:
            picture: (height, width) in pixels; each pair of formats asks for multiples of 1, 2, 8 or 16.
            to: format of the result. May be left out where `out` is a Picture.
            out: receives the result; of the source's size. Must not overlap the source.
            format: of `picture`, where it is an array that does not tell.
        Returns:
            The result: `out` as a Picture, or a new one.
        Raises:
            PictureError: a picture is not what its format asks for, or the sizes differ.
            Error: there is no path, or the size is no multiple of what the formats need.
        """
        source = picture if type(picture) is Picture else Picture(picture, format)
        if type(out) is Picture:
            target = out
            if to is not None and format_of(to) is not out.format:
                raise PictureError("Converter.convert", f"out has the format {out.format.name}")
            if not target.writable:
                raise PictureError("Converter.convert", "out is read-only")
        elif to is None:
            raise PictureError("Converter.convert", "to is missing")
        else:
            target = _output("Converter.convert", out, to, source.width, source.height)
        if source.width != target.width or source.height != target.height:
            raise PictureError("Converter.convert", f"{source!r} and {target!r} have different sizes")
        result = self._call(
            self._pointer,
            target._pointers,
            target._strides,
            source._pointers,
            source._strides,
            source.width,
            source.height,
            target.format,
            source.format,
        )
        if result < 0:
            raise _failure("Converter.convert", result, self._explain(source, target))
        return target

    def _explain(self, source: Picture, target: Picture) -> str | None:
        if not self.can_convert(source.format, target.format):
            return f"there is no path from {source.format.name} to {target.format.name}"
        a, b = LAYOUTS[source.format], LAYOUTS[target.format]
        x, y = max(a.x_align, b.x_align), max(a.y_align, b.y_align)
        if source.width % x or source.height % y:
            return f"{source.width} by {source.height} is no multiple of {x} by {y}"
        return None


class Resizer(_Object):
    """Changes the size of pictures: averages over areas to reduce, linear interpolation to enlarge."""

    def __init__(self) -> None:
        super().__init__("StretchImage", "IResizeImage")
        self._call = self._interface.method(4, POINTER, POINTER, POINTER, POINTER, U32, U32, U32, U32, U32, U32)
        self._plain = self._interface.query("IStretchImage")
        self._stretch = self._plain.method(3, POINTER, POINTER, U32, U32, U32, U32, I32, I32, U32)

    def resize(
        self,
        picture: PictureLike,
        size: tuple[int, int] | None = None,
        to: FormatLike | None = None,
        out: PictureLike | None = None,
        format: FormatLike | None = None,
    ) -> Picture:
        """Resizes a picture, converting on the way where the formats differ.

        Pictures with narrower chroma lines (Y422, IYUV, YV12) are resized within their format and with planes that
        follow each other on both sides, since the component takes one stride for all planes of a source; convert them
        first otherwise.

        Args:
            size: (width, height) of the result; may be left out where `out` is given.
            to: format of the result; that of the source where it is left out.
            out: receives the result. Must not overlap the source.
            format: of `picture`, where it is an array that does not tell.
        Raises:
            PictureError: a picture is not what its format asks for, or its planes lie where the component cannot take
                them.
            Error: a format cannot be resized, or a size is no multiple of the pixels and lines that share chroma.
        """
        source = picture_of(picture, format)
        wanted = out.format if to is None and type(out) is Picture else source.format if to is None else format_of(to)
        if out is None:
            if size is None:
                raise PictureError("Resizer.resize", "size is missing")
            target = Picture.new(wanted, *size)
        else:
            target = _output("Resizer.resize", out, wanted, 0, 0)
            if target.format is not wanted or (size is not None and target.size != tuple(size)):
                raise PictureError("Resizer.resize", f"out is {target!r}")
        stride = source._places[0][1]
        if all(step == stride for _, step in source._places):
            result = self._call(
                self._pointer,
                target._pointers,
                target._strides,
                source._pointers,
                source._strides,
                target.width,
                target.height,
                source.width,
                source.height,
                target.format,
                source.format,
            )
        elif source.format is target.format and source._is_in_sequence() and target._is_in_sequence():
            result = self._stretch(
                self._plain.pointer,
                target._pointers[0],
                source._pointers[0],
                target.width,
                target.height,
                source.width,
                source.height,
                target._strides[0],
                stride,
                source.format,
            )
        else:
            reason = "the source planes must have one stride, or follow each other on both sides"
            raise PictureError("Resizer.resize", reason)
        if result < 0:
            reason = f"{source!r} cannot become {target!r}: the format is not resized, or a size parts its pixels"
            raise _failure("Resizer.resize", result, reason)
        return target


class TitleMixer(_Object):
    """Builds titles and lays pictures over video.

    A title is a BGRA picture with colour premultiplied by alpha, built front to back: the first layer is nearest the
    viewer, and a later one shows only through what the title does not cover yet. An opacity is 0 (not at all) to 255
    (fully). Layers and images are BGR, BGRA, UYVY, YUY2 or YVYU; a 4:2:2 picture has an even width.

    Every method raises PictureError for a picture that it does not take, for different sizes and for an opacity out of
    range.
    """

    def __init__(self) -> None:
        super().__init__("TitleMixer3", "ITitleMixer4")
        lay = (POINTER, POINTER, U32, U32, I32, I32, U32, U32)
        self._begin = self._interface.method(6, *lay)
        self._add = self._interface.method(8, *lay)
        self._to_image = self._interface.method(10, POINTER, POINTER, U32, U32, I32, I32, U32)
        self._replace = self._interface.method(11, *lay, U32)
        self._overlay = self._interface.method(12, *lay, U32)
        self._compress = self._interface.method(5, POINTER, POINTER, U32, U32, I32, POINTER)

    def begin(self, layer: PictureLike, out: PictureLike | None = None, opacity: int = 255) -> Picture:
        """Starts a title with its first layer. A layer without alpha is as opaque as `opacity` says.

        Returns:
            The title, BGRA of the layer's size: `out`, or a new one.
        """
        source = picture_of(layer)
        title = _output("TitleMixer.begin", out, Format.BGRA, source.width, source.height)
        return self._lay("TitleMixer.begin", self._begin, source, title, opacity)

    def add_beneath(self, layer: PictureLike, title: PictureLike, opacity: int = 255) -> Picture:
        """Lays a layer beneath what the title holds; the title is changed in place and returned."""
        target = _target("TitleMixer.add_beneath", title)
        return self._lay("TitleMixer.add_beneath", self._add, picture_of(layer), target, opacity)

    def to_image(self, title: PictureLike, out: PictureLike | None = None) -> Picture:
        """Divides colour by alpha again: the BGRA picture that overlay takes. `out` may be the title."""
        method = "TitleMixer.to_image"
        source = picture_of(title)
        target = _output(method, out, Format.BGRA, source.width, source.height)
        self._check(method, source, target, ("BGRA",), ("BGRA",), 0)
        return _done(method, self._to_image(self._pointer, *_ends(target, source), target.format), target)

    def overlay(self, image: PictureLike, video: PictureLike, opacity: int = 255) -> Picture:
        """Mixes an image (alpha not premultiplied) into a frame of UYVY or YUY2 video, in place; returns the frame.

        Of a BGR image the last pair of pixels of each line is not laid.
        """
        return self._lay_on_video("TitleMixer.overlay", self._overlay, image, video, opacity)

    def replace(self, image: PictureLike, video: PictureLike, opacity: int = 255) -> Picture:
        """Replaces a frame of UYVY or YUY2 video by an image faded against black; returns the frame."""
        return self._lay_on_video("TitleMixer.replace", self._replace, image, video, opacity)

    def compress_runs(self, title: PictureLike) -> bytes:
        """The run-length stream of a title for keying hardware, top line first. The width is a multiple of 16."""
        method = "TitleMixer.compress_runs"
        source = picture_of(title)
        if source.format is not Format.BGRA or source.width % 16:
            raise PictureError(method, f"{source!r} is no title of a width that is a multiple of 16")
        stream = np.zeros(1 + source.width // 16 * source.height * 13, np.uint32)
        start = stream.__array_interface__["data"][0]
        counter, write = POINTER(start), POINTER(start + 4)
        address, stride = source._places[0]
        result = self._compress(
            self._pointer, _address(write), address, source.width, source.height, stride, _address(counter)
        )
        if result < 0:
            raise _failure(method, result)
        return stream.view(np.uint8)[: (write.value or start) - start].tobytes()

    def _lay(self, method: str, call: Any, source: Picture, title: Picture, opacity: int) -> Picture:
        self._check(method, source, title, ("BGR", "BGRA", *_PACKED_422), ("BGRA",), opacity)
        return _done(method, call(self._pointer, *_ends(title, source), opacity, source.format), title)

    def _lay_on_video(self, method: str, call: Any, image: PictureLike, video: PictureLike, opacity: int) -> Picture:
        source, target = picture_of(image), _target(method, video)
        self._check(method, source, target, ("BGR", "BGRA", *_PACKED_422), ("UYVY", "YUY2"), opacity)
        result = call(self._pointer, *_ends(target, source), opacity, target.format, source.format)
        return _done(method, result, target)

    @staticmethod
    def _check(
        method: str, source: Picture, target: Picture, sources: tuple[str, ...], targets: tuple[str, ...], opacity: int
    ) -> None:
        if source.size != target.size:
            raise PictureError(method, f"{source!r} and {target!r} have different sizes")
        if _base(source.format) not in sources or _base(target.format) not in targets:
            raise PictureError(method, f"{source.format.name} onto {target.format.name} is not what the mixer does")
        if source.width % LAYOUTS[source.format].x_align:
            raise PictureError(method, f"{source!r} has an odd width")
        if not 0 <= opacity <= 255:
            raise PictureError(method, f"an opacity is 0 to 255, not {opacity}")


def _address(value: Any) -> int:
    return int(_com.ctypes.addressof(value))


def _ends(target: Picture, source: Picture) -> tuple[Any, ...]:
    return (
        target._pointers[0],
        source._pointers[0],
        source.width,
        source.height,
        target._strides[0],
        source._strides[0],
    )


_KEEP = {"top": 0, "bottom": 1, "first": 2, "second": 3}


class Deinterlacer(_Object):
    """Motion-adaptive deinterlacing of a sequence of frames.

    Output lags one frame behind input: after the third frame the second can be had. The object keeps copies of three
    frames and works on up to four threads of its own.

    Args:
        spatial_check: limits what is rebuilt by the lines around it.
    """

    def __init__(self, spatial_check: bool = True) -> None:
        super().__init__("VideoDeinterlacer", "IVideoDeinterlacer")
        self._initialize = self._interface.method(3, U32)
        self._set_source = self._interface.method(4, POINTER, POINTER, U32, U32, U32, U32)
        self._get_frame = self._interface.method(5, POINTER, POINTER, U32, U32, U32, U32)
        self._mode = 0 if spatial_check else 2
        self._last: tuple[Format, int, int] | None = None
        self.reset()

    def reset(self) -> None:
        """Forgets all earlier frames."""
        result = self._initialize(self._pointer, self._mode)
        if result < 0:
            raise _failure("Deinterlacer.reset", result)
        self._last = None

    def push(self, frame: PictureLike, top_field_first: bool = True, format: FormatLike | None = None) -> None:
        """Takes the next frame and copies it. A frame of another size or format starts a new sequence.

        Raises:
            PictureError: the frame is not what its format asks for.
            Error: the frame cannot be taken.
        """
        source = picture_of(frame, format)
        order = 5 if top_field_first else 6
        result = self._set_source(
            self._pointer, source._pointers, source._strides, source.width, source.height, source.format, order
        )
        if result < 0:
            raise _failure("Deinterlacer.push", result)
        self._last = source.format, source.width, source.height

    def pull(
        self, out: PictureLike | None = None, keep: str = "first", to: FormatLike | None = None
    ) -> Picture | None:
        """Makes the frame before the last one given, with one field kept and the other rebuilt.

        May be called several times for one frame: with "first" and then "second" it doubles the rate.

        Args:
            out: receives the frame; of the source's size.
            keep: the field that is kept: "top", "bottom", or "first", "second" in time.
            to: format of the result; that of the source where it is left out.
        Returns:
            The frame, or None while fewer than three frames have been given.
        Raises:
            Error: the frame has another size than the sources, is narrower than 16 samples in a plane, or has a format
                that cannot be deinterlaced.
        """
        if keep not in _KEEP:
            raise Error("Deinterlacer.pull", f"keep is one of {', '.join(_KEEP)}")
        if self._last is None:
            return None
        format, width, height = self._last
        wanted = format_of(to) if to is not None else out.format if type(out) is Picture else format
        target = _output("Deinterlacer.pull", out, wanted, width, height)
        result = self._get_frame(
            self._pointer, target._pointers, target._strides, target.width, target.height, target.format, _KEEP[keep]
        )
        if result & 0xFFFFFFFF == E_PENDING:
            return None
        if result < 0:
            raise _failure("Deinterlacer.pull", result)
        return target


class Codec(enum.IntEnum):
    """The codecs, by their index in the library's table."""

    DV = 0  #: KVDV, 25 Mbit.
    DVCPRO = 1  #: KV25.
    DVCPRO50 = 2  #: KV50.
    DVCPRO100_50HZ = 3  #: KVH1.
    DVCPRO100_60HZ = 4  #: KVH1; the decoder is that of DVCPRO100_50HZ.
    TARVEX_JPEG = 5  #: TRVD.
    TARVEX_JPEG_ALPHA = 6  #: TRVT.
    ELEMENTARY_I_FRAMES = 7  #: KVIF, MPEG-2 4:2:2.
    ADVANCED_I_FRAMES = 8  #: KVES, MPEG-2 4:2:2.
    MOTION_JPEG = 9  #: KVMJ.
    H264 = 10  #: AVC1; a decoder alone.


CodecLike = Union[Codec, str, int]


def codec_of(value: CodecLike) -> Codec:
    """The codec of a name ("motion_jpeg") or an index. Raises Error for one that is none."""
    try:
        return Codec[value.upper()] if isinstance(value, str) else Codec(value)
    except (KeyError, ValueError):
        raise Error("Codec", f"there is no codec {value!r}") from None


class _CodecSide(_Object):
    def __init__(self, interface: str, codec: CodecLike, width: int, height: int) -> None:
        super().__init__("VideoCodec", interface)
        self.codec = codec_of(codec)
        self.width, self.height = width, height
        result = self._interface.method(3, I32, I32, I32)(self._pointer, self.codec, width, height)
        method = type(self).__name__
        if result & 0xFFFFFFFF == E_OUTOFMEMORY:
            raise _failure(method, result, f"{self.codec.name} has no {method.lower()}")
        if result < 0:
            raise _failure(method, result, f"{self.codec.name} does not take {width} by {height}")

    def _check(self, method: str, picture: Picture) -> None:
        if picture.width != self.width or picture.height != self.height:
            raise PictureError(method, f"{picture!r} is not of {self.width} by {self.height}")
        if not picture._is_in_sequence():
            raise PictureError(method, "the planes must follow each other in memory")


class Encoder(_CodecSide):
    """Compresses frames of one size with one codec.

    Args:
        codec: a Codec, its name or its index.
        width, height: of the frames, in pixels and lines. Which sizes a codec takes is the codec's business.
        quality: 0 (worst) to 10000 (best), 8000 where it is left out. Codecs of fixed rate (DV) ignore it.
    Raises:
        Error: there is no such encoder, or it does not take the size.
    """

    def __init__(self, codec: CodecLike, width: int, height: int, quality: int | None = None) -> None:
        super().__init__("IVideoEncoder", codec, width, height)
        self._set_quality = self._interface.method(4, I32)
        self._encode = self._interface.method(5, POINTER, I32, POINTER, POINTER, POINTER, U32)
        self._size = U32()
        self._size_address = _address(self._size)
        self._scratch: np.ndarray | None = None
        if quality is not None:
            self.set_quality(quality)

    def set_quality(self, quality: int) -> None:
        """Sets the quality of the frames to come."""
        if not 0 <= quality <= 10000:
            raise Error("Encoder.set_quality", f"a quality is 0 to 10000, not {quality}")
        result = self._set_quality(self._pointer, quality)
        if result < 0:
            raise _failure("Encoder.set_quality", result)

    def encode(self, picture: PictureLike, out: Any = None, format: FormatLike | None = None) -> bytes | memoryview:
        """Compresses a frame. All codecs take BGR, BGRA, UYVY, YUY2 and YVYU, some Y16 and Y16A.

        Args:
            out: a writable buffer that receives the compressed frame.
            format: of `picture`, where it is an array that does not tell.
        Returns:
            The compressed frame: new bytes, or the part of `out` that it fills.
        Raises:
            PictureError: the picture has another size, or its planes do not follow each other.
            Error: the codec does not take the format, or the frame does not fit into `out`.
        """
        method = "Encoder.encode"
        source = picture_of(picture, format)
        self._check(method, source)
        if out is None:
            if self._scratch is None:
                self._scratch = np.empty(self.width * self.height * 8 + (1 << 20), np.uint8)
            room = self._scratch
        else:
            room = np.frombuffer(out, np.uint8)
            if not room.flags.writeable or not room.nbytes:
                raise PictureError(method, "out is read-only or empty")
        result = self._encode(
            self._pointer,
            room.__array_interface__["data"][0],
            min(room.nbytes, 0x7FFFFFFF),
            self._size_address,
            source._pointers,
            source._strides,
            source.format,
        )
        if result < 0:
            reason = {E_FAIL: "the codec refused the format, or the frame did not fit"}.get(result & 0xFFFFFFFF)
            raise _failure(method, result, reason)
        size = self._size.value
        if size == 0:
            raise Error(method, f"the frame does not fit into {room.nbytes} bytes")
        return room[:size].tobytes() if out is None else memoryview(out).cast("B")[:size]


class Decoder(_CodecSide):
    """Decompresses frames of one size with one codec. Arguments as Encoder."""

    def __init__(self, codec: CodecLike, width: int, height: int) -> None:
        super().__init__("IVideoDecoder", codec, width, height)
        self._decode = self._interface.method(4, POINTER, POINTER, U32, POINTER, I32)

    def decode(self, data: Any, to: FormatLike | None = None, out: PictureLike | None = None) -> Picture:
        """Decompresses a frame. All codecs give BGR, BGRA, UYVY, YUY2 and YVYU.

        Args:
            data: the compressed frame, any buffer.
            to: format of the result; UYVY where neither it nor a Picture as `out` is given.
            out: receives the picture; of the decoder's size, with planes that follow each other.
        Raises:
            PictureError: `out` has another size, or its planes do not follow each other.
            Error: the codec refuses the frame or the format; `out` may then be written in part. The H.264 decoder
                refuses as well while no frame is due yet, and has then kept what it was given.
        """
        method = "Decoder.decode"
        coded = np.frombuffer(data, np.uint8)
        if not 0 < coded.nbytes <= 0x7FFFFFFF:
            raise Error(method, "the frame is empty or too large", E_INVALIDARG)
        wanted = format_of(to) if to is not None else out.format if type(out) is Picture else Format.UYVY
        target = _output(method, out, wanted, self.width, self.height)
        self._check(method, target)
        if target.format is not wanted:
            raise PictureError(method, f"out has the format {target.format.name}")
        result = self._decode(
            self._pointer,
            target._pointers,
            target._strides,
            target.format,
            coded.__array_interface__["data"][0],
            coded.nbytes,
        )
        if result < 0:
            reason = {E_FAIL: "the codec refused the frame or the format"}.get(result & 0xFFFFFFFF)
            raise _failure(method, result, reason)
        return target


_own = threading.local()


def convert(
    picture: PictureLike,
    to: FormatLike | None = None,
    out: PictureLike | None = None,
    format: FormatLike | None = None,
) -> Picture:
    """Converter.convert with a converter that each thread has of its own."""
    try:
        converter = _own.converter
    except AttributeError:
        converter = _own.converter = Converter()
    return converter.convert(picture, to, out, format)


def resize(
    picture: PictureLike,
    size: tuple[int, int] | None = None,
    to: FormatLike | None = None,
    out: PictureLike | None = None,
    format: FormatLike | None = None,
) -> Picture:
    """Resizer.resize with a resizer that each thread has of its own."""
    try:
        resizer = _own.resizer
    except AttributeError:
        resizer = _own.resizer = Resizer()
    return resizer.resize(picture, size, to, out, format)
