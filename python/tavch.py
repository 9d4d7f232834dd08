"""tavch for Python: regular expressions and string functions of the C library, by ctypes.

    import tavch

    date = tavch.Pattern(r"(\\d{4})-(\\d\\d)-(\\d\\d)")
    match = date.find("drawn up on 2026-11-20")
    print(match[0], match[1], match.start())
    print(date.replace("drawn up on 2026-11-20", "$3.$2.$1"))

Subjects are bytes or str. A str is searched as UTF-8, and what is found is str again, with positions in
characters. The same holds for the functions on strings of 16-bit units, which take str alone.

A pattern may be used by any number of threads; they wait for each other, since one search at a time runs on a
pattern. Threads that shall not wait use patterns of their own.

The library is looked for at the path in the environment variable TAVCH_LIBRARY, then where it is installed together
with this file, then where the system looks.
"""

from __future__ import annotations

import ctypes
import os
import sys
import threading
from ctypes import POINTER, byref, c_char, c_char_p, c_int32, c_uint8, c_uint16, c_uint32, c_uint64, c_void_p
from typing import Dict, List, NamedTuple, Optional, Tuple, Union, overload

__all__ = [
    "Error", "Match", "Pattern", "PatternSet", "STATUS_NAMES", "Version", "compare_ignore_case", "find", "hash31",
    "lowercase", "rfind", "library", "to_utf16", "to_utf8", "uppercase", "version",
]

Text = Union[str, bytes]

STATUS_NAMES: Dict[int, str] = {
    27: "tavStsFieldTruncated",
    26: "tavStsSplitUnfinished",
    12: "tavStsResultsTruncated",
    0: "tavStsNoError",
    -2: "tavStsNotFound",
    -5: "tavStsBadArgument",
    -6: "tavStsBadCount",
    -7: "tavStsOutOfRange",
    -8: "tavStsNullPointer",
    -9: "tavStsSetFull",
    -119: "tavStsNegativeLength",
    -183: "tavStsBadEscape",
    -184: "tavStsBadClass",
    -185: "tavStsBadGroupReference",
    -186: "tavStsPatternSyntax",
    -187: "tavStsRepeatLimit",
    -188: "tavStsBadContext",
    -190: "tavStsBadOption",
}


class Error(ValueError):
    """A call that failed: the status, its name, and for a bad pattern the byte at which the error was found."""

    def __init__(self, status: int, offset: Optional[int] = None) -> None:
        self.status = status
        self.name = STATUS_NAMES.get(status, "unknown status")
        self.offset = offset
        super().__init__(f"{self.name} ({status})" + ("" if offset is None else f" at byte {offset}"))


# ----------------------------------------------------------------------------------------------------------------------
# The library. Structures and functions are those of tavch.h.


class _Version(ctypes.Structure):
    _fields_ = [("versionMajor", c_int32), ("versionMinor", c_int32), ("versionPatch", c_int32),
                ("buildNumber", c_int32), ("cpuVariant", c_char * 4), ("libraryName", c_char_p),
                ("versionText", c_char_p), ("buildDate", c_char_p)]


class _Context(ctypes.Structure):
    _fields_ = [("tag", c_uint32), ("options", c_uint32), ("codeLength", c_int32), ("groupCount", c_int32),
                ("lastLiteral", c_int32), ("matchLimit", c_int32), ("format", c_int32), ("searchHint", c_int32),
                ("workArea", c_uint64 * 6000)]


class _Result(ctypes.Structure):
    _fields_ = [("start", c_void_p), ("length", c_int32)]


class _ReplaceContext(ctypes.Structure):
    _fields_ = [("itemCount", c_int32), ("items", c_void_p)]


class _ReplaceItem(ctypes.Structure):
    _fields_ = [("kind", c_uint32), ("value", c_uint32), ("text", c_void_p)]


class _SetResult(ctypes.Structure):
    _fields_ = [("searched", c_int32), ("id", c_uint32), ("numFind", c_int32), ("status", c_int32),
                ("finds", POINTER(_Result))]


class _Set(ctypes.Structure):
    _fields_ = [("capacity", c_int32), ("patterns", c_void_p), ("ids", c_void_p)]


