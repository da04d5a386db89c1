"""Breaks the library's sources in many places, one at a time, and looks whether a test notices. See scripts/mutate."""

import argparse
import collections
import concurrent.futures
import difflib
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import threading

from mutations import mutations_of

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = REPOSITORY / "build" / "mutation"
LIBRARIES = ["libvelhls", "libvelhls-check"]
PROGRAMS_OF_LIBRARIES = ["velhls_tests", "velhls_check_tests"]
EQUIVALENTS = pathlib.Path(__file__).with_name("equivalent.txt")
# A mutant may run, allocate or write for ever; time that others take from it does not count.
MOST_SECONDS = 60
MOST_SECONDS_BY_THE_CLOCK = 900
MOST_MEMORY = 6 << 30
# A test that takes longer runs after the others, since most mutants are killed by those.
SLOW_MILLISECONDS = 60
# So many of the tests that killed most run first.
USUAL_KILLERS = 40
# A header that so many sources include is costly to break.
MANY_SOURCES = 10

# One broken source: the file, the lines that were changed as they are and as they become, and which of several equal
# changes of that file it is.
Mutant = collections.namedtuple("Mutant", "file before after occurrence line text")


def name_of(mutant):
    return f"{mutant.file}\n- {mutant.before}\n+ {mutant.after}\n{mutant.occurrence}"


def mutants_of(file):
    text = (REPOSITORY / file).read_text()
    seen = collections.Counter()
    for mutation in mutations_of(text):
        start = text.rfind("\n", 0, mutation.start) + 1
        end = text.find("\n", mutation.end)
        before = text[start:end]
        after = text[start:mutation.start] + mutation.replacement + text[mutation.end:end]
        shown = tuple(" ".join(lines.split()) for lines in (before, after))
        seen[shown] += 1
        broken = text[:mutation.start] + mutation.replacement + text[mutation.end:]
        yield Mutant(file, *shown, seen[shown], text.count("\n", 0, mutation.start) + 1, broken)


def rank(mutant, seed):
    """A number that stays when the rest of the sources changes, so that a sample does too."""
    return hashlib.sha256(f"{seed}\n{name_of(mutant)}".encode()).hexdigest()


def sample(mutants_by_file, part, seed, dependants):
    """Such a part of the mutants of every file, and at least three where there are so many."""
    chosen = []
    for file, mutants in mutants_by_file.items():
        share = max(3, round(part * len(mutants)))
        if file.endswith(".h") and len(dependants[file]) > MANY_SOURCES:
            share = min(share, 3)
        chosen += sorted(mutants, key=lambda mutant: rank(mutant, seed))[:share]
    return chosen


def read_equivalents():
    """{(file, before, after): reason}"""
    entries, current = {}, []
    for line in EQUIVALENTS.read_text().splitlines():
        if line.startswith("#") or not line:
            continue
        kind, text = line.split(" ", 1) if line[0] in "-+=" else ("file", line)
        if kind == "file":
            current = [text]
        elif kind == "-":
            current = [current[0], text]
        elif kind == "+":
            current = [*current[:2], text]
        else:
            entries[tuple(current)] = text
    return entries


