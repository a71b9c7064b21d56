# SPDX-License-Identifier: MIT
# The part of scripts/mutants that draws, builds and runs. Each of TREES is a configured copy of the
# sources, for one worker.
# Usage: mutants.py COUNT SEED TREE[,TREE...] [FOLDER...]
import collections
import os
import pathlib
import random
import re
import resource
import subprocess
import sys
import threading
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

Mutant = collections.namedtuple("Mutant", "file line old new")


def candidates(tree, folders):
    """Every single change of every source that is compiled here, in a fixed order."""
    compiled = pathlib.Path(tree, "build/dev/compile_commands.json").read_text()
    for path in sorted(pathlib.Path(tree).glob("veltra/**/*.cpp")):
        name = str(path.relative_to(tree))
        if name.endswith("_test.cpp") or "/testing/" in name or f"/{name}\"" not in compiled:
            continue
        if folders and not any(name.startswith(folder) for folder in folders):
            continue
        for number, line in enumerate(path.read_text().splitlines()):
            if NOT_CODE.match(line):
                continue
            code = BLANKED.sub(lambda match: " " * len(match.group()), line)
            for pattern, new in SWAPS:
                for match in re.finditer(pattern, code):
                    yield Mutant(name, number, line, line[: match.start()] + new + line[match.end():])


def rooms(tree):
    """The folders of the rooms, and for each those that know it, the nearest first."""
    known_by = collections.defaultdict(list)
    folders = []
    for line in pathlib.Path(tree, "veltra/rooms.txt").read_text().splitlines():
        if not re.match(r"[A-Za-z]", line):
            continue
        room, known = line.split(":")
        found = sorted(pathlib.Path(tree, "veltra").glob(room + "/CMakeLists.txt"))
        for folder in (str(path.parent.relative_to(pathlib.Path(tree, "veltra"))) for path in found):
            folders.append(folder)
            for other in known.split():
                for known_folder in folders:
                    if re.fullmatch(other.replace("*", "[^/]*"), known_folder):
                        known_by[known_folder].append(folder)
    return folders, known_by


class Worker(threading.Thread):
    """Takes mutants until enough were tried; puts each file back."""

    def __init__(self, tree, queue, results, count, lock):
        super().__init__(daemon=True)
        self.tree, self.queue, self.results, self.count, self.lock = tree, queue, results, count, lock
        self.build = os.path.join(tree, "build/dev")
        self.folders, self.known_by = rooms(tree)
        self.environment = dict(os.environ, CCACHE_BASEDIR=os.path.abspath(tree))
        targets = subprocess.run(["ninja", "-C", self.build, "-t", "targets", "all"],
                                 capture_output=True, text=True, check=True).stdout
        self.programs = dict(re.findall(r"^(\S*/(\w+_test)): CXX_EXECUTABLE_LINKER", targets, re.M))
        self.programs = {name: path for path, name in self.programs.items()}
        self.seconds = {}

    def run_program(self, name, limit):
        """Whether it passes."""
        def limits():
            resource.setrlimit(resource.RLIMIT_AS, (16 << 30, 16 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            os.setsid()

        process = subprocess.Popen([os.path.abspath(os.path.join(self.build, self.programs[name]))],
                                   env=self.environment, preexec_fn=limits, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            return process.wait(limit) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            try:
                os.killpg(process.pid, 9)
            except ProcessLookupError:
                pass
            process.wait()

    def compile(self, target):
        return subprocess.run(["ninja", "-j1", "-C", self.build, target], env=self.environment,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0

    def programs_for(self, file):
        """The room's own test programs, then those of the rooms that know it."""
        inside = file.removeprefix("veltra/")
        room = max((folder for folder in self.folders if inside.startswith(folder + "/")), key=len)
        for folder in [room] + self.known_by[room]:
            for name in sorted(self.programs):
                if name.startswith("veltra_" + folder.replace("/", "_") + "_") and (
                        folder == room or name.endswith(folder.replace("/", "_") + "_test")):
                    yield name
        yield from (name for name in sorted(self.programs) if not name.startswith("veltra_"))

    def prepare(self):
        """Builds all test programs, and leaves out those that do not pass as they are."""
        if not self.compile("all"):
            sys.exit(f"{self.tree} was not built")
        for name in sorted(self.programs):
            start = time.monotonic()
            if self.run_program(name, 600):
                self.seconds[name] = time.monotonic() - start
            else:
                print(f"{name} does not pass as it is: left out", flush=True)

    def verdict(self, mutant):
        """The program that noticed the mutant, "" for none, None when it does not compile."""
        path = pathlib.Path(self.tree, mutant.file)
        original = path.read_text()
        lines = original.split("\n")
        lines[mutant.line] = mutant.new
        try:
            path.write_text("\n".join(lines))
            for index, name in enumerate(self.programs_for(mutant.file)):
                if name not in self.seconds:
                    continue
                if not self.compile(self.programs[name]):
                    return None if index == 0 else name
                if not self.run_program(name, 10 + 5 * self.seconds[name]):
                    return name
            return ""
        finally:
            path.write_text(original)

    def run(self):
        self.prepare()
        while True:
            with self.lock:
                if len(self.results) >= self.count or not self.queue:
                    return
                mutant = self.queue.pop()
            found = self.verdict(mutant)
            if found is None:
                continue
            with self.lock:
                if len(self.results) < self.count:
                    self.results[mutant] = found
                    print(f"{len(self.results)}/{self.count} {mutant.file}:{mutant.line + 1}"
                          f" {'noticed by ' + found if found else 'NOT NOTICED'}", flush=True)


def main():
    count, seed, trees = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3].split(",")
    queue = list(candidates(trees[0], sys.argv[4:]))
    total = len(queue)
    random.Random(seed).shuffle(queue)
    results, lock = {}, threading.Lock()
    workers = [Worker(tree, queue, results, count, lock) for tree in trees]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    print(f"\nnot noticed (of {len(results)} of {total} possible changes, seed {seed}):")
    for mutant in sorted(mutant for mutant, found in results.items() if not found):
        print(f"{mutant.file}:{mutant.line + 1}\n-{mutant.old}\n+{mutant.new}")
    by_room = collections.Counter()
    for mutant, found in results.items():
        room = "/".join(mutant.file.split("/")[1:-1]) or "."
        by_room[room, bool(found)] += 1
    print()
    for room in sorted({room for room, _ in by_room}):
        noticed = by_room[room, True]
        print(f"{room:24} {noticed:4} of {noticed + by_room[room, False]:4}")
    noticed = sum(1 for found in results.values() if found)
    print(f"{noticed} of {len(results)} noticed, {100 * noticed / max(1, len(results)):.1f} %")


main()