# One letter for each parameter: p an array, s text, i and u 32-bit numbers, I and U pointers to them, e an element.
_FAMILIES = {
    "tavsCompare_{}": "ppiI", "tavsCompareIgnoreCaseLatin_{}": "ppiI", "tavsEqual_{}": "ppiU",
    "tavsFind_{}": "pipiI", "tavsFindRev_{}": "pipiI", "tavsFind_Z_{}": "ppI", "tavsFindC_{}": "pieI",
    "tavsFindRevC_{}": "pieI", "tavsFindC_Z_{}": "peI", "tavsFindCAny_{}": "pipiI", "tavsFindRevCAny_{}": "pipiI",
    "tavsInsert_{}": "pipipi", "tavsInsert_{}_I": "pipIi", "tavsRemove_{}": "pipii", "tavsRemove_{}_I": "pIii",
    "tavsConcat_{}": "pipip", "tavsConcat_{}_D2L": "ppip", "tavsConcatC_{}_D2L": "ppiep",
    "tavsSplitC_{}_D2L": "pieppI", "tavsReplaceC_{}": "ppiee", "tavsTrimC_{}": "piepI", "tavsTrimC_{}_I": "pIe",
    "tavsTrimCAny_{}": "pipipI", "tavsTrimStartCAny_{}": "pipipI", "tavsTrimEndCAny_{}": "pipipI",
    "tavsHash_{}32u": "piU", "tavsHashSJ2_{}32u": "piU", "tavsHashMSCS_{}32u": "piU",
    "tavsLowercaseLatin_{}": "ppi", "tavsLowercaseLatin_{}_I": "pi", "tavsUppercaseLatin_{}": "ppi",
    "tavsUppercaseLatin_{}_I": "pi",
}
_SINGLES = {
    "tavsConvertUTF_8u16u": "pUpUi", "tavsConvertUTF_16u8u": "pUpUi", "tavsLowercase_16u": "ppi",
    "tavsLowercase_16u_I": "pi", "tavsUppercase_16u": "ppi", "tavsUppercase_16u_I": "pi",
    "tavsCompareIgnoreCase_16u": "ppiI", "tavsRegExpGetSize": "sI", "tavsRegExpInit": "sspI",
    "tavsRegExpInitAlloc": "sspI", "tavsRegExpFree": "p", "tavsRegExpSetMatchLimit": "ip",
    "tavsRegExpSetFormat": "ip", "tavsRegExpFind_8u": "pippI", "tavsRegExpReplaceGetSize": "sI",
    "tavsRegExpReplaceInit": "sp", "tavsRegExpReplace_8u": "pIpIpIpp", "tavsRegExpMultiGetSize": "uI",
    "tavsRegExpMultiInit": "pu", "tavsRegExpMultiInitAlloc": "pu", "tavsRegExpMultiFree": "p",
    "tavsRegExpMultiAdd": "pup", "tavsRegExpMultiDelete": "up", "tavsRegExpMultiModify": "pup",
    "tavsRegExpMultiFind_8u": "pipp",
}


def _signatures() -> Dict[str, str]:
    """Every function but the version query, with its parameters; elements as b (byte) or h (16 bits)."""
    table = dict(_SINGLES)
    for name, parameters in _FAMILIES.items():
        for width, element in (("8u", "b"), ("16u", "h")):
            table[name.format(width)] = parameters.replace("e", element)
    return table


def _candidates() -> List[str]:
    here = os.path.dirname(os.path.abspath(__file__))
    if sys.platform == "win32":
        name, folders = "tavch-8.2.dll", [here, os.path.join(here, "..", "bin")]
    else:
        name, folders = "libtavch.so.8", [here, os.path.join(here, "..", "..")]
    named = os.environ.get("TAVCH_LIBRARY")
    if named:
        return [named]
    installed = (os.path.normpath(os.path.join(folder, name)) for folder in folders)
    return [path for path in installed if os.path.exists(path)] + [name]


def _load() -> ctypes.CDLL:
    failure: Optional[OSError] = None
    for path in _candidates():
        try:
            loaded = ctypes.CDLL(path)
            break
        except OSError as error:
            failure = error
    else:
        raise ImportError(f"the library is not found; TAVCH_LIBRARY may name it ({failure})")
    kinds = {"p": c_void_p, "s": c_char_p, "i": c_int32, "u": c_uint32, "I": POINTER(c_int32),
             "U": POINTER(c_uint32), "b": c_uint8, "h": c_uint16}
    for name, parameters in _signatures().items():
        function = getattr(loaded, name)
        function.argtypes = [kinds[parameter] for parameter in parameters]
        function.restype = c_int32
    loaded.tavchGetLibVersion.argtypes = []
    loaded.tavchGetLibVersion.restype = POINTER(_Version)
    return loaded