class Build:
    """The unbroken build, and how one source and the library are made anew."""

    def __init__(self):
        commands = json.loads((BUILD / "compile_commands.json").read_text())
        self.compile = {os.path.relpath(entry["file"], REPOSITORY): entry
                        for entry in commands if re.search(r"/velhls(_check)?\.dir/", entry["command"])}
        self.compile_test = {os.path.relpath(entry["file"], REPOSITORY): entry for entry in commands
                             if re.search(r"/velhls(_check)?_tests\.dir/", entry["command"])
                             and entry["file"].endswith("_test.cpp")}
        self.link = {library: self._link_command(f"velhls/{library}.so", "-shared") for library in LIBRARIES}
        self.link_tests = {program: self._link_command(f"tests/{program}", f"-o tests/{program}")
                           for program in PROGRAMS_OF_LIBRARIES}
        self.sources_of = self._sources_of_headers()

    @staticmethod
    def _ninja(*arguments):
        return subprocess.run(["ninja", "-C", BUILD, *arguments], check=True, capture_output=True, text=True).stdout

    def _link_command(self, target, mark):
        """The one of the commands that link it; others may follow on the same line."""
        lines = self._ninja("-t", "commands", target).splitlines()
        return [command for line in lines for command in line.split(" && ") if mark in command][-1]

    def _sources_of_headers(self):
        """{header: the libraries' sources that include it}"""
        sources = collections.defaultdict(set)
        source = None
        for line in self._ninja("-t", "deps").splitlines():
            found = re.match(r"velhls/CMakeFiles/velhls(?:_check)?\.dir/(\S+)\.o: ", line)
            if found:
                source = "velhls/" + found.group(1)
            elif not line.startswith(" "):
                source = None
            elif source:
                included = os.path.relpath(os.path.join(BUILD, line.strip()), REPOSITORY)
                sources[included].add(source)
        return sources

    @staticmethod
    def _compile(entry, folder, made, source=None):
        """Whether the source could be compiled, with the broken header before all others."""
        arguments = shlex.split(entry["command"])
        arguments[arguments.index("-o") + 1] = str(made)
        arguments[-1] = str(source or entry["file"])
        arguments[1:1] = ["-w", f"-I{folder}"]
        return subprocess.run(arguments, cwd=entry["directory"], capture_output=True).returncode == 0

    def _tests_near(self, header):
        """The tests named after the class of a public header, or else after the class with the nearest name."""
        near = [test for test in self.compile_test if pathlib.Path(test).stem.startswith(pathlib.Path(header).stem + "_")]
        return near or difflib.get_close_matches(header.replace("velhls/", "tests/").replace(".h", "_test.cpp"),
                                                 self.compile_test, 1, 0)

    def _make_own_tests(self, mutant, folder, library):
        """Makes own_tests beside the library: what a public header's inline code and initial values do shows in its users."""
        objects, program = [], ""
        for number, test in enumerate(self._tests_near(mutant.file)):
            program = re.search(r"/(\w+)\.dir/", self.compile_test[test]["command"]).group(1)
            objects.append(f"{folder}/test{number}.o")
            if not self._compile(self.compile_test[test], folder, objects[-1]):
                return
        link = re.sub(r"(\S+_test\.cpp\.o ?)+", " ".join(objects) + " ", self.link_tests[program], count=1)
        link = re.sub(r"\S+_test\.cpp\.o", "", link).replace(f"-o tests/{program}", f"-o {library}/own_tests")
        subprocess.run(link, shell=True, cwd=BUILD, capture_output=True)

    def make(self, mutant, folder):
        """The folder with what is broken of the libraries; None when it cannot be compiled."""
        broken = folder / mutant.file
        broken.parent.mkdir(parents=True)
        broken.write_text(mutant.text)
        sources = [mutant.file] if mutant.file.endswith(".cpp") else sorted(self.sources_of[mutant.file])
        links = dict(self.link)
        for source in sources:
            entry = self.compile[source]
            object_file = re.search(r" -o (\S+)", entry["command"]).group(1)
            made = folder / (source.replace("/", "_") + ".o")
            if not self._compile(entry, folder, made, broken if source == mutant.file else None):
                return None
            links = {name: link.replace(f" {object_file} ", f" {made} ") for name, link in links.items()}
        library = folder / "lib"
        library.mkdir()
        for name, link in links.items():
            if link == self.link[name]:
                continue
            link = re.sub(r"-o \S+", f"-o {library}/{name}.so.1", link, count=1)
            if subprocess.run(link, shell=True, cwd=BUILD, capture_output=True).returncode != 0:
                return None
        if pathlib.Path(mutant.file).name.startswith("VELHLS") and mutant.file.endswith(".h"):
            self._make_own_tests(mutant, folder, library)
        return library


LIMITS = ["prlimit", f"--as={MOST_MEMORY}", f"--cpu={MOST_SECONDS}", "--core=0"]


