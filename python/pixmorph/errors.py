"""What goes wrong, and why."""
from __future__ import annotations

E_PENDING = 0x8000000A
E_NOTIMPL = 0x80004001
E_FAIL = 0x80004005
E_OUTOFMEMORY = 0x8007000E
E_INVALIDARG = 0x80070057
E_NOT_VALID_STATE = 0x8007139F

_SENTENCES = {
    E_PENDING: "more frames are needed first",
    E_NOTIMPL: "the object is not set up",
    E_FAIL: "the engine refused or failed",
    E_OUTOFMEMORY: "memory could not be had",
    E_INVALIDARG: "an argument is out of its range",
    E_NOT_VALID_STATE: "no codec is set up",
}


def describe(result: int) -> str:
    """A sentence for a component's result."""
    return _SENTENCES.get(result & 0xFFFFFFFF, "the component failed")


class Error(Exception):
    """A call that did not do what it was asked.

    Attributes:
        method: the method that failed, "Converter.convert".
        reason: a sentence that says why.
        result: the component's 32-bit result, as an unsigned number; 0 where it was not reached.
    """

    def __init__(self, method: str, reason: str, result: int = 0) -> None:
        self.method = method
        self.reason = reason
        self.result = result & 0xFFFFFFFF
        super().__init__(f"{method}: {reason}" + (f" (0x{self.result:08X})" if self.result else ""))


class PictureError(Error, ValueError):
    """A picture that is not what its format asks for, or not what the call takes."""


class LibraryNotFound(Error, OSError):
    """The shared library is not where it was looked for."""
