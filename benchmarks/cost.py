"""Compares what an input costs with what it costs in twice its size. See benchmarks/cost."""

import argparse
import collections
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

from benchmarks.measuring import PROGRAMS, ROOT, markdown_table, output_of, record

PAGE = "docs/contributing/hostile-inputs.md"
PLACE = "cost"
WORKS = ["parse", "render", "write", "check", "document"]

# Twice the input may take this many times the instructions. With n log n it would be 2.2 for our sizes, from 1,024
# records to 2,048; the square would be 4.
MOST_GROWTH = 2.3
# The most bytes held while a work runs, for each byte of the text and of what comes out of it together: the model, the
# text that is written, and of a check what the parse of the text makes; of a document the text alone. As in tests/heap/PeakMemory_test.cpp.
MOST_BYTES = {"parse": 24.0, "render": 2.5, "write": 3.0, "check": 32.0, "document": 25.0}

# Nothing is looked up while a work runs. Copies from some KiB on would be one instruction of the processor, which valgrind counts
# once for each byte: a text that is just long enough would seem to take far more than half of it.
ENVIRONMENT = {"LD_BIND_NOW": "1", "GLIBC_TUNABLES": "glibc.cpu.x86_rep_movsb_threshold=0x7fffffffffff"}


def is_kept(figure, documented, is_growth):
    """Within the bounds above the figures may move a little before the table is out of date."""
    return figure <= (documented + 0.15 if is_growth else 1.25 * documented + 0.5)


class Run:
    """One work on one input in one size."""

    def __init__(self, fields):
        self.input, self.kind, self.work = fields[:3]
        self.size = int(fields[3])
        self.counts = [int(field) for field in fields[4:]]


def runs_of(output):
    return [Run(line.split("\t")) for line in output.splitlines()]


def instructions_in(dump):
    found = re.search(r"^(?:summary|totals): (\d+)", dump.read_text(), flags=re.M)
    if found is None:
        raise SystemExit(f"error: callgrind counted nothing in {dump.name}")
    return int(found.group(1))


def counted_runs():
    """All runs in one process, since callgrind takes longer to start than to count most of them."""
    with tempfile.TemporaryDirectory() as folder:
        dumps = Path(folder) / "dump"
        output = output_of(shutil.which("valgrind"), "--tool=callgrind", "--quiet", f"--callgrind-out-file={dumps}",
                           "--toggle-collect=measuredRun", "--dump-after=measuredRun", PROGRAMS / "velhls_cost",
                           env=ENVIRONMENT)
        runs = runs_of(output)
        for number, run in enumerate(runs, start=1):
            run.counts = [instructions_in(Path(f"{dumps}.{number}"))]
    return runs


def measure():
    """For each input and kind, and for each of its works: the growth, and the bytes held at most."""
    measured = collections.defaultdict(dict)
    pairs = collections.defaultdict(list)
    for run in counted_runs():
        pairs[run.input, run.kind, run.work].append(run)
    for (name, kind, work), (small, large) in pairs.items():
        measured[name, kind][work] = [large.counts[0] / small.counts[0]]
    for (name, kind, work), multiple in most_bytes().items():
        measured[name, kind][work].append(multiple)
    return measured


def most_bytes():
    """The larger one of the two sizes' multiples."""
    multiples, model = {}, 0
    for run in runs_of(output_of(PROGRAMS / "velhls_cost_bytes")):
        held, most = run.counts
        if run.work == "parse":
            model = held
        result = {"check": model, "document": 0}.get(run.work, held)
        whole = run.size + result
        key = run.input, run.kind, run.work
        if run.input != "control":
            multiples[key] = max(multiples.get(key, 0), most / whole)
    return multiples


def expect_control_to_be_noticed(measured):
    (seen,) = measured.pop(("control", "master"))["parse"]
    if seen < 1.5 * MOST_GROWTH:
        raise SystemExit(f"error: work that grows with the square was measured as {seen:.2f}, and would not be noticed")


def failures_of_input(name, kind, works, documented):
    """`documented` has the growth of each work, then the bytes of each."""
    for index, figures in enumerate([documented[:len(WORKS)], documented[len(WORKS):]]):
        unit = ["times the instructions for twice the input", "bytes held for each byte"][index]
        for work, said in zip(WORKS, figures):
            figure = works.get(work, [0, 0])[index]
            most = [MOST_GROWTH, MOST_BYTES[work]][index]
            if figure > most:
                yield f"{work} of {name} ({kind}): {figure:.2f} {unit}, more than {most}"
            elif not is_kept(figure, said, index == 0):
                yield f"{work} of {name} ({kind}): {figure:.2f} {unit}, and {PAGE} says {said:.2f}"


def failures_of(measured, documented):
    failures = []
    for (name, kind), works in measured.items():
        if (name, kind) in documented:
            failures += failures_of_input(name, kind, works, documented[name, kind])
    failures += [f"{PAGE} has no row for {name} ({kind})" for name, kind in measured.keys() - documented.keys()]
    failures += [f"{PAGE} has a row for {name} ({kind})" for name, kind in documented.keys() - measured.keys()]
    return failures


def documented_figures():
    """The rows of the table: the input and the kind, then the figures, 0 for a work that is not done."""
    _, _, rest = (ROOT / PAGE).read_text().partition(f"<!-- {PLACE}: begin -->")
    rows = {}
    for line in rest.partition(f"<!-- {PLACE}: end -->")[0].splitlines():
        cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
        if len(cells) == 2 + 2 * len(WORKS) and cells[1] in ("master", "media"):
            rows[cells[0].strip("`"), cells[1]] = [float(cell or 0) for cell in cells[2:]]
    return rows


def table(measured):
    def figure(works, work, index):
        return f"{works[work][index]:.2f}" if work in works else ""

    head = ["input", "kind", *(f"{work} ×" for work in WORKS), *(f"{work} bytes" for work in WORKS)]
    rows = [[f"`{name}`", kind, *(figure(works, work, index) for index in (0, 1) for work in WORKS)]
            for (name, kind), works in measured.items()]
    return markdown_table(head, rows)


def main():
    parser = argparse.ArgumentParser(prog="benchmarks/cost")
    parser.add_argument("--renew", action="store_true", help=f"write what was measured into {PAGE}")
    renew = parser.parse_args().renew

    measured = measure()
    expect_control_to_be_noticed(measured)
    if renew:
        record(PAGE, PLACE, table(measured))
    failures = failures_of(measured, documented_figures())
    for work in WORKS:
        for index, what in ((0, "times the instructions for twice the input"), (1, "bytes held for each byte")):
            worst, key = max((works[work][index], key) for key, works in measured.items() if work in works)
            print(f"{work}: at most {worst:.2f} {what} ({key[0]}, {key[1]})")
    if failures:
        raise SystemExit("error: " + "\n".join(failures) + "\nMake it cheaper, or commit what benchmarks/cost --renew writes.")


if __name__ == "__main__":
    main()
