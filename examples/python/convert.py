#!/usr/bin/env python3
"""Loads Pixmorph from Python and converts a picture: nothing but ctypes is needed.

usage: convert.py path/to/libpixmorph.so

An interface is a pointer to an object whose first word points to a table of functions. QueryInterface, AddRef and
Release are entries 0 to 2, the interface's own methods follow in the order of pixmorph.h.
"""
import ctypes
import sys
import uuid

CLSID_PIXMORPH = uuid.UUID("2ACC22E9-B881-4873-BC39-DE01DD49185E")
IID_ICLASSFACTORY = uuid.UUID("00000001-0000-0000-C000-000000000046")
IID_IPIXMORPH = uuid.UUID("7F399F71-B8E5-4AAC-97D2-92991D677866")
BGRA_TOP_DOWN = 18
UYVY_BT709 = 14


class ComError(Exception):
    pass


def guid(value):
    """The 16 bytes of an identifier as they lie in memory."""
    return (ctypes.c_uint8 * 16).from_buffer_copy(value.bytes_le)


class Interface:
    """Owns one reference to an interface."""

    def __init__(self, pointer):
        self.pointer = pointer

    def call(self, slot, *arguments):
        """Calls entry `slot`. Arguments are ctypes values; the result is the method's status."""
        table = ctypes.cast(self.pointer, ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p))).contents
        method = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, *[type(a) for a in arguments])(table[slot])
        status = method(self.pointer, *arguments)
        if status < 0:
            raise ComError(f"method {slot} failed with 0x{status & 0xFFFFFFFF:08X}")
        return status

    def __del__(self):
        table = ctypes.cast(self.pointer, ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p))).contents
        ctypes.CFUNCTYPE(ctypes.c_uint32, ctypes.c_void_p)(table[2])(self.pointer)


def create(library, clsid, iid):
    """Makes an object of a class and returns one of its interfaces."""
    pointer = ctypes.c_void_p()
    status = library.DllGetClassObject(guid(clsid), guid(IID_ICLASSFACTORY), ctypes.byref(pointer))
    if status < 0:
        raise ComError(f"the library has no such class: 0x{status & 0xFFFFFFFF:08X}")
    factory = Interface(pointer)
    result = ctypes.c_void_p()
    factory.call(3, ctypes.c_void_p(), ctypes.c_void_p(ctypes.addressof(wanted := guid(iid))),
                 ctypes.c_void_p(ctypes.addressof(result)))
    return Interface(result)


def convert(pixmorph, uyvy, width, height):
    """UYVY bytes with the colours of BT.709 to BGRA bytes, top line first."""
    source = (ctypes.c_uint8 * len(uyvy)).from_buffer_copy(uyvy)
    bgra = (ctypes.c_uint8 * (4 * width * height))()
    pixmorph.call(3, ctypes.c_void_p(ctypes.addressof(bgra)), ctypes.c_void_p(ctypes.addressof(source)),
                  ctypes.c_uint32(width), ctypes.c_uint32(height), ctypes.c_int32(4 * width), ctypes.c_int32(2 * width),
                  ctypes.c_uint32(BGRA_TOP_DOWN), ctypes.c_uint32(UYVY_BT709))
    return bytes(bgra)


def main():
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    library = ctypes.CDLL(sys.argv[1])
    pixmorph = create(library, CLSID_PIXMORPH, IID_IPIXMORPH)

    # Two lines of bars at 75%: U, Y, V, Y for each pair of pixels, and the B, G, R that are expected of them.
    bars = {"white": (128, 180, 128, (191, 191, 191)), "yellow": (44, 168, 136, (0, 191, 191)),
            "green": (63, 133, 52, (0, 191, 0)), "red": (109, 51, 212, (0, 0, 191)), "blue": (212, 28, 120, (191, 0, 0))}
    pixels_per_bar = 32
    line = b"".join(bytes((u, y, v, y)) * (pixels_per_bar // 2) for u, y, v, _ in bars.values())
    width, height = pixels_per_bar * len(bars), 2
    bgra = convert(pixmorph, line * height, width, height)

    good = True
    for index, (name, (_, _, _, expected)) in enumerate(bars.items()):
        at = 4 * (index * pixels_per_bar + pixels_per_bar // 2)
        blue, green, red, alpha = bgra[at:at + 4]
        print(f"{name}: blue {blue}, green {green}, red {red}")
        good = good and alpha == 255 and all(abs(a - b) <= 2 for a, b in zip((blue, green, red), expected))

    del pixmorph
    good = good and library.DllCanUnloadNow() == 0
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
