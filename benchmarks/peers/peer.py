"""Times Debian's python3-m3u8 on one playlist.

    peer.py FILE parse|write

prints what velhls_peer.cpp prints.
"""

import json
import statistics
import sys
import time
from pathlib import Path

import m3u8

SECONDS_OF_RUNS = 0.7
TOO_LONG_TO_REPEAT = 5


def warm_seconds(run):
    runs = []
    begin = time.perf_counter()
    while not runs or time.perf_counter() - begin < SECONDS_OF_RUNS:
        start = time.perf_counter()
        result = run()
        runs.append(time.perf_counter() - start)
        del result
    return statistics.median(runs[len(runs) // 3:])


file, work = sys.argv[1:]
text = Path(file).read_text()
start = time.perf_counter()
playlist = m3u8.loads(text)
first = time.perf_counter() - start
items = len(playlist.segments) + len(playlist.playlists) + len(playlist.iframe_playlists)
if work == "write":
    seconds = warm_seconds(playlist.dumps)
else:
    seconds = first if first > TOO_LONG_TO_REPEAT else warm_seconds(lambda: m3u8.loads(text))
print(json.dumps({"items": items, "first": first, "seconds": seconds}))