class Suite:
    """The tests as a sequence of runs, first those that killed other mutants, then the quickest."""

    def __init__(self, outcomes):
        self.killers = collections.Counter(outcome.split(": ")[1] for outcome in outcomes if re.search(r": \w+\.\w+$", outcome))
        tests = BUILD / "tests"
        self.programs = [tests / program for program in PROGRAMS_OF_LIBRARIES]
        slow = {program: self._slow_tests(program) for program in self.programs}
        self.runs = [*([program, f"--gtest_filter=-{slow[program]}"] for program in self.programs),
                     *([program, f"--gtest_filter={slow[program]}"] for program in self.programs),
                     [tests / "velhls_clock_failure_tests"],
                     [tests / "velhls_tool_tests"],
                     [tests / "velhls_heap_tests"]]
        killer = self.killer(BUILD / "velhls")
        if killer:
            sys.exit("error: the unbroken build does not pass its tests: " + killer)

    @staticmethod
    def _slow_tests(program):
        environment = {**os.environ, "LD_LIBRARY_PATH": str(BUILD / "velhls")}
        output = subprocess.run([program], env=environment, capture_output=True, text=True).stdout
        if "[  FAILED  ]" in output:
            sys.exit("error: the unbroken build does not pass its tests:\n" + output)
        times = re.findall(r"\[       OK \] (\S+) \((\d+) ms\)", output)
        return ":".join(test for test, time in times if int(time) > SLOW_MILLISECONDS)

    def killer(self, library):
        """The test that failed, or how the tests ended; empty when all passed."""
        environment = {**os.environ, "LD_LIBRARY_PATH": f"{library}:{BUILD / 'velhls'}"}
        own_tests = library / "own_tests"
        usual_killers = ":".join(test for test, _ in self.killers.most_common(USUAL_KILLERS))
        first_runs = [[program, f"--gtest_filter={usual_killers}"] for program in self.programs if usual_killers]
        if own_tests.exists():
            first_runs.append([own_tests])
        for run in [*first_runs, *self.runs]:
            # A folder of its own for whatever a broken library writes.
            with tempfile.TemporaryDirectory() as folder:
                process = subprocess.Popen([*LIMITS, *run, "--gtest_fail_fast"], env={**environment, "TMPDIR": folder}, text=True,
                                           cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                           errors="replace")
                try:
                    output, _ = process.communicate(timeout=MOST_SECONDS_BY_THE_CLOCK)
                except subprocess.TimeoutExpired:
                    process.kill()
                    output, _ = process.communicate()
                    return "time-out in " + last_test(output)
                if process.returncode < 0:
                    return f"signal {-process.returncode} in " + last_test(output)
                if process.returncode != 0:
                    failed = re.search(r"\[  FAILED  \] (\S+)", output)
                    if not failed:
                        return "exit in " + last_test(output)
                    self.killers[failed.group(1).rstrip(",")] += 1
                    return failed.group(1).rstrip(",")
        return ""


def last_test(output):
    begun = re.findall(r"\[ RUN      \] (\S+)", output)
    return begun[-1] if begun else "the beginning"


def outcome_of(build, suite, mutant):
    with tempfile.TemporaryDirectory() as folder:
        library = build.make(mutant, pathlib.Path(folder))
        if library is None:
            return "does not compile"
        killer = suite.killer(library)
        return f"killed: {killer}" if killer else "survived"


class Results:
    """What became of each mutant, kept in a file so that a run can be taken up again."""

    def __init__(self, path, taken_up):
        self.path = path
        self.outcomes = json.loads(path.read_text()) if taken_up and path.exists() else {}
        self.lock = threading.Lock()

    def has(self, mutant):
        """Not of a survivor: a test may have been written since."""
        return self.outcomes.get(name_of(mutant), "survived") != "survived"

    def add(self, mutant, outcome):
        with self.lock:
            self.outcomes[name_of(mutant)] = outcome
            beside = self.path.with_suffix(".new")
            beside.write_text(json.dumps(self.outcomes, indent=1))
            beside.replace(self.path)


def show_survivor(mutant):
    original = (REPOSITORY / mutant.file).read_text()
    print(*difflib.unified_diff(original.splitlines(), mutant.text.splitlines(), mutant.file, mutant.file, "", "", 3, ""),
          sep="\n", end="\n\n")