library = _load()
"""The loaded library; its functions have their parameter types set and return their status."""


def _check(status: int, offset: Optional[int] = None) -> int:
    if status < 0:
        raise Error(status, offset)
    return status


# ----------------------------------------------------------------------------------------------------------------------
# Version


class Version(NamedTuple):
    major: int
    minor: int
    patch: int
    build: int
    name: str
    text: str


def version() -> Version:
    record = library.tavchGetLibVersion().contents
    return Version(record.versionMajor, record.versionMinor, record.versionPatch, record.buildNumber,
                   record.libraryName.decode("ascii"), record.versionText.decode("ascii"))


# ----------------------------------------------------------------------------------------------------------------------
# Patterns


def _bytes(text: Text) -> bytes:
    return text.encode("utf-8", "surrogatepass") if isinstance(text, str) else bytes(text)


def _text(data: bytes) -> str:
    """The text of UTF-8 bytes, of which a match may have cut characters; lone surrogates come back as they were."""
    try:
        return data.decode("utf-8", "surrogatepass")
    except UnicodeDecodeError:
        return data.decode("utf-8", "surrogateescape")


def _zero_terminated(text: Text) -> bytes:
    data = _bytes(text)
    zero = data.find(0)
    if zero >= 0:
        raise Error(-5, zero)
    return data


class Match:
    """A match: group 0 is the whole of it. Groups that took no part are None."""

    def __init__(self, data: bytes, is_text: bool, spans: List[Tuple[int, int]]) -> None:
        self._data = data
        self._is_text = is_text
        self._spans = spans

    def __len__(self) -> int:
        return len(self._spans)

    def __getitem__(self, group: int) -> Optional[Text]:
        start, end = self._spans[group]
        if start < 0:
            return None
        found = self._data[start:end]
        return _text(found) if self._is_text else found

    def groups(self) -> Tuple[Optional[Text], ...]:
        return tuple(self[i] for i in range(1, len(self)))

    def span(self, group: int = 0) -> Tuple[int, int]:
        """Begin and end: characters of a str, bytes of bytes; (-1, -1) for a group that took no part."""
        start, end = self._spans[group]
        return self._position(start), self._position(end)

    def start(self, group: int = 0) -> int:
        return self.span(group)[0]

    def end(self, group: int = 0) -> int:
        return self.span(group)[1]

    def _position(self, byte: int) -> int:
        if byte < 0 or not self._is_text:
            return byte
        return len(_text(self._data[:byte]))

    def __repr__(self) -> str:
        return f"<tavch.Match {self.span()} {self[0]!r}>"


