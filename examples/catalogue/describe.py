#!/usr/bin/python3
"""Says of each playlist what is wrong with it and what it declares, as a line of JSON:

    describe.py <LIST >LINES        LIST names playlists, each before a NUL byte

A line has what `velhls check --format jsonl --severity note` says (path, kind, rejected, findings, or failure), and of a
playlist that the models hold: of a master playlist its variants and renditions, of a media playlist its measures.
"""

import json
import os
import posixpath
import sys
from typing import Any
from urllib.parse import unquote, urlsplit

import velhls

MOST_BYTES = 64 << 20  # as the command

Line = dict[str, Any]


def describe(path: str) -> Line:
    try:
        with open(path, "rb") as file:
            text = file.read(MOST_BYTES + 1)
    except OSError as error:
        return {"path": path, "failure": error.strerror}
    if len(text) > MOST_BYTES:
        return {"path": path, "failure": f"more than {MOST_BYTES} bytes"}
    report = velhls.check(text)
    line: Line = {
        "path": path,
        "kind": report.kind or None,
        "rejected": report.rejected.rule if report.rejected else None,
        "findings": [
            {
                "rule": finding.rule,
                "profile": finding.profile,
                "severity": finding.severity,
                "line": finding.line,
                "column": finding.column,
                "message": finding.message,
            }
            for finding in report.findings
        ],
    }
    if not report.rejected:
        playlist = velhls.parse(text)
        line |= of_master(playlist, path) if isinstance(playlist, velhls.MasterPlaylist) else of_media(playlist)
    return line


def of_master(playlist: velhls.MasterPlaylist, path: str) -> Line:
    return {
        "variants": [
            {
                "playlist": place_of(variant.uri, path),
                "bandwidth": variant.bandwidth,
                "average_bandwidth": variant.average_bandwidth,
                "audio": variant.audio,
                "subtitles": variant.subtitles,
                "closed_captions": variant.closed_captions,
            }
            for variant in playlist.variants
        ],
        "renditions": [
            {
                "type": rendition.type,
                "group": rendition.group_id,
                "language": rendition.language,
                "playlist": place_of(rendition.uri, path) if rendition.uri else None,
            }
            for rendition in playlist.renditions
        ],
    }


def of_media(playlist: velhls.MediaPlaylist) -> Line:
    """Bit rates are known where each segment has a byte range, and null elsewhere. The peak is that of one segment."""
    durations = list(playlist.durations)
    lengths = list(playlist.byte_range_lengths)
    known = bool(durations) and min(durations) > 0 and min(lengths) > 0
    return {
        "segments": len(durations),
        "duration": sum(durations),
        "peak_rate": max(8 * length / duration for length, duration in zip(lengths, durations)) if known else None,
        "average_rate": 8 * sum(lengths) / sum(durations) if known else None,
    }


def place_of(uri: str, path: str) -> str:
    """The path of what a URI names, where it is a file beside the playlist; else the URI itself."""
    parts = urlsplit(uri)
    if parts.scheme or parts.netloc:
        return uri
    return posixpath.normpath(posixpath.join(posixpath.dirname(path), unquote(parts.path)))


def written(line: Line) -> bytes:
    """The JSON of a line, in UTF-8: what is not, in a playlist or its name, becomes U+FFFD, as the command writes it."""
    text = json.dumps(line, ensure_ascii=False)
    return text.encode(errors="surrogateescape").decode(errors="replace").encode() + b"\n"


if __name__ == "__main__":
    for name in sys.stdin.buffer.read().split(b"\0")[:-1]:
        sys.stdout.buffer.write(written(describe(os.fsdecode(name))))
