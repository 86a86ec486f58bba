"""The component interface through ctypes: finding the library, making objects, calling slots.

A function made by CFUNCTYPE lets go of the interpreter's lock for the length of the call, so threads run in parallel.
"""
from __future__ import annotations

import ctypes
import ctypes.util
import functools
import os
import pathlib
import threading
import uuid
from typing import Any, Callable

from .errors import E_OUTOFMEMORY, Error, LibraryNotFound

_ICLASSFACTORY = "00000001-0000-0000-C000-000000000046"

CLASSES = {
    "Pixmorph": "2ACC22E9-B881-4873-BC39-DE01DD49185E",
    "StretchImage": "31E38A3B-4457-4227-95B0-AC737DAC583E",
    "CopyMemory": "8EAE9EC1-94D8-4BC4-AC19-CA65EEC825FE",
    "TitleMixer": "C98ABA7E-D4E3-4630-9601-C7323F6FCE7A",
    "TitleMixer2": "CE746614-B7FD-4A03-9472-60AACEF375B9",
    "TitleMixer3": "C318E9A7-4C90-46F3-B9E0-682D36F87FE5",
    "Y16ARLECompressor": "0B5E501E-4513-4CA7-81BB-F08E129CA27A",
    "DeinterlaceMaker": "6105D26A-775A-47A6-9EB2-321639DD398E",
    "VideoInterpolation": "6B16BA9E-EDD1-4D85-98B0-D03640925B7C",
    "VideoDeinterlacer": "1DFC1AAA-D3E2-4361-B265-6332DD0E75F5",
    "VideoCodec": "FC71E806-15F0-4A76-9C82-AFCB64847416",
}
INTERFACES = {
    "IColorConversion": "6B67CD22-6EEF-4CD7-9F56-1E766762D3D1",
    "IStretchImage": "076F9D3D-D665-41EC-8DAE-71D679F9E118",
    "IResizeImage": "FDCD0A0D-95B5-44E3-A153-F6EC06F4C162",
    "ITitleMixer4": "1E439B6C-9634-4714-8A1D-888FAD20A083",
    "IVideoDeinterlacer": "90463ED7-6A5D-4480-8968-7DD1D9589EF3",
    "IVideoCodecEnum": "802705BE-AE52-42D5-8FDD-5A88FBB22297",
    "IVideoEncoder": "98E14A9E-2340-4DE8-92BE-4AB033F826D4",
    "IVideoDecoder": "292E7CEE-412B-4EC2-AE5D-7CE49B80829D",
}

POINTER = ctypes.c_void_p
I32 = ctypes.c_int32
U32 = ctypes.c_uint32

_NAME = "libpixmorph.so.1"
_lock = threading.Lock()
_library: ctypes.CDLL | None = None
_path = ""


def _candidates() -> list[str]:
    named = os.environ.get("PIXMORPH_LIBRARY")
    if named:
        return [named]
    beside = pathlib.Path(__file__).resolve().parent
    found = [str(beside / _NAME), str(beside / "libpixmorph.so")]
    return [path for path in found if os.path.exists(path)] + [ctypes.util.find_library("pixmorph") or _NAME]


def library() -> ctypes.CDLL:
    """The shared library: the file that PIXMORPH_LIBRARY names, else one beside this package, else the system's.

    Raises LibraryNotFound. Loaded once.
    """
    global _library, _path
    with _lock:
        if _library is not None:
            return _library
        tried = _candidates()
        reasons = []
        for path in tried:
            try:
                loaded = ctypes.CDLL(path)
                loaded.DllGetClassObject.argtypes = [POINTER, POINTER, POINTER]
                loaded.DllGetClassObject.restype = I32
            except (OSError, AttributeError) as error:
                reasons.append(str(error))
                continue
            _library, _path = loaded, path
            return loaded
        raise LibraryNotFound("pixmorph.library", "; ".join(reasons))


def library_path() -> str:
    """The path or name that the library was loaded by."""
    library()
    return _path


def _guid(text: str) -> Any:
    return (ctypes.c_uint8 * 16).from_buffer_copy(uuid.UUID(text).bytes_le)


@functools.lru_cache(maxsize=None)
def _prototype(types: tuple[Any, ...]) -> Any:
    return ctypes.CFUNCTYPE(I32, POINTER, *types)


def _method(pointer: int, slot: int, types: tuple[Any, ...]) -> Callable[..., int]:
    table = ctypes.cast(pointer, ctypes.POINTER(POINTER))[0]
    return _prototype(types)(ctypes.cast(table, ctypes.POINTER(POINTER))[slot])


class Interface:
    """Owns one reference to an interface of an object."""

    __slots__ = ("pointer", "_release", "_library")

    def __init__(self, pointer: int) -> None:
        self.pointer = pointer
        self._library = library()  # The code outlives the object.
        self._release = _method(pointer, 2, ())

    def method(self, slot: int, *types: Any) -> Callable[..., int]:
        """Entry `slot` of the table, to be called with `pointer` first; its result is signed."""
        return _method(self.pointer, slot, types)

    def query(self, interface: str) -> Interface:
        """Another interface of the object."""
        wanted, result = _guid(INTERFACES[interface]), POINTER()
        status = self.method(0, POINTER, POINTER)(self.pointer, ctypes.addressof(wanted), ctypes.addressof(result))
        if status < 0:
            raise Error(f"QueryInterface({interface})", "the object lacks the interface", status)
        assert result.value is not None
        return Interface(result.value)

    def __del__(self) -> None:
        release = getattr(self, "_release", None)
        if release is not None:
            release(self.pointer)


def has_class(name: str) -> bool:
    """Whether the library has a class object for a class."""
    try:
        _factory(name)
    except Error:
        return False
    return True


def _factory(name: str) -> Interface:
    clsid, iid, pointer = _guid(CLASSES[name]), _guid(_ICLASSFACTORY), POINTER()
    status = library().DllGetClassObject(clsid, iid, ctypes.addressof(pointer))
    if status < 0 or pointer.value is None:
        raise Error(name, "the library has no such class", status)
    return Interface(pointer.value)


def create(name: str, interface: str) -> Interface:
    """Makes an object of a class and returns one of its interfaces. Raises Error."""
    factory = _factory(name)
    iid, result = _guid(INTERFACES[interface]), POINTER()
    status = factory.method(3, POINTER, POINTER, POINTER)(
        factory.pointer, None, ctypes.addressof(iid), ctypes.addressof(result)
    )
    if status < 0 or result.value is None:
        raise Error(name, "the object could not be made", status or E_OUTOFMEMORY)
    return Interface(result.value)