class Pattern:
    """A compiled pattern. Options are letters of "imsx" ("g" is accepted and means nothing here)."""

    def __init__(self, pattern: Text, options: str = "") -> None:
        data = _zero_terminated(pattern)
        self.pattern = pattern
        self._lock = threading.Lock()
        size, offset = c_int32(), c_int32()
        _check(library.tavsRegExpGetSize(data, byref(size)))
        self._block = (c_uint64 * ((size.value + 7) // 8))()
        status = library.tavsRegExpInit(data, _zero_terminated(options), self._block, byref(offset))
        _check(status, offset.value)
        self._context = _Context.from_buffer(self._block)
        self._context.options &= ~16
        self.result_count: int = self._context.groupCount

    def set_match_limit(self, limit: int) -> None:
        """The depth budget of searches; what needs more is not found."""
        with self._lock:
            _check(library.tavsRegExpSetMatchLimit(limit, self._block))

    def set_whole_characters(self, whole: bool) -> None:
        """Whether start positions move on by UTF-8 characters, as after compilation, or by bytes."""
        with self._lock:
            _check(library.tavsRegExpSetFormat(1 if whole else 0, self._block))

    def find(self, subject: Text) -> Optional[Match]:
        """The first match, or None."""
        data = _bytes(subject)
        found, count = (_Result * self.result_count)(), c_int32(self.result_count)
        with self._lock:
            _check(library.tavsRegExpFind_8u(data, len(data), self._block, found, byref(count)))
        if count.value == 0:
            return None
        return _match(data, isinstance(subject, str), found, 0, self.result_count)

    def find_all(self, subject: Text) -> List[Match]:
        """All matches from left to right."""
        data = _bytes(subject)
        found, count = self._all(data)
        size = self.result_count
        return [_match(data, isinstance(subject, str), found, first, size)
                for first in range(0, count // size * size, size)]

    def _all(self, data: bytes) -> Tuple["ctypes.Array[_Result]", int]:
        """Entries of all matches. The search itself leaves whole matches out where there are groups; a replacement
        stores them, and one of nothing into a single byte does little but search."""
        room = 16 * self.result_count
        nothing, byte = _ReplaceContext(0, None), (c_uint8 * 1)()
        while True:
            found, count = (_Result * room)(), c_int32(room)
            with self._lock:
                if not data:
                    _check(library.tavsRegExpFind_8u(data, 0, self._block, found, byref(count)))
                    return found, count.value
                self._context.options |= 16
                try:
                    used, written = c_int32(len(data)), c_int32(1)
                    _check(library.tavsRegExpReplace_8u(data, byref(used), byte, byref(written), found, byref(count),
                                                        self._block, byref(nothing)))
                finally:
                    self._context.options &= ~16
            if count.value < room:
                return found, count.value
            room *= 4

    @overload
    def replace(self, subject: str, template: Text, count: int = 0) -> str: ...
    @overload
    def replace(self, subject: bytes, template: Text, count: int = 0) -> bytes: ...

    def replace(self, subject: Text, template: Text, count: int = 0) -> Text:
        """The subject with its matches replaced by a template; with a count, only the first ones.

        "$&" is the whole match, "$1" the first group."""
        data, text = _bytes(subject), _zero_terminated(template)
        size = c_int32()
        _check(library.tavsRegExpReplaceGetSize(text, byref(size)))
        items = (c_uint64 * ((size.value + 7) // 8))()
        _check(library.tavsRegExpReplaceInit(text, items))
        result = self._replace(data, items, count) if data else self._replace_in_empty(items)
        return _text(result) if isinstance(subject, str) else result

    def _replace(self, data: bytes, items: "ctypes.Array[c_uint64]", limit: int) -> bytes:
        # There is at most one match at each position and one behind the last.
        room = (min(limit, len(data) + 1) if limit > 0 else 16) * self.result_count
        capacity = len(data) + len(data) // 4 + 64
        while True:
            found, results = (_Result * room)(), c_int32(room)
            out, used, written = ctypes.create_string_buffer(capacity), c_int32(len(data)), c_int32(capacity)
            with self._lock:
                self._context.options |= 16
                try:
                    _check(library.tavsRegExpReplace_8u(data, byref(used), out, byref(written), found, byref(results),
                                                        self._block, items))
                finally:
                    self._context.options &= ~16
            if limit <= 0 and results.value == room:
                room *= 4
            elif used.value < len(data):
                capacity *= 2
            else:
                return out.raw[:written.value]

    def _replace_in_empty(self, items: "ctypes.Array[c_uint64]") -> bytes:
        """A replacement takes no empty text. A match in it is empty, and so is every group: the literals remain."""
        if self.find(b"") is None:
            return b""
        header = _ReplaceContext.from_buffer(items)
        parts = (_ReplaceItem * header.itemCount).from_address(header.items) if header.itemCount else []
        return b"".join(ctypes.string_at(part.text, part.value) for part in parts if part.kind == 0x10000001)


def _match(data: bytes, is_text: bool, found: "ctypes.Array[_Result]", first: int, size: int) -> Match:
    base = ctypes.cast(c_char_p(data), c_void_p).value or 0
    spans = []
    for entry in found[first:first + size]:
        start = -1 if entry.length < 0 else (entry.start or base) - base
        spans.append((start, -1 if start < 0 else start + entry.length))
    return Match(data, is_text, spans)


class PatternSet:
    """Patterns under identifiers, searched for together. Used by one thread at a time."""

    def __init__(self, capacity: int) -> None:
        size = c_int32()
        _check(library.tavsRegExpMultiGetSize(capacity, byref(size)))
        self._block = (c_uint64 * ((size.value + 7) // 8))()
        _check(library.tavsRegExpMultiInit(self._block, capacity))
        self._capacity = capacity
        self._slots: List[Optional[Tuple[int, Pattern]]] = [None] * capacity  # keeps the patterns in memory

    def add(self, pattern: Pattern, identifier: int) -> None:
        _check(library.tavsRegExpMultiAdd(pattern._block, identifier, self._block))
        self._slots[self._slots.index(None)] = (identifier, pattern)

    def remove(self, identifier: int) -> None:
        _check(library.tavsRegExpMultiDelete(identifier, self._block))
        slot = next(i for i, member in enumerate(self._slots) if member is not None and member[0] == identifier)
        self._slots[slot] = None

    def find(self, subject: Text) -> Dict[int, Match]:
        """The identifiers of the patterns that match, with the first match of each (its groups are not kept)."""
        data = _bytes(subject)
        if not data:
            return {}
        results, finds = (_SetResult * self._capacity)(), (_Result * self._capacity)()
        for i in range(self._capacity):
            results[i].numFind = 1
            results[i].finds = ctypes.pointer(finds[i])
        _check(library.tavsRegExpMultiFind_8u(data, len(data), results, self._block))
        hits: Dict[int, Match] = {}
        for i, result in enumerate(results):
            if result.searched and _check(result.status) >= 0 and result.numFind > 0:
                hits.setdefault(result.id, _match(data, isinstance(subject, str), finds, i, 1))
        return hits


# ----------------------------------------------------------------------------------------------------------------------
# Strings


def _search(name: str, text: Text, sought: Text) -> int:
    data, at = _bytes(text), c_int32()
    part = _bytes(sought)
    _check(getattr(library, name)(data, len(data), part, len(part), byref(at)))
    if at.value < 0 or not isinstance(text, str):
        return at.value
    return len(_text(data[:at.value]))


def find(text: Text, sought: Text) -> int:
    """Where a string first occurs in another, or -1; an empty string occurs nowhere."""
    return _search("tavsFind_8u", text, sought)


def rfind(text: Text, sought: Text) -> int:
    """Where a string last occurs in another, or -1; an empty string occurs nowhere."""
    return _search("tavsFindRev_8u", text, sought)


def hash31(text: Text) -> int:
    """The hash h = h * 31 + e, modulo 2**32, of the bytes."""
    data, value = _bytes(text), c_uint32()
    _check(library.tavsHashSJ2_8u32u(data, len(data), byref(value)))
    return value.value


def to_utf16(text: bytes) -> bytes:
    """UTF-8 to UTF-16 in the machine's order; malformed bytes pass through as units."""
    units, used, written = (c_uint16 * max(len(text), 1))(), c_uint32(len(text)), c_uint32(len(text))
    _check(library.tavsConvertUTF_8u16u(text, byref(used), units, byref(written), 0))
    return bytes(units)[:2 * written.value]


def to_utf8(units: bytes) -> bytes:
    """UTF-16 in the machine's order to UTF-8."""
    count = len(units) // 2
    source, out = (c_uint16 * max(count, 1))(), (c_uint8 * max(3 * count, 1))()
    ctypes.memmove(source, units, 2 * count)
    used, written = c_uint32(count), c_uint32(3 * count)
    _check(library.tavsConvertUTF_16u8u(source, byref(used), out, byref(written), 0))
    return bytes(out)[:written.value]


def _mapped(name: str, text: str) -> str:
    units = text.encode("utf-16-le", "surrogatepass")
    count = len(units) // 2
    out = (c_uint16 * max(count, 1))()
    ctypes.memmove(out, units, 2 * count)
    _check(getattr(library, name)(out, count))
    return bytes(out)[:2 * count].decode("utf-16-le", "surrogatepass")


def lowercase(text: str) -> str:
    """The simple lower case of each 16-bit unit."""
    return _mapped("tavsLowercase_16u_I", text)


def uppercase(text: str) -> str:
    """The simple upper case of each 16-bit unit."""
    return _mapped("tavsUppercase_16u_I", text)


def compare_ignore_case(a: str, b: str) -> int:
    """Order by the lower case of the units, then by length: below, equal to or above 0."""
    left, right = a.encode("utf-16-le", "surrogatepass"), b.encode("utf-16-le", "surrogatepass")
    common, order = min(len(left), len(right)) // 2, c_int32()
    _check(library.tavsCompareIgnoreCase_16u(left, right, common, byref(order)))
    return order.value or (len(left) > len(right)) - (len(left) < len(right))
