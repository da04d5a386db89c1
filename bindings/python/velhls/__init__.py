"""HTTP Live Streaming playlists (RFC 8216): parse, check, mend, compare, edit and write them.

    >>> import velhls
    >>> playlist = velhls.parse("#EXTM3U\\n#EXTINF:6,\\nsegment1.ts\\n")
    >>> [(segment.uri, segment.duration) for segment in playlist.segments]
    [('segment1.ts', 6.0)]

Texts are str or bytes. Bytes that are not UTF-8 become lone surrogates in a str (PEP 383), and are written as they were when
it is encoded with errors="surrogateescape". URIs are not resolved, and nothing is fetched.
"""
import os as _os
from collections.abc import Sequence as _Sequence

from . import _velhls
from ._velhls import (
    Attribute,
    ByteRange,
    Change,
    Comparison,
    Document,
    DoneFix,
    Edit,
    Finding,
    Fix,
    Key,
    Line,
    Map,
    MasterPlaylist,
    MediaPlaylist,
    Mended,
    Reason,
    RelatedPlace,
    Rendition,
    Report,
    Segment,
    SessionData,
    Uri,
    Variant,
)

__all__ = [
    "Attribute",
    "ByteRange",
    "Change",
    "Comparison",
    "Document",
    "DoneFix",
    "Edit",
    "Finding",
    "Fix",
    "Key",
    "Line",
    "Map",
    "MasterPlaylist",
    "MediaPlaylist",
    "Mended",
    "PlaylistError",
    "Reason",
    "RelatedPlace",
    "Rendition",
    "Report",
    "Segment",
    "SessionData",
    "Uri",
    "Variant",
    "check",
    "compare",
    "fix",
    "parse",
    "version",
]

version: str = _velhls.version


class PlaylistError(ValueError):
    """A playlist was rejected: `reason` says why and where, and `findings` all that the library has against it."""

    def __init__(self, reason, text):
        super().__init__(f"line {reason.line}: {reason.message}")
        self.reason = reason
        self._text = text

    @property
    def findings(self):
        """What the profile "library" finds in the text, a list: reasons to reject it, what would be lost, and what mends it."""
        return check(self._text, profiles=("library",), fixes=True).findings


def _text_of(source):
    """The text, or the bytes of the file that a path names."""
    if isinstance(source, _os.PathLike):
        with open(source, "rb") as file:
            return file.read()
    return source


def parse(source, kind=""):
    """The MasterPlaylist or MediaPlaylist of a text (str or bytes) or of a file (a path).

    What it is its tags tell, unless `kind` says "master" or "media". Raises PlaylistError when it is rejected.
    """
    text = _text_of(source)
    parsed = _velhls.parse_text(text, kind)
    if isinstance(parsed, Reason):
        raise PlaylistError(parsed, text)
    return parsed


def _names_of(profiles):
    """The profiles as a list: one may stand by itself."""
    return [profiles] if isinstance(profiles, str) else list(profiles)


def check(source, profiles=("rfc8216",), kind="", fixes=False):
    """The Report of a text or a file by the rules of the profiles: "rfc8216", "rfc8216bis", "apple" and "library".

    With `fixes` its findings have theirs.
    """
    return _velhls.check_text(_text_of(source), _names_of(profiles), kind, fixes)


def fix(source, profiles=("rfc8216",), kind="", lossy=False, guess=False):
    """What the profiles find in a text or a file, mended: a Mended with the whole text, what was done and what is left.

    Fixes that mean the same are taken; with `lossy` also those that take something away, and with `guess` those that say
    something that may be wrong. No other byte changes, and no file. The profile "library" makes what `parse` rejects acceptable.
    """
    return _velhls.fix_text(_text_of(source), _names_of(profiles), kind, lossy, guess)


def compare(old, new, elapsed=None):
    """The Comparison of two versions, texts or files: what changed, and what of it RFC 8216 forbids.

    `elapsed` is the time between them in seconds, if it is known. Raises ValueError when they are of different kinds.
    """
    return _velhls.compare_texts(_text_of(old), _text_of(new), elapsed)


def _define_record(record, names):
    """Gives a class whose objects are their fields: keyword arguments, ==, repr() and pickling."""
    original = record.__init__

    def __init__(self, **fields):
        original(self)
        for name, value in fields.items():
            if name not in names:
                raise TypeError(f"{record.__name__} has no field {name!r}")
            setattr(self, name, value)

    def __eq__(self, other):
        if not isinstance(other, record):
            return NotImplemented
        return all(getattr(self, name) == getattr(other, name) for name in names)

    def __repr__(self):
        empty = record()
        shown = [
            f"{name}={getattr(self, name)!r}" for name in names if getattr(self, name) != getattr(empty, name)
        ]
        return f"{record.__name__}({', '.join(shown)})"

    def __reduce__(self):
        state = {}
        for name in names:
            value = getattr(self, name)
            state[name] = list(value) if isinstance(value, _Sequence) and not isinstance(value, str) else value
        return _made, (record, state)

    record.__init__ = __init__
    record.__eq__ = __eq__
    record.__repr__ = __repr__
    record.__reduce__ = __reduce__
    record.__hash__ = None


def _made(record, state):
    """A record of its pickled fields."""
    return record(**state)


def _define_iteration(playlist, name):
    """A playlist is iterated as its list of this name."""

    def __iter__(self):
        return iter(getattr(self, name))

    playlist.__iter__ = __iter__


def _define_repr(found, names):
    """Shows an object that is only read by some of its properties."""

    def __repr__(self):
        return f"{found.__name__}({', '.join(f'{name}={getattr(self, name)!r}' for name in names)})"

    found.__repr__ = __repr__


def _fields(record):
    """The properties of a class that can be set, in the order in which they were defined."""
    return tuple(name for name, value in vars(record).items() if isinstance(value, property) and value.fset)


for _record in (ByteRange, Key, Map, Segment, MediaPlaylist, Variant, Rendition, SessionData, MasterPlaylist):
    _define_record(_record, _fields(_record))
del _record
_define_repr(Finding, ("severity", "rule", "line", "column", "message"))
_define_repr(RelatedPlace, ("uri", "line", "column", "message"))
_define_repr(Fix, ("fix_class", "sentence"))
_define_repr(DoneFix, ("rule", "fix_class", "sentence", "line"))
_define_repr(Reason, ("rule", "line", "column", "message"))
_define_repr(Change, ("kind", "path", "what", "old_text", "new_text"))
_define_repr(Line, ("number", "kind", "text"))
_define_repr(Attribute, ("name", "value"))
_define_repr(Uri, ("line", "text", "attribute"))
_define_repr(Edit, ("offset", "length", "replacement"))
_define_iteration(MediaPlaylist, "segments")
_define_iteration(MasterPlaylist, "variants")