def table(mutants, results, equivalents):
    """How many of each file were killed, of those that could have been."""
    counts = collections.defaultdict(collections.Counter)
    for mutant in mutants:
        outcome = results.outcomes.get(name_of(mutant), "not run").split(":")[0]
        if outcome == "survived" and mutant[:3] in equivalents:
            outcome = "equivalent"
        counts[mutant.file][outcome] += 1
        counts["all"][outcome] += 1
    lines = ["| file | killed | survived | equivalent | does not compile | score |", "|---|--:|--:|--:|--:|--:|"]
    for file in [*sorted(file for file in counts if file != "all"), "all"]:
        count = counts[file]
        judged = count["killed"] + count["survived"]
        score = f"{100 * count['killed'] / judged:.0f} %" if judged else "-"
        cells = [count[outcome] for outcome in ("killed", "survived", "equivalent", "does not compile")]
        lines.append("| " + " | ".join(map(str, [file, *cells, score])) + " |")
    if counts["all"]["not run"]:
        lines.append(f"\n{counts['all']['not run']} were not run")
    return "\n".join(lines), counts["all"]["survived"]


def arguments_of_command_line():
    parser = argparse.ArgumentParser(prog="scripts/mutate", description=__doc__)
    parser.add_argument("files", nargs="*", help="only mutants of these sources; all of the library without any")
    parser.add_argument("--count", type=int, default=350, help="about how many mutants of the whole library; 0 for all (default %(default)s)")
    parser.add_argument("--seed", type=int, default=1, help="chooses which mutants (default %(default)s)")
    parser.add_argument("--resume", action="store_true", help="take up the last run; what survived is run again")
    parser.add_argument("--report", action="store_true", help="run nothing, report on the last run")
    parser.add_argument("--workers", type=int, default=os.cpu_count(), help="mutants at a time (default %(default)s)")
    return parser.parse_args()


def sources():
    found = subprocess.run(["git", "ls-files", "velhls/*.cpp", "velhls/*.h"], cwd=REPOSITORY, check=True, text=True,
                           capture_output=True).stdout
    return found.split()


def main():
    arguments = arguments_of_command_line()
    build = Build()
    mutants_by_file = {file: list(mutants_of(file)) for file in sources()}
    equivalents = read_equivalents()
    everything = {mutant[:3] for mutants in mutants_by_file.values() for mutant in mutants}
    outdated = [entry for entry in equivalents if entry not in everything]
    for entry in outdated:
        print("error: tests/mutation/equivalent.txt: no such mutant: " + " | ".join(entry), file=sys.stderr)
    part = min(1, arguments.count / len(everything)) if arguments.count else 1
    if arguments.files:
        mutants_by_file = {file: mutants for file, mutants in mutants_by_file.items() if file in arguments.files}
    chosen = sample(mutants_by_file, part, arguments.seed, build.sources_of)
    results = Results(BUILD / "results.json", arguments.resume or arguments.report)
    left = [mutant for mutant in chosen
            if not results.has(mutant) and mutant[:3] not in equivalents and not arguments.report]
    for mutant in chosen:
        if mutant[:3] in equivalents:
            results.outcomes[name_of(mutant)] = "survived"
    print(f"{len(everything)} mutants, {len(chosen)} chosen, {len(left)} to run", flush=True)
    if left:
        suite = Suite(results.outcomes.values())
        with concurrent.futures.ThreadPoolExecutor(arguments.workers) as workers:
            runs = {workers.submit(outcome_of, build, suite, mutant): mutant for mutant in left}
            for number, run in enumerate(concurrent.futures.as_completed(runs), 1):
                results.add(runs[run], run.result())
                print(f"{number}/{len(left)} {runs[run].file}:{runs[run].line}: {run.result()}", flush=True)
    for mutant in chosen:
        if results.outcomes.get(name_of(mutant)) == "survived" and mutant[:3] not in equivalents:
            show_survivor(mutant)
    text, survived = table(chosen, results, equivalents)
    print(text)
    return 1 if survived or outdated else 0


if __name__ == "__main__":
    sys.exit(main())
