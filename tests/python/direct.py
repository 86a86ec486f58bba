"""The component interface called slot by slot, with nothing of the package: what its results are compared with."""
import ctypes
import os
import uuid

_library = ctypes.CDLL(os.environ["PIXMORPH_LIBRARY"])
_POINTERS, _STRIDES = ctypes.c_void_p * 4, ctypes.c_int32 * 4


class Object:
    """An object of a class, by one of its interfaces."""

    def __init__(self, clsid, iid):
        factory, self.pointer = ctypes.c_void_p(), ctypes.c_void_p()
        assert _library.DllGetClassObject(_guid(clsid), _guid("00000001-0000-0000-C000-000000000046"),
                                          ctypes.byref(factory)) == 0
        assert _call(factory, 3, None, _guid(iid), ctypes.byref(self.pointer)) == 0
        _call(factory, 2)

    def call(self, slot, *arguments):
        return _call(self.pointer, slot, *arguments)

    def __del__(self):
        _call(self.pointer, 2)


def _guid(text):
    return (ctypes.c_uint8 * 16).from_buffer_copy(uuid.UUID(text).bytes_le)


def _call(pointer, slot, *arguments):
    """Numbers go as 32-bit integers; all else as pointers."""
    table = ctypes.cast(pointer, ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p))).contents
    types = [ctypes.c_uint32 if isinstance(a, int) else ctypes.c_void_p for a in arguments]
    values = [ctypes.cast(a, ctypes.c_void_p) if not isinstance(a, (int, type(None))) else a for a in arguments]
    return ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, *types)(table[slot])(pointer, *values)


def buffer(data):
    return (ctypes.c_uint8 * len(data)).from_buffer_copy(data)


def planes(memory, *offsets):
    """Four plane pointers into a buffer."""
    return _POINTERS(*[ctypes.addressof(memory) + offset for offset in offsets])


def strides(*values):
    return _STRIDES(*values)


def color_conversion():
    return Object("2ACC22E9-B881-4873-BC39-DE01DD49185E", "6B67CD22-6EEF-4CD7-9F56-1E766762D3D1")


def resize_image():
    return Object("31E38A3B-4457-4227-95B0-AC737DAC583E", "FDCD0A0D-95B5-44E3-A153-F6EC06F4C162")


def stretch_image():
    return Object("31E38A3B-4457-4227-95B0-AC737DAC583E", "076F9D3D-D665-41EC-8DAE-71D679F9E118")


def title_mixer():
    return Object("C318E9A7-4C90-46F3-B9E0-682D36F87FE5", "1E439B6C-9634-4714-8A1D-888FAD20A083")


def video_deinterlacer():
    return Object("1DFC1AAA-D3E2-4361-B265-6332DD0E75F5", "90463ED7-6A5D-4480-8968-7DD1D9589EF3")


def video_encoder():
    return Object("FC71E806-15F0-4A76-9C82-AFCB64847416", "98E14A9E-2340-4DE8-92BE-4AB033F826D4")


def video_decoder():
    return Object("FC71E806-15F0-4A76-9C82-AFCB64847416", "292E7CEE-412B-4EC2-AE5D-7CE49B80829D")


def can_unload():
    return _library.DllCanUnloadNow() == 0
