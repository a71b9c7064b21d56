# SPDX-License-Identifier: MIT
# The part of scripts/mutants that draws, builds and runs. TREE is a configured copy of the sources;
# LOG gets a line for each change that was tried, and tells the next run.
# Usage: mutants.py [--again] COUNT SEED TREE LOG [FOLDER...]
import collections
import hashlib
import json
import os
import pathlib
import re
import resource
import subprocess
import sys
import time

# What is changed, and into what. A pattern is looked for outside of comments, texts and
# preprocessor lines.
SWAPS = [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "),
    (r" == ", " != "), (r" != ", " == "), (r" && ", " || "), (r" \|\| ", " && "),
    (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " / "), (r" / ", " * "),
    (r" \+= ", " -= "), (r" -= ", " += "), (r"\+\+", "--"), (r"--", "++"),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"), (r"(?<=[(\s])!(?=[\w(])", ""),
    (r"(?<![\w.'])0(?![\w.'])", "1"), (r"(?<![\w.'])[1-9](?![\w.'])", "0"),
    (r"\bstd::min\b", "std::max"), (r"\bstd::max\b", "std::min"),
    (r"(?<=^)(?P<indent> +)[\w:.>-]+\([^;{}]*\);$", ""),  # a call that is left out
]
NOT_CODE = re.compile(r"^\s*(#|//|static_assert|namespace|using|case \d|template|\}?$)")
BLANKED = re.compile(r'//.*$|"(\\.|[^"\\])*"|\'(\\.|[^\'\\])+\'')
NOT_NOTICED, NOT_COMPILED = "-", "!"

# What is no part of the library, and compared with its file by a test without GoogleTest.
TOOLS = {"veltra/infrastructure/profiles/make_profile.cpp"}

# A changed program sees the file system, but writes to /tmp alone, which is its own; it sees no other
# process, and none outlives it.
SANDBOX = ["unshare", *(["--user", "--map-root-user"] if os.geteuid() else []), "--mount", "--pid",
           "--fork", "--mount-proc", "--kill-child", "sh", "-c",
           "mount -t tmpfs tmpfs /tmp && mount -o remount,bind,ro / && cd /tmp && exec \"$@\"", "sandbox"]

# The occurrence tells apart equal changes of equal lines.
Mutant = collections.namedtuple("Mutant", "file occurrence old new")


def candidates(tree, folders):
    """Every single change of every source that is compiled here, with the number of its line."""
    compiled = (tree / "build/dev/compile_commands.json").read_text()
    found = {}
    for path in sorted(tree.glob("veltra/**/*.cpp")):
        name = str(path.relative_to(tree))
        if name.endswith("_test.cpp") or "/testing/" in name or f"/{name}\"" not in compiled:
            continue
        if name in TOOLS:
            continue
        if folders and not any(name.startswith(folder) for folder in folders):
            continue
        counts = collections.Counter()
        for number, line in enumerate(path.read_text().splitlines()):
            if NOT_CODE.match(line):
                continue
            code = BLANKED.sub(lambda match: " " * len(match.group()), line)
            for pattern, replacement in SWAPS:
                for match in re.finditer(pattern, code):
                    new = line[: match.start()] + replacement + line[match.end():]
                    found[Mutant(name, str(counts[line, new]), line, new)] = number
                    counts[line, new] += 1
    return found


def users(tree):
    """For each room's folder those that know it, the nearest first."""
    known_by = {}
    for line in (tree / "veltra/rooms.txt").read_text().splitlines():
        if not re.match(r"[A-Za-z]", line):
            continue
        room, known = line.split(":")
        for path in sorted((tree / "veltra").glob(room + "/CMakeLists.txt")):
            folder = str(path.parent.relative_to(tree / "veltra"))
            for other in known_by:
                if any(re.fullmatch(name.replace("*", "[^/]*"), other) for name in known.split()):
                    known_by[other].append(folder)
            known_by[folder] = []
    return known_by


class Programs:
    """The test programs of a configured tree."""

    def __init__(self, tree):
        self.build = (tree / "build/dev").resolve()
        if not self.compile("all"):
            sys.exit(f"{tree} was not built: see {self.build}/mutants.log")
        shown = subprocess.run(["ctest", "--test-dir", self.build, "--show-only=json-v1"],
                               capture_output=True, text=True, check=True).stdout
        self.environments = {}  # by path
        for test in json.loads(shown)["tests"]:
            program = test.get("command", [""])[0]
            if program.endswith("_test"):
                self.environments.setdefault(program, dict(
                    setting.split("=", 1) for found in test["properties"]
                    if found["name"] == "ENVIRONMENT" for setting in found["value"]))
        self.as_it_is = {}  # by path: the cases that fail there, and seconds; None: it ends otherwise

    def compile(self, target):
        with open(self.build / "mutants.log", "w") as log:
            return subprocess.run(["ninja", "-j1", "-C", self.build, target],
                                  stdout=log, stderr=log).returncode == 0

    def build_program(self, path):
        return self.compile(os.path.relpath(path, self.build))

    def run(self, path, options, processor_seconds, seconds):
        """Its status, what it wrote, and how long it ran."""
        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (16 << 30, 16 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_CPU, (processor_seconds, processor_seconds))

        environment = os.environ | {"QT_QPA_PLATFORM": "offscreen", "HOME": "/tmp", "GTEST_BRIEF": "1"}
        environment |= self.environments[path]
        with open(self.build / "mutant.out", "w+", errors="replace") as output:
            start = time.monotonic()
            process = subprocess.Popen(SANDBOX + [path] + options, env=environment, preexec_fn=limit,
                                       stdin=subprocess.DEVNULL, stdout=output, stderr=output)
            try:
                status = process.wait(seconds)
            except subprocess.TimeoutExpired:
                status = None
                process.kill()
                process.wait()
            output.seek(0)
            return status, output.read(), time.monotonic() - start

    def is_usable(self, path):
        """Runs it once with the sources as they are: cases that fail so are left out later."""
        if path not in self.as_it_is:
            built = self.build_program(path)
            status, text, seconds = self.run(path, [], 1200, 1200) if built else (None, "", 0)
            failed = sorted(set(re.findall(r"^\[  FAILED  \] (\w[\w/]*\.[\w/]+)", text, re.M)))
            usable = " ran. (" in text and (status == 0 or (status == 1 and failed))
            self.as_it_is[path] = (failed, int(seconds)) if usable else None
            print(f"  {os.path.basename(path)}: {seconds:.0f} s"
                  + (f", without {' '.join(failed)}" if failed else "")
                  + ("" if usable else f", left out: it ended with {status}"), flush=True)
        return self.as_it_is[path] is not None

    def passes(self, path):
        """Whether its cases pass that pass with the sources as they are."""
        failed, seconds = self.as_it_is[path]
        options = ["--gtest_fail_fast", "--gtest_filter=*" + ("-" + ":".join(failed) if failed else "")]
        return self.run(path, options, 10 + 5 * seconds, 60 + 10 * seconds)[0] == 0

    def near(self, file, known_by):
        """The programs of the file's room, those of rooms that know it, then those of hosts."""
        inside = file.removeprefix("veltra/")
        room = max((folder for folder in known_by if inside.startswith(folder + "/")), key=len)
        folders = ["veltra/" + folder for folder in [room] + known_by[room]] + ["tests", "tests/controls"]
        return [path for folder in folders for path in sorted(self.environments)
                if os.path.dirname(os.path.relpath(path, self.build)) == folder]


def verdict(mutant, line, tree, programs, known_by):
    """The program that noticed the mutant, or why there is none."""
    path = tree / mutant.file
    original = path.read_text()
    lines = original.split("\n")
    lines[line] = mutant.new
    for program in programs.near(mutant.file, known_by):
        if not programs.is_usable(program):
            continue
        try:
            path.write_text("\n".join(lines))
            if not programs.build_program(program):
                return NOT_COMPILED
            if not programs.passes(program):
                return os.path.basename(program)
        finally:
            path.write_text(original)
    return NOT_NOTICED


def main():
    arguments = sys.argv[1:]
    again = arguments[0] == "--again"
    count, seed, tree, log = arguments[again : again + 4]
    count, tree, log = int(count), pathlib.Path(tree), pathlib.Path(log)
    known = {}
    for line in log.read_text().splitlines() if log.exists() else []:
        found, *what = line.split("\t")
        known[Mutant(*what)] = found
    if again:
        known = {mutant: found for mutant, found in known.items() if found != NOT_NOTICED}
    places = candidates(tree, arguments[again + 4:])
    known_by = users(tree)
    # By a hash, not at random: a change of one source leaves the sample of the others.
    drawn = sorted(places, key=lambda mutant: hashlib.sha256("\t".join((seed, *mutant)).encode()).digest())

    programs = None
    results = {}
    for mutant in drawn:
        if len(results) == count:
            break
        found = known.get(mutant)
        if found is None:
            programs = programs or Programs(tree)
            found = verdict(mutant, places[mutant], tree, programs, known_by)
            with open(log, "a") as out:
                out.write("\t".join((found, *mutant)) + "\n")
            print(f"{len(results) + 1}/{count} {mutant.file}:{places[mutant] + 1} " + {
                NOT_NOTICED: "NOT NOTICED", NOT_COMPILED: "not compiled"}.get(found, found), flush=True)
        if found != NOT_COMPILED:
            results[mutant] = found

    print(f"\nnot noticed (of {len(results)} of {len(places)} possible changes, seed {seed}):")
    for mutant in sorted(mutant for mutant, found in results.items() if found == NOT_NOTICED):
        print(f"{mutant.file}:{places[mutant] + 1}\n-{mutant.old}\n+{mutant.new}")
    by_room = collections.defaultdict(list)
    for mutant, found in results.items():
        by_room["/".join(mutant.file.split("/")[1:-1])].append(found != NOT_NOTICED)
        by_room["all"].append(found != NOT_NOTICED)
    print()
    for room in sorted(by_room, key=lambda room: (room == "all", room)):
        noticed, tried = sum(by_room[room]), len(by_room[room])
        print(f"{room:32} {noticed:4} of {tried:4} noticed, {100 * noticed / tried:5.1f} %")


main()
