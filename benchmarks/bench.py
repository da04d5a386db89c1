"""Measures the library beside its floors and prints one table. See benchmarks/bench and docs/performance.md."""

import argparse
import json
import statistics
import sys
from pathlib import Path

from benchmarks.measuring import (PROGRAMS, instructions_of_all, is_a_million, machine, machine_line, markdown_table,
                                  output_of, record, work_names)

COLD_WORK = "parse/vod/1000000"
COLD_PAIRS = 25

# What we aim at: the time of a work over that of its floor, at most.
AIMS = {
    "parse/vod/100000": 0.85,
    "parse/vod-long-uris/100000": 1.0,
    "parse/rich/100000": 1.7,
    "parse/live": 1.3,
    "parse/pattern/100000": 1.3,
    "parse/master-small": 8.5,
    "parse/master-large/10000": 6.5,
    "render/vod/100000": 1.0,
    "render/rich/100000": 1.2,
    "render/master-large/10000": 4.0,
    "write/vod/100000": 1.1,
    "write/rich/100000": 1.1,
    "lines/vod/1000000": 1.5,
    "lines/rich/1000000": 1.5,
    "document/vod/1000000": 3.0,
    "document/rich/1000000": 3.0,
    "check/vod/100000": 4.0,
    "check/rich/100000": 4.0,
    "check/rich-short/1000": 6.0,
    "check/master-small": 4.0,
    "check/master-large/10000": 4.0,
}


def progress(what):
    print("== " + what, file=sys.stderr)


def timed(quick):
    """Google Benchmark's own result: WARM, each work beside its floor."""
    only = ["--benchmark_filter=-(1000000|growth)"] if quick else []
    return json.loads(output_of(PROGRAMS / "velhls_benchmarks", "--benchmark_format=json", *only))


def counted_instructions(names):
    """Of each work and of its floor."""
    runs = [[name, *floor] for name in names for floor in ([], ["floor"])]
    counts = iter(instructions_of_all(runs))
    return {name: {"work": next(counts), "floor": next(counts)} for name in names}


def bytes_of_each_item(names):
    def measured(name):
        held, most = output_of(PROGRAMS / "velhls_memory", name).split()
        return {"held": float(held), "most": float(most)}

    return {name: measured(name) for name in names}


def cold_pairs():
    """Nanoseconds of work and floor in fresh processes, in turn."""
    def nanoseconds(*arguments):
        return int(output_of(PROGRAMS / "velhls_run_once", COLD_WORK, *arguments))

    return [{"floor": nanoseconds("floor"), "work": nanoseconds()} for _ in range(COLD_PAIRS)]


def measure(quick):
    names = [name for name in work_names() if not (quick and is_a_million(name))]
    result = {"machine": machine()}
    progress("timing")
    result["timed"] = timed(quick)
    if not quick:
        progress("timing cold starts")
        result["cold"] = {COLD_WORK: cold_pairs()}
    progress("counting instructions")
    result["instructions"] = counted_instructions(names)
    progress("counting bytes")
    result["bytes"] = bytes_of_each_item(names)
    return result


def timings(result):
    """Google Benchmark's entries by the name that we gave them ("parse/live/iterations:31/manual_time")."""
    return {entry["name"].split("/iterations:")[0]: entry for entry in result["timed"]["benchmarks"]}


def work_row(name, timing, instructions, held):
    items = timing["items"]
    return [
        name,
        f"{timing['ns_per_item']:.1f}",
        f"{timing['MB_per_second']:,.0f}" if timing["MB_per_second"] > 1 else "",
        f"{timing['ratio']:.2f} {timing['label']}",
        f"{instructions['work'] / instructions['floor']:.2f} {timing['label']}",
        f"{AIMS[name]}" if name in AIMS else "",
        f"{instructions['work'] / items:,.0f}",
        f"{held['held']:,.0f}",
        f"{held['most']:,.0f}",
    ]


def works_table(result):
    timed_by_name = timings(result)
    rows = [work_row(name, timed_by_name[name], result["instructions"][name], result["bytes"][name])
            for name in result["instructions"]]
    return markdown_table(["input", "ns", "MB/s", "time / floor", "instructions / floor", "aim", "instructions",
                           "bytes held", "bytes at most"], rows)


def others_table(result):
    timed_by_name = timings(result)
    rows = [["two threads with a playlist each, over one thread with both",
             f"{timed_by_name['parse/two-threads']['ratio']:.2f}", "at least 1.90"]]
    if "parse/growth" in timed_by_name:
        rows.append(["time of a segment of 1,000,000, over one of 100,000",
                     f"{timed_by_name['parse/growth']['ratio']:.2f}", "at most 1.15"])
    if "cold" in result:
        ratio = statistics.median(pair["work"] / pair["floor"] for pair in result["cold"][COLD_WORK])
        rows.append([f"COLD {COLD_WORK}, over O", f"{ratio:.2f}", "at most 1.00"])
    if COLD_WORK in result["bytes"]:
        rows.append([f"bytes held by a segment of {COLD_WORK}", f"{result['bytes'][COLD_WORK]['held']:.0f}",
                     "at most 300"])
    return markdown_table(["whole", "measured", "aim"], rows)


def main():
    parser = argparse.ArgumentParser(prog="benchmarks/bench")
    parser.add_argument("--quick", action="store_true", help="leave out the million of segments")
    parser.add_argument("--json", metavar="FILE", type=Path, help="keep all that was measured")
    parser.add_argument("--record", action="store_true", help="write the table into docs/performance.md")
    options = parser.parse_args()
    if options.quick and options.record:
        parser.error("--record needs all of it, without --quick")

    result = measure(options.quick)
    if options.json:
        options.json.write_text(json.dumps(result, indent=2) + "\n")
    report = "\n\n".join([machine_line(result["machine"]), works_table(result), others_table(result)])
    print(report)
    if options.record:
        record("docs/performance.md", "result", report)


if __name__ == "__main__":
    main()
