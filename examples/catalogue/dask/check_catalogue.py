#!/usr/bin/python3
"""Checks all playlists below a folder on the workers of a Dask scheduler:

    check_catalogue.py SCHEDULER FOLDER RESULTS [SIZE]

SCHEDULER is its address, or the file that dask-scheduler --scheduler-file writes. RESULTS/parts gets a file of JSON lines for
each SIZE playlists (10000), as describe.py writes them. The workers read and write the files themselves: FOLDER and RESULTS
are storage that all of them share, and the scheduler hands out names alone.

Dask promises that each task is done at least once. A part is there as a whole or not at all, under a name that its list
decides, so what is done twice is there once. A run that was ended is taken up where it was by the same command.
"""

import os
import socket
import sys
from collections.abc import Iterator
from itertools import islice
from pathlib import Path

from distributed import Client, as_completed, get_worker

DESCRIBE = Path(__file__).resolve().parent.parent / "describe.py"
sys.path.insert(0, str(DESCRIBE.parent))
from describe import describe, written  # noqa: E402


def playlists_below(folder: str) -> Iterator[bytes]:
    for place, folders, files in os.walk(os.fsencode(folder)):
        folders.sort()
        for name in sorted(files):
            if name.endswith(b".m3u8"):
                yield os.path.join(place, name)


def make_lists(folder: str, results: Path, size: int) -> None:
    """The lists of the first run hold for all: others would not go with the parts that are there."""
    if (results / "lists").exists():
        return
    new = results / f"lists.{os.getpid()}"
    new.mkdir(parents=True)
    (results / "parts").mkdir(exist_ok=True)
    names = playlists_below(folder)
    number = 0
    while some := list(islice(names, size)):
        (new / f"{number:07}").write_bytes(b"".join(name + b"\0" for name in some))
        number += 1
    new.rename(results / "lists")


def check_list(list_path: str, part: str) -> tuple[str, int, str]:
    """Runs on a worker. Gives the part, how many playlists it has, and who made it, where none is there before."""
    names = Path(list_path).read_bytes().split(b"\0")[:-1]
    if os.path.exists(part):
        return part, len(names), "there before"
    unfinished = f"{part}.{socket.gethostname()}.{os.getpid()}"
    with open(unfinished, "wb") as file:
        for name in names:
            file.write(written(describe(os.fsdecode(name))))
    os.replace(unfinished, part)
    return part, len(names), str(get_worker().name)


def main() -> None:
    scheduler, folder, results = sys.argv[1], os.path.abspath(sys.argv[2]), Path(sys.argv[3]).absolute()
    make_lists(folder, results, int(sys.argv[4]) if len(sys.argv) > 4 else 10000)
    lists = sorted(str(path) for path in (results / "lists").iterdir())
    parts = [str(results / "parts" / f"{os.path.basename(path)}.jsonl") for path in lists]

    where = {"scheduler_file": scheduler} if os.path.exists(scheduler) else {"address": scheduler}
    with Client(**where) as client:
        client.upload_file(str(DESCRIBE))
        total = 0
        # Storage may fail for a moment: a task that raises is tried again.
        for future, (part, count, worker) in as_completed(
            client.map(check_list, lists, parts, pure=False, retries=2), with_results=True
        ):
            total += count
            print(os.path.basename(part), count, worker, flush=True)
            future.release()
        print(f"{total} playlists in {len(parts)} parts")


if __name__ == "__main__":
    main()
