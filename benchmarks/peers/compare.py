"""Runs velhls and its peers on the same playlists and prints one table. See benchmarks/peers/run."""

import argparse
import json
import subprocess
import sys
from pathlib import Path

from benchmarks.measuring import PROGRAMS, ROOT, machine, machine_line, markdown_table, output_of, record

HERE = Path(__file__).resolve().parent
FOLDER = ROOT / "build" / "peers"
SECONDS_ALLOWED = 60

# The playlists, and the segments or variants (I-frame ones too) in each.
INPUTS = {"vod": 100000, "rich": 100000, "live": 6, "master-small": 16, "master-large": 10000}
OURS = "velhls"
NPM_PEERS = ["m3u8-parser", "hls-parser", "hls.js", "m3u8-file-parser"]
DEBIAN_PEER = "python3-m3u8"
PEERS = [OURS, *NPM_PEERS, DEBIAN_PEER]
WRITERS = [OURS, "hls-parser", DEBIAN_PEER]


def command(peer, playlist, work):
    file = FOLDER / "inputs" / f"{playlist}.m3u8"
    if peer == OURS:
        return [PROGRAMS / "velhls_peer", file, work]
    if peer == DEBIAN_PEER:  # only Debian's own interpreter sees Debian's modules
        return ["/usr/bin/python3", HERE / "peer.py", file, work]
    return ["node", HERE / "peer.mjs", FOLDER, peer, file, work]


def version(peer):
    if peer == DEBIAN_PEER:
        return output_of("dpkg-query", "--show", "--showformat=${Version}", peer)
    return json.loads((FOLDER / "node_modules" / peer / "package.json").read_text())["version"]


def run(peer, playlist, work):
    """What the peer's process says of itself, or None where it takes too long."""
    try:
        return json.loads(output_of(*command(peer, playlist, work), timeout=SECONDS_ALLOWED))
    except subprocess.TimeoutExpired:
        return None


def measure(processes):
    """All runs by work, playlist and peer: in each round every peer has its turn."""
    runs = {}
    for work, peers in [("parse", PEERS), ("write", WRITERS)]:
        for playlist in INPUTS:
            print(f"== {work} {playlist}", file=sys.stderr)
            of_peers = runs.setdefault(work, {}).setdefault(playlist, {peer: [] for peer in peers})
            for _ in range(processes):
                for peer in peers:
                    if None not in of_peers[peer]:
                        of_peers[peer].append(run(peer, playlist, work))
    return runs


def three_digits(number):
    return f"{number:.3g}" if number < 100 else f"{number:.0f}"


def readable(seconds):
    for unit, of_a_second in [("s", 1), ("ms", 1e-3)]:
        if seconds >= of_a_second:
            return f"{three_digits(seconds / of_a_second)} {unit}"
    return f"{three_digits(seconds * 1e6)} µs"


def least(runs, figure):
    return min(run[figure] for run in runs)


def cell(of_peers, peer, figure, items):
    """The time of a peer and how many times ours it is."""
    runs = of_peers[peer]
    if None in runs:
        return f"over {SECONDS_ALLOWED} s"
    seconds = least(runs, figure)
    if peer == OURS:
        return readable(seconds)
    lost = "" if runs[0]["items"] == items else f" ({runs[0]['items']} of {items} read)"
    return f"{readable(seconds)}, {three_digits(seconds / least(of_peers[OURS], figure))} ×{lost}"


def table(runs, versions):
    def row(title, work, peer, figure):
        return [f"{title}: {peer} {versions.get(peer, '')}".strip()] + [
            cell(of_peers, peer, figure, INPUTS[playlist]) for playlist, of_peers in runs[work].items()]

    return markdown_table(["", *INPUTS], [
        *[row("parse", "parse", peer, "seconds") for peer in PEERS],
        row("parse and free", "parse", OURS, "with_freeing"),
        *[row("write", "write", peer, "seconds") for peer in WRITERS],
        *[row("first parse", "parse", peer, "first") for peer in PEERS],
    ])


def main():
    parser = argparse.ArgumentParser(prog="benchmarks/peers/run")
    parser.add_argument("--processes", type=int, default=9, metavar="N", help="fresh processes for every figure (9)")
    parser.add_argument("--json", metavar="FILE", type=Path, help="keep all that was measured")
    parser.add_argument("--record", action="store_true", help="write the table into docs/performance.md")
    options = parser.parse_args()

    here = machine() | {"node": output_of("node", "--version").strip(),
                        "python": output_of("/usr/bin/python3", "--version").strip()}
    versions = {peer: version(peer) for peer in [*NPM_PEERS, DEBIAN_PEER]}
    runs = measure(options.processes)
    if options.json:
        options.json.write_text(json.dumps({"machine": here, "versions": versions, "runs": runs}, indent=2) + "\n")
    report = (f"{machine_line(here)}, node {here['node']}, {here['python']}; "
              f"the least of {options.processes} processes.\n\n{table(runs, versions)}")
    print(report)
    if options.record:
        record("docs/performance.md", "peers", report)


if __name__ == "__main__":
    main()
