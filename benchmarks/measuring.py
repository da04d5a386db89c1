"""What the scripts that measure share: counting instructions, naming the machine, printing tables."""

import os
import platform
import re
import shutil
import subprocess
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PROGRAMS = ROOT / "build" / "benchmarks" / "benchmarks"


def output_of(*command, **options):
    """What a command prints; the script ends with what it says when it fails."""
    words = [str(word) for word in command]
    run = subprocess.run(words, capture_output=True, text=True, **options)
    if run.returncode != 0:
        raise SystemExit(f"error: {' '.join(words)} failed with {run.returncode}:\n{run.stderr}")
    return run.stdout


def work_names():
    return output_of(PROGRAMS / "velhls_run_once").split()


def is_a_million(name):
    return name.endswith("/1000000")


def instructions(arguments):
    """What callgrind counts in one run of a work: repeatable, whatever else the machine does.

    The environment is as good as empty, because its size shifts the stack, and names are bound at the start, because
    the dynamic linker's work is not the library's.
    """
    counting = ["--tool=callgrind", "--callgrind-out-file=/dev/null", "--toggle-collect=measuredRun"]
    run = subprocess.run(
        [shutil.which("valgrind"), *counting, PROGRAMS / "velhls_run_once", *arguments],
        env={"LD_BIND_NOW": "1"}, capture_output=True, text=True)
    counted = re.search(r"Collected : (\d+)", run.stderr)
    if run.returncode != 0 or counted is None:
        raise SystemExit(f"error: callgrind cannot count {' '.join(arguments)}:\n{run.stderr}")
    return int(counted.group(1))


def instructions_of_all(works):
    """Counts for a list of arguments of velhls_run_once, as many at a time as there are cores."""
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(instructions, works))


def compiler():
    return "g++ " + output_of("g++", "-dumpfullversion").strip()


def c_library():
    return os.confstr("CS_GNU_LIBC_VERSION")


def machine():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    return {
        "date": time.strftime("%Y-%m-%d"),
        "processor": model.group(1) if model else platform.machine(),
        "cores": os.cpu_count(),
        "compiler": compiler(),
        "c_library": c_library(),
        "kernel": platform.system() + " " + platform.release(),
    }


def machine_line(described):
    return (f"{described['date']}, {described['processor']}, {described['cores']} cores, "
            f"{described['kernel'].split('-')[0]}, {described['compiler']} in release mode, {described['c_library']}")


def markdown_table(head, rows):
    """A Markdown table that is also good to read as text: the first column to the left, numbers to the right."""
    widths = [max(len(row[column]) for row in [head, *rows]) for column in range(len(head))]

    def line(cells):
        return "| " + " | ".join(
            cell.rjust(width) if column else cell.ljust(width)
            for column, (cell, width) in enumerate(zip(cells, widths))) + " |"

    ruler = "|" + "|".join(
        "-" * (width + 1) + ":" if column else "-" * (width + 2) for column, width in enumerate(widths)) + "|"
    return "\n".join([line(head), ruler, *map(line, rows)])


def record(file, name, text):
    """Puts text between the two comments in a file that hold the place of a recorded result."""
    path = ROOT / file
    begin, end = f"<!-- {name}: begin -->", f"<!-- {name}: end -->"
    before, found_begin, rest = path.read_text().partition(begin)
    _, found_end, after = rest.partition(end)
    if not (found_begin and found_end):
        raise SystemExit(f"error: {file} has no place for {name}")
    path.write_text(f"{before}{begin}\n\n{text}\n\n{end}{after}")
    print(f"recorded in {file}")
