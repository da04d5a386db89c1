"""Compares the instructions of every parse and render with the committed figures. See benchmarks/instructions."""

import argparse
import json
import platform
from pathlib import Path

from benchmarks.measuring import (ROOT, c_library, compiler, instructions_of_all, is_a_million, markdown_table,
                                  output_of, work_names)

FIGURES = ROOT / "benchmarks" / "instructions.json"
MOST_DEARER = 0.03

# What a work takes at most, however it got there: figures that are renewed must not creep beyond it.
AT_MOST = {
    "parse/master-small": 16 * 5_800,
    "parse/master-large/10000": 10_000 * 2_500,
    "parse/pattern/100000": 100_000 * 1_300,
    "parse/vod/100000": 100_000 * 900,
    "render/vod/100000": 100_000 * 600,
    "render/rich/100000": 100_000 * 1_150,
    "render/master-large/10000": 10_000 * 1_000,
}


def architecture():
    """The C library copies memory with AVX2 where there is such a thing."""
    flags = Path("/proc/cpuinfo").read_text().split()
    return platform.machine() + (" with AVX2" if "avx2" in flags else "")


def circumstances():
    """What the figures depend on beside the library's own code."""
    return {
        "architecture": architecture(),
        "compiler": compiler(),
        "c_library": c_library(),
        "valgrind": output_of("valgrind", "--version").strip(),
    }


def count():
    works = [name for name in work_names() if not is_a_million(name)]
    return dict(zip(works, instructions_of_all([[name] for name in works])))


def compare(counted, committed):
    """Prints the table. Returns the works that are dearer than before, and those that only one side has."""
    rows, failures = [], sorted(committed.keys() - counted.keys())
    for name, now in counted.items():
        before = committed.get(name)
        change = None if before is None else now / before - 1
        if change is None or change > MOST_DEARER:
            failures.append(name)
        rows.append([name, f"{now:,}", "none" if before is None else f"{before:,}",
                     "" if change is None else f"{change:+.2%}"])
    print(markdown_table(["work", "instructions", "committed", "change"], rows))
    return failures


def main():
    parser = argparse.ArgumentParser(prog="benchmarks/instructions")
    parser.add_argument("--renew", action="store_true", help="write what was counted into benchmarks/instructions.json")
    renew = parser.parse_args().renew

    figures = json.loads(FIGURES.read_text()) if FIGURES.exists() else {"circumstances": {}, "instructions": {}}
    here, counted = circumstances(), count()
    failures = compare(counted, figures["instructions"])
    beyond = [name for name, most in AT_MOST.items() if counted[name] > most]
    if beyond and here == figures["circumstances"]:
        raise SystemExit("error: beyond what a work may take at most: " + ", ".join(beyond))
    if renew:
        FIGURES.write_text(json.dumps({"circumstances": here, "instructions": counted}, indent=2) + "\n")
        print(f"renewed {FIGURES.relative_to(ROOT)}")
    elif here != figures["circumstances"]:
        print(f"not compared: the figures are for {figures['circumstances']}, and this is {here}")
    elif failures:
        raise SystemExit("error: more than 3% dearer, or not on both sides: " + ", ".join(failures) +
                         "\nMake it cheaper, or commit what benchmarks/instructions --renew writes and say why.")


if __name__ == "__main__":
    main()
