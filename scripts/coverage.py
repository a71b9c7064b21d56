# SPDX-License-Identifier: MIT
# The part of scripts/coverage that reads the sources with their counts, as llvm-cov shows them.
# Usage: coverage.py FOLDER MISSED   prints how much of each module of FOLDER was reached; MISSED gets
#                                    the lines and branches that were not
# A line or a branch of a template counts once, however many types it was compiled for. What no case
# of a switch names is no branch: compilers see to it that there is a case for each value.
import collections
import os
import re
import sys


def read(shown):
    """The lines that count, by file and number: whether they were reached, and their text. The
    branches of each, by column: whether they were ever true, and ever false."""
    lines = {}
    branches = collections.defaultdict(dict)
    place = None
    for text in shown:
        if source := re.match(r"(/.*):$", text):
            file = source[1]
        elif line := re.match(r" *(\d+)\| *([\d.]+[kMGTPE]?)?\|(.*)", text):
            place = file, int(line[1])
            if line[2]:
                lines[place] = line[2] != "0", line[3].strip()
            code = line[3]
        elif branch := re.search(r"Branch \(\d+:(\d+)\): \[True: (\S+), False: (\S+)\]", text):
            column = int(branch[1])
            if code[:column - 1].endswith("switch ("):
                continue
            before = branches[place].get(column, (False, False))
            branches[place][column] = tuple(
                reached or times != "0" for reached, times in zip(before, branch.groups()[1:]))
    return lines, branches


def missed(lines, branches):
    never = {(False, False): "asked", (False, True): "true", (True, False): "false"}
    for (file, number), (is_reached, text) in sorted(lines.items()):
        name = f"{os.path.relpath(file)}:{number}"
        if not is_reached:
            yield f"{name}: {text}"
            continue
        for column, sides in sorted(branches[file, number].items()):
            if sides in never:
                yield f"{name}: never {never[sides]} from column {column}: {text}"


def table(lines, branches, folder):
    modules = collections.defaultdict(lambda: [0, 0, 0, 0])
    for place, (is_reached, _) in lines.items():
        module = os.path.dirname(os.path.relpath(place[0], folder)).removesuffix("/detail") or "."
        sides = [side for both in branches[place].values() for side in both]
        for name in (module, "all"):
            counts = (is_reached, 1, sum(sides), len(sides))
            modules[name] = [a + b for a, b in zip(modules[name], counts)]
    print(f"{'module':24}{'lines':>8}{'reached':>10}{'branches':>10}{'reached':>10}")
    for module in sorted(modules, key=lambda module: (module == "all", module)):
        reached_lines, all_lines, reached_sides, all_sides = modules[module]
        print(f"{module:24}{all_lines:8}{share(reached_lines, all_lines):>10}"
              f"{all_sides:10}{share(reached_sides, all_sides):>10}")


def share(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


found = read(sys.stdin)
with open(sys.argv[2], "w") as list_of_missed:
    list_of_missed.writelines(text + "\n" for text in missed(*found))
table(*found, sys.argv[1])
