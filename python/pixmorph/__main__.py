"""The library on the command line.

    python -m pixmorph info
    python -m pixmorph convert IN OUT [--size WxH] [--from FORMAT] [--to FORMAT] [--resize WxH]
    python -m pixmorph encode IN OUT --codec CODEC [--quality N] [--size WxH] [--from FORMAT]
    python -m pixmorph decode IN OUT --codec CODEC --size WxH [--to FORMAT]

A name that ends in .png is read and written with Pillow, as BGR or BGRA; any other file holds the samples of one
picture, plane after plane and line after line without gaps, and needs --size and --from.
"""
from __future__ import annotations

import argparse
import pathlib
import sys
from typing import Any

import numpy as np

from . import _com
from .errors import Error
from .formats import LAYOUTS, Format, matrix, value_range
from .info import classes, codecs, cpu_info
from .objects import Codec, Decoder, Encoder, convert, resize
from .picture import Picture


def _size(text: str) -> tuple[int, int]:
    width, _, height = text.lower().partition("x")
    try:
        size = int(width), int(height)
    except ValueError:
        size = 0, 0
    if min(size) < 1:
        raise argparse.ArgumentTypeError(f"{text!r} is no size such as 1920x1080")
    return size


def _is_png(path: str) -> bool:
    return path.lower().endswith(".png")


def _pillow() -> Any:
    try:
        from PIL import Image
    except ImportError:
        raise Error("PNG", "Pillow is not installed (python3-pil)") from None
    return Image


def _read(path: str, format: str | None, size: tuple[int, int] | None) -> Picture:
    if _is_png(path):
        image = _pillow().open(path)
        has_alpha = image.mode in ("RGBA", "LA", "PA") or "transparency" in image.info
        pixels = np.array(image.convert("RGBA" if has_alpha else "RGB"))
        pixels[:, :, :3] = pixels[:, :, 2::-1].copy()
        return Picture(pixels)
    if format is None or size is None:
        raise Error("read", f"{path} needs --from and --size")
    return Picture(pathlib.Path(path).read_bytes(), format, size)


def _write(path: str, picture: Picture) -> None:
    if not _is_png(path):
        pathlib.Path(path).write_bytes(picture.tobytes())
        return
    if picture.format not in (Format.BGR, Format.BGRA):
        picture = convert(picture, "BGR")
    pixels = picture.array.copy()
    pixels[:, :, :3] = pixels[:, :, 2::-1].copy()
    _pillow().fromarray(pixels).save(path)


def _info(_: argparse.Namespace) -> None:
    cpu = cpu_info()
    print(f"library    {_com.library_path()}")
    print(f"processor  {cpu.model}, {cpu.processors} in use")
    print(f"level      {cpu.level} (the processor has {cpu.available}; PIXMORPH_LEVEL={cpu.forced or 'not set'})")
    print(f"classes    {', '.join(classes())}")
    print("formats")
    for format in Format:
        layout = LAYOUTS[format]
        colours = "RGB" if matrix(format) is None else f"{matrix(format)}, {value_range(format)} range"
        planes = "1 plane " if layout.planes == 1 else f"{layout.planes} planes"
        print(f"  {format.value:3}  {format.name:12} {planes}  {colours}")
    print("codecs")
    for codec in codecs():
        sides = [name for name, there in (("encoder", codec.encoder), ("decoder", codec.decoder)) if there]
        print(f"  {codec.index:3}  {codec.fourcc}  {codec.name} ({', '.join(sides) or 'not there yet'})")


def _convert(options: argparse.Namespace) -> None:
    picture = _read(options.input, options.source, options.size)
    if options.resize:
        picture = resize(picture, options.resize)
    if options.to:
        picture = convert(picture, options.to)
    _write(options.output, picture)
    print(f"{options.output}: {picture.format.name} {picture.width}x{picture.height}")


def _encode(options: argparse.Namespace) -> None:
    picture = _read(options.input, options.source, options.size)
    coded = Encoder(options.codec, picture.width, picture.height, options.quality).encode(picture)
    pathlib.Path(options.output).write_bytes(coded)
    print(f"{options.output}: {len(coded)} bytes")


def _decode(options: argparse.Namespace) -> None:
    wanted = options.to or ("BGR" if _is_png(options.output) else "UYVY")
    picture = Decoder(options.codec, *options.size).decode(pathlib.Path(options.input).read_bytes(), wanted)
    _write(options.output, picture)
    print(f"{options.output}: {picture.format.name} {picture.width}x{picture.height}")


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python -m pixmorph", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    commands = parser.add_subparsers(dest="command", required=True)
    commands.add_parser("info", help="classes, formats, codecs and the level in use").set_defaults(run=_info)
    names = ", ".join(codec.name.lower() for codec in Codec)

    def command(name: str, help: str, run: Any) -> argparse.ArgumentParser:
        added = commands.add_parser(name, help=help)
        added.add_argument("input")
        added.add_argument("output")
        added.add_argument("--size", type=_size, required=name == "decode", help="WxH of a raw picture")
        added.set_defaults(run=run)
        return added

    converting = command("convert", "converts and resizes a picture", _convert)
    converting.add_argument("--from", dest="source", help="format of a raw picture")
    converting.add_argument("--to", help="format of the result")
    converting.add_argument("--resize", type=_size, help="WxH of the result")
    encoding = command("encode", "compresses a picture", _encode)
    encoding.add_argument("--from", dest="source", help="format of a raw picture")
    encoding.add_argument("--codec", required=True, help=names)
    encoding.add_argument("--quality", type=int, help="0 to 10000")
    decoding = command("decode", "decompresses a frame", _decode)
    decoding.add_argument("--codec", required=True, help=names)
    decoding.add_argument("--to", help="format of the result")
    return parser


def main(arguments: list[str] | None = None) -> int:
    """Runs a command; 0 when it did what it says."""
    options = _parser().parse_args(arguments)
    try:
        options.run(options)
    except (Error, OSError) as error:
        print(f"pixmorph: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
